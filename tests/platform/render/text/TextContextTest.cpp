#include "platform/render/text/TextContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

using velmoran::platform::builtInFonts;
using velmoran::platform::CanvasBuffer;
using velmoran::platform::FontDescriptor;
using velmoran::platform::kArialSmallFont;
using velmoran::platform::TextContext;
using velmoran::platform::TextExtent;

namespace
{

constexpr float kRoomy = 10000.0f;

// Bounding box and count of the pixels whose alpha reaches a threshold.
struct InkBox
{
    int left = 1 << 30;
    int top = 1 << 30;
    int right = -1;
    int bottom = -1;
    int pixels = 0;
    long alphaSum = 0;
};

InkBox inkOf(const CanvasBuffer& canvas, int width, int height, int threshold = 128)
{
    InkBox box;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            const int alpha = canvas.pixel(x, y)[3];
            box.alphaSum += alpha;
            if (alpha < threshold)
                continue;
            box.left = std::min(box.left, x);
            box.top = std::min(box.top, y);
            box.right = std::max(box.right, x);
            box.bottom = std::max(box.bottom, y);
            ++box.pixels;
        }
    return box;
}

class Text : public ::testing::Test
{
protected:
    static constexpr int kWidth = 240;
    static constexpr int kHeight = 120;
    static constexpr float kBaseline = 90.0f;

    CanvasBuffer mCanvas{kWidth, kHeight};
    TextContext mText{mCanvas.canvas()};

    // Draws text at (20, baseline) on this test's canvas and gives its ink.
    InkBox drawn(const char* text, int threshold = 128)
    {
        mText.setPen(20.0f, kBaseline);
        mText.drawString(text);
        return inkOf(mCanvas, kWidth, kHeight, threshold);
    }

    // The same on a second canvas, with its context set up by setUp first.
    template <typename SetUp>
    InkBox drawnOn(CanvasBuffer& canvas, const char* text, SetUp setUp, int threshold = 1)
    {
        TextContext other(canvas.canvas());
        setUp(other);
        other.setPen(20.0f, kBaseline);
        other.drawString(text);
        return inkOf(canvas, kWidth, kHeight, threshold);
    }

    int roundedUp(float width) const { return static_cast<int>(std::ceil(width)); }
};

} // namespace

// Starts with DejaVu Sans at its design size of 64; a size scales the advances and a nonsense size
// is ignored.
TEST_F(Text, StartsWithDejaVuSansAtItsDesignSizeAndFollowsSizeAndFont)
{
    EXPECT_STREQ(mText.font().name, "DejaVu Sans");
    const float fullAdvance = mText.characterAdvance('W');
    mText.setTextSize(16.0f);
    EXPECT_FLOAT_EQ(mText.characterAdvance('W'), fullAdvance * 0.25f);
    mText.setTextSize(-3.0f);
    EXPECT_FLOAT_EQ(mText.scale(), 0.25f);
    mText.selectFont(kArialSmallFont);
    EXPECT_FLOAT_EQ(mText.lineHeight(), 32.0f);
}

TEST_F(Text, ClipRectanglePutsThePenOnTheFirstBaselineAndNewLineReturnsToItsLeft)
{
    mText.setTextSize(32.0f);
    mText.setLineHeight(40.0f);
    mText.setClipRect(10, 20, 200, 200);
    EXPECT_FLOAT_EQ(mText.penX(), 10.0f);
    EXPECT_FLOAT_EQ(mText.penY(), 20.0f + mText.ascent());
    mText.drawString("Gain");
    const float firstBaseline = mText.penY();
    mText.newLine();
    EXPECT_FLOAT_EQ(mText.penX(), 10.0f);
    EXPECT_FLOAT_EQ(mText.penY(), firstBaseline + 40.0f);
}

TEST_F(Text, WordInsideLinkMarkupMeasuresAsTheWordAlone)
{
    EXPECT_EQ(mText.measure(kRoomy, kRoomy, "<a>%s</a>", "Manual").width,
              mText.measure(kRoomy, kRoomy, "%s", "Manual").width);
    EXPECT_EQ(mText.measure(kRoomy, kRoomy, "See the <a>manual</a> now").width,
              mText.measure(kRoomy, kRoomy, "See the manual now").width);
}

// Height counts the lines (an empty string is one) up to the limit; the widest line gives the width.
TEST_F(Text, MeasuredHeightCountsLinesUpToTheLimit)
{
    EXPECT_EQ(mText.measure(kRoomy, kRoomy, "%s", "").width, 0);
    EXPECT_EQ(mText.measure(kRoomy, kRoomy, "%s", "").height, 64);
    const TextExtent extent = mText.measure(kRoomy, kRoomy, "Settings Cleared\n\nClick");
    EXPECT_EQ(extent.height, 3 * 64);
    EXPECT_EQ(extent.width, mText.measure(kRoomy, kRoomy, "Settings Cleared").width);
    EXPECT_EQ(mText.measure(kRoomy, 100.0f, "one\ntwo\nthree\nfour").height, 100);
    mText.setTextSize(20.0f);
    EXPECT_EQ(mText.measure(kRoomy, kRoomy, "%s", "").height, 20);
}

// A character that overflows a line is dropped, and the next line starts after it.
TEST_F(Text, EveryOverflowingCharacterIsDropped)
{
    const float abc = mText.characterAdvance('A') + mText.characterAdvance('B') + mText.characterAdvance('C');
    // "D" does not fit after "ABC" and is lost; the second "ABC" then fits on line two. Were "D"
    // carried over, line two would overflow again and need a third line.
    TextExtent extent = mText.measure(abc + mText.characterAdvance('D') * 0.5f, kRoomy, "ABCDABC");
    EXPECT_EQ(extent.height, 2 * 64);
    EXPECT_EQ(extent.width, roundedUp(abc));
    // Two W fit a line: the third, sixth and ninth of ten are dropped, leaving four lines.
    const float w = mText.characterAdvance('W');
    extent = mText.measure(2.5f * w, kRoomy, "WWWWWWWWWW");
    EXPECT_EQ(extent.width, roundedUp(2.0f * w));
    EXPECT_EQ(extent.height, 4 * 64);
}

TEST_F(Text, WidthRestartsAfterANewlineThatMovesThePen)
{
    mText.setPen(5.0f, 50.0f);
    EXPECT_FLOAT_EQ(mText.textWidth("first line\nab"),
                    mText.characterAdvance('a') + mText.characterAdvance('b'));
    EXPECT_FLOAT_EQ(mText.penY(), 114.0f);
    EXPECT_FLOAT_EQ(mText.penX(), 0.0f);
}

TEST_F(Text, DescenderOfGGoesBelowTheBaselineAndHalfSizeHalvesTheCaps)
{
    const InkBox g = drawn("g");
    EXPECT_GT(g.bottom, kBaseline + 8);
    CanvasBuffer half(kWidth, kHeight);
    const InkBox h = drawnOn(
        half, "H", [](TextContext& text) { text.setTextSize(32.0f); }, 128);
    EXPECT_NEAR(h.bottom - h.top + 1, 23.5, 1.5);
}

TEST_F(Text, ShadowLiesBelowAndRightOfTheGlyph)
{
    const InkBox plain = drawn("H", 1);
    CanvasBuffer shaded(kWidth, kHeight);
    const InkBox withShadow = drawnOn(shaded, "H", [](TextContext& text) { text.setShadow(true); });
    EXPECT_GE(withShadow.right, plain.right + 2);
    EXPECT_GE(withShadow.bottom, plain.bottom + 2);
    // The shadow is faint: a quarter of the glyph's strength at most.
    EXPECT_LE(shaded.pixel(plain.right + 2, (plain.top + plain.bottom) / 2)[3], 64);
}

TEST_F(Text, OpacityScalesAlpha)
{
    mText.setColour(255, 176, 0, 128);
    const long half = drawn("H").alphaSum;
    CanvasBuffer full(kWidth, kHeight);
    const long whole = drawnOn(full, "H", [](TextContext& text) { text.setColour(255, 176, 0); }).alphaSum;
    EXPECT_NEAR(static_cast<double>(half) / whole, 0.5, 0.02);
}

TEST_F(Text, EdgesKeepTheTextColourOnATransparentCanvas)
{
    mText.setColour(255, 176, 0);
    drawn("O");
    int partial = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
        {
            const std::uint8_t* pixel = mCanvas.pixel(x, y);
            if (pixel[3] == 0 || pixel[3] == 255)
                continue;
            ++partial;
            EXPECT_EQ(std::vector<int>(pixel, pixel + 3), (std::vector<int>{255, 176, 0}));
        }
    EXPECT_GT(partial, 20);
}

TEST_F(Text, BlendsOverAnOpaqueBackground)
{
    const InkBox box = drawn("I", 255);
    CanvasBuffer blue(kWidth, kHeight);
    blue.fill(0, 0, 255, 255);
    drawnOn(blue, "I", [](TextContext&) {});
    const int middleY = (box.top + box.bottom) / 2;
    EXPECT_EQ(blue.pixel((box.left + box.right) / 2, middleY)[0], 255);
    const std::uint8_t* edge = blue.pixel(box.left - 1, middleY);
    EXPECT_GT(edge[0], 0);
    EXPECT_LT(edge[0], 255);
    EXPECT_EQ(edge[3], 255);
    EXPECT_EQ(blue.pixel(2, 2)[0], 0);
}

// Drawing stops at the clip rectangle, and text running off the canvas is cut, not written outside.
TEST_F(Text, DrawingIsCutAtTheClipRectangleAndTheCanvasEdges)
{
    CanvasBuffer clipped(kWidth, kHeight);
    const InkBox box =
        drawnOn(clipped, "HHHH", [](TextContext& text) { text.setClipRect(0, 0, 40, kHeight); });
    EXPECT_LE(box.right, 39);
    EXPECT_GT(box.pixels, 0);
    mText.setPen(-30.0f, 10.0f);
    mText.drawString("Wg");
    mText.setPen(kWidth - 10.0f, kHeight + 20.0f);
    mText.drawString("Wg");
    EXPECT_GT(inkOf(mCanvas, kWidth, kHeight, 1).pixels, 0);
}

TEST_F(Text, SpacesAndControlCharactersOnlyMoveThePen)
{
    EXPECT_EQ(drawn(" \n\t ", 1).pixels, 0);
    EXPECT_FLOAT_EQ(mText.penX(), 20.0f + 2.0f * mText.characterAdvance(' '));
    mText.drawCharacter(200); // outside the table: ignored
    EXPECT_FLOAT_EQ(mText.penX(), 20.0f + 2.0f * mText.characterAdvance(' '));
}

namespace
{

class EveryFont : public ::testing::TestWithParam<const FontDescriptor*>
{
};

std::string fontName(const ::testing::TestParamInfo<const FontDescriptor*>& info)
{
    std::string name = info.param->name;
    name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
    return name;
}

} // namespace

// Capitals stand on the baseline about three quarters of the design size tall, and the pen moves
// by the measured width, which each character adds to.
TEST_P(EveryFont, DrawsCapitalsOnTheBaselineAtItsDesignSize)
{
    const FontDescriptor& font = *GetParam();
    CanvasBuffer canvas(400, 200);
    TextContext text(canvas.canvas());
    text.selectFont(font);
    text.setPen(10.0f, 150.0f);
    text.drawString("HEH");
    const InkBox box = inkOf(canvas, 400, 200);
    EXPECT_NEAR(box.bottom, 149, 1.5);
    EXPECT_GT(box.bottom - box.top + 1, font.designSize * 0.6);
    EXPECT_LT(box.bottom - box.top + 1, font.designSize * 0.85);
    EXPECT_NEAR(text.penX() - 10.0f, text.measure(kRoomy, kRoomy, "HEH").width, 1.0f);
    EXPECT_GT(text.characterAdvance('H'), 0.0f);
}

INSTANTIATE_TEST_SUITE_P(BuiltInFonts, EveryFont, ::testing::ValuesIn(builtInFonts()), fontName);
