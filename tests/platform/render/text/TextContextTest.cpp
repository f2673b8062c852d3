#include "platform/render/text/TextContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

using velmoran::platform::builtInFonts;
using velmoran::platform::CanvasBuffer;
using velmoran::platform::FontDescriptor;
using velmoran::platform::kArialSmallFont;
using velmoran::platform::kDejaVuSansFont;
using velmoran::platform::TextContext;
using velmoran::platform::TextExtent;

namespace
{

constexpr float kRoomy = 10000.0f;

// Bounding box of the pixels that differ from the untouched canvas (alpha above a threshold).
struct InkBox
{
    int left = 1 << 30;
    int top = 1 << 30;
    int right = -1;
    int bottom = -1;
    int pixels = 0;
};

InkBox inkOf(const CanvasBuffer& canvas, int width, int height, int threshold = 128)
{
    InkBox box;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (canvas.pixel(x, y)[3] >= threshold)
            {
                box.left = std::min(box.left, x);
                box.top = std::min(box.top, y);
                box.right = std::max(box.right, x);
                box.bottom = std::max(box.bottom, y);
                ++box.pixels;
            }
    return box;
}

long alphaSum(const CanvasBuffer& canvas, int width, int height)
{
    long sum = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            sum += canvas.pixel(x, y)[3];
    return sum;
}

class TextOnCanvas : public ::testing::Test
{
protected:
    static constexpr int kWidth = 240;
    static constexpr int kHeight = 120;
    static constexpr float kBaseline = 90.0f;

    CanvasBuffer mCanvas{kWidth, kHeight};
    TextContext mText{mCanvas.canvas()};

    InkBox drawn(const char* text, int threshold = 128)
    {
        mText.setPen(20.0f, kBaseline);
        mText.drawString(text);
        return inkOf(mCanvas, kWidth, kHeight, threshold);
    }
};

} // namespace

TEST(TextContextSetUp, StartsWithDejaVuSansAtItsDesignSize)
{
    CanvasBuffer canvas(10, 10);
    TextContext text(canvas.canvas());
    EXPECT_STREQ(text.font().name, "DejaVu Sans");
    EXPECT_FLOAT_EQ(text.scale(), 1.0f);
    EXPECT_FLOAT_EQ(text.edgeSoftness(), 0.1f);
    EXPECT_FLOAT_EQ(text.lineHeight(), 64.0f);
    // Baseline sits halfway between the line's top and the cap height below it.
    EXPECT_FLOAT_EQ(text.ascent(), 64.0f - (64.0f - text.capHeight()) * 0.5f);
}

TEST(TextContextSetUp, TextSizeScalesGlyphsAndSoftensEdges)
{
    CanvasBuffer canvas(10, 10);
    TextContext text(canvas.canvas());
    const float fullAdvance = text.characterAdvance('W');
    text.setTextSize(16.0f);
    EXPECT_FLOAT_EQ(text.scale(), 0.25f);
    EXPECT_FLOAT_EQ(text.characterAdvance('W'), fullAdvance * 0.25f);
    EXPECT_FLOAT_EQ(text.edgeSoftness(), 0.4f);
    text.setTextSize(-3.0f); // ignored
    EXPECT_FLOAT_EQ(text.scale(), 0.25f);
}

TEST(TextContextSetUp, ClipRectanglePutsThePenOnTheFirstBaselineAndNewLineReturnsToItsLeft)
{
    CanvasBuffer canvas(300, 300);
    TextContext text(canvas.canvas());
    text.setTextSize(32.0f);
    text.setLineHeight(40.0f);
    text.setClipRect(10, 20, 200, 200);
    EXPECT_FLOAT_EQ(text.penX(), 10.0f);
    EXPECT_FLOAT_EQ(text.penY(), 20.0f + text.ascent());
    text.drawString("Gain");
    EXPECT_GT(text.penX(), 10.0f);
    const float firstBaseline = text.penY();
    text.newLine();
    EXPECT_FLOAT_EQ(text.penX(), 10.0f);
    EXPECT_FLOAT_EQ(text.penY(), firstBaseline + 40.0f);
}

TEST(TextContextSetUp, SelectingAFontTakesItsLineHeight)
{
    CanvasBuffer canvas(10, 10);
    TextContext text(canvas.canvas());
    text.selectFont(kArialSmallFont);
    EXPECT_STREQ(text.font().name, "Arial Small");
    EXPECT_FLOAT_EQ(text.lineHeight(), 32.0f);
    EXPECT_LT(text.characterAdvance('A'), 32.0f);
}

TEST(TextMeasure, WordInsideLinkMarkupMeasuresAsTheWordAlone)
{
    CanvasBuffer canvas(10, 10);
    const TextContext text(canvas.canvas());
    const TextExtent word = text.measure(kRoomy, kRoomy, "%s", "Manual");
    const TextExtent linked = text.measure(kRoomy, kRoomy, "<a>%s</a>", "Manual");
    EXPECT_GT(word.width, 100);
    EXPECT_EQ(linked.width, word.width);
    EXPECT_EQ(linked.height, word.height);
    EXPECT_EQ(text.measure(kRoomy, kRoomy, "See the <a>manual</a> now").width,
              text.measure(kRoomy, kRoomy, "See the manual now").width);
}

TEST(TextMeasure, WidthIsTheSumOfAdvancesRoundedUp)
{
    CanvasBuffer canvas(10, 10);
    TextContext text(canvas.canvas());
    text.setTextSize(13.0f);
    const float advances =
        text.characterAdvance('Q') + text.characterAdvance(' ') + text.characterAdvance('5');
    EXPECT_EQ(text.measure(kRoomy, kRoomy, "Q %d", 5).width, static_cast<int>(std::ceil(advances)));
}

TEST(TextMeasure, OverflowingCharacterIsDroppedAndTheNextLineStartsAfterIt)
{
    CanvasBuffer canvas(10, 10);
    const TextContext text(canvas.canvas());
    const float abc = text.characterAdvance('A') + text.characterAdvance('B') + text.characterAdvance('C');
    const float limit = abc + text.characterAdvance('D') * 0.5f;
    // "D" does not fit after "ABC" and is lost; the second "ABC" then fits on line two. Were "D"
    // carried over, line two would overflow again and need a third line.
    const TextExtent extent = text.measure(limit, kRoomy, "ABCDABC");
    EXPECT_EQ(extent.height, 2 * 64);
    EXPECT_EQ(extent.width, static_cast<int>(std::ceil(abc)));
}

TEST(TextMeasure, EmptyStringIsOneLineHighAndNothingWide)
{
    CanvasBuffer canvas(10, 10);
    TextContext text(canvas.canvas());
    TextExtent extent = text.measure(kRoomy, kRoomy, "%s", "");
    EXPECT_EQ(extent.width, 0);
    EXPECT_EQ(extent.height, 64);
    text.setTextSize(20.0f);
    extent = text.measure(kRoomy, kRoomy, "%s", "");
    EXPECT_EQ(extent.height, 20);
}

TEST(TextMeasure, NewlinesStackLinesAndTheWidestLineCounts)
{
    CanvasBuffer canvas(10, 10);
    const TextContext text(canvas.canvas());
    const TextExtent extent = text.measure(kRoomy, kRoomy, "Settings Cleared\n\nClick");
    EXPECT_EQ(extent.height, 3 * 64);
    EXPECT_EQ(extent.width, text.measure(kRoomy, kRoomy, "Settings Cleared").width);
}

TEST(TextMeasure, HeightIsCutToTheLimit)
{
    CanvasBuffer canvas(10, 10);
    const TextContext text(canvas.canvas());
    EXPECT_EQ(text.measure(kRoomy, 100.0f, "one\ntwo\nthree\nfour").height, 100);
}

TEST(TextMeasure, EveryOverflowLosesOneCharacter)
{
    CanvasBuffer canvas(10, 10);
    const TextContext text(canvas.canvas());
    const float w = text.characterAdvance('W');
    // Two W fit a line: the third, sixth and ninth of ten are dropped, leaving four lines.
    const TextExtent extent = text.measure(2.5f * w, kRoomy, "WWWWWWWWWW");
    EXPECT_EQ(extent.width, static_cast<int>(std::ceil(2.0f * w)));
    EXPECT_EQ(extent.height, 4 * 64);
}

TEST(TextWidth, NewlineMovesThePenAndRestartsTheSum)
{
    CanvasBuffer canvas(10, 10);
    TextContext text(canvas.canvas());
    text.setPen(5.0f, 50.0f);
    const float width = text.textWidth("first line\nab");
    EXPECT_FLOAT_EQ(width, text.characterAdvance('a') + text.characterAdvance('b'));
    EXPECT_FLOAT_EQ(text.penY(), 114.0f);
    EXPECT_FLOAT_EQ(text.penX(), 0.0f);
}

TEST_F(TextOnCanvas, CapitalHLiesBetweenTheBaselineAndTheCapHeight)
{
    const InkBox box = drawn("H");
    // DejaVu Sans caps stand 0.73 em tall: about 47 pixels at 64.
    EXPECT_NEAR(box.bottom, kBaseline - 1, 1.0);
    EXPECT_NEAR(box.top, kBaseline - 47, 1.5);
    // H starts a little right of the pen and is about 36 pixels wide.
    EXPECT_NEAR(box.left, 20 + 6, 1.5);
    EXPECT_NEAR(box.right - box.left + 1, 36, 2.0);
}

TEST_F(TextOnCanvas, DescenderOfGGoesBelowTheBaseline)
{
    const InkBox box = drawn("g");
    EXPECT_GT(box.bottom, kBaseline + 8);
    EXPECT_LT(box.top, kBaseline - 30);
}

TEST_F(TextOnCanvas, HalfSizeTextHasHalfTheCapHeight)
{
    mText.setTextSize(32.0f);
    const InkBox box = drawn("H");
    EXPECT_NEAR(box.bottom - box.top + 1, 23.5, 1.5);
}

TEST_F(TextOnCanvas, ShadowLiesBelowAndRightOfTheGlyph)
{
    const InkBox plain = drawn("H", 1);
    CanvasBuffer shaded(kWidth, kHeight);
    TextContext text(shaded.canvas());
    text.setShadow(true);
    text.setPen(20.0f, kBaseline);
    text.drawString("H");
    const InkBox withShadow = inkOf(shaded, kWidth, kHeight, 1);
    EXPECT_GE(withShadow.right, plain.right + 2);
    EXPECT_GE(withShadow.bottom, plain.bottom + 2);
    EXPECT_EQ(withShadow.left, plain.left);
    EXPECT_EQ(withShadow.top, plain.top);
    // The shadow is faint: a quarter of the glyph's strength at most.
    EXPECT_LE(shaded.pixel(plain.right + 2, (plain.top + plain.bottom) / 2)[3], 64);
}

TEST_F(TextOnCanvas, OpacityScalesAlpha)
{
    mText.setColour(255, 176, 0, 128);
    drawn("H");
    const long half = alphaSum(mCanvas, kWidth, kHeight);
    CanvasBuffer full(kWidth, kHeight);
    TextContext text(full.canvas());
    text.setColour(255, 176, 0);
    text.setPen(20.0f, kBaseline);
    text.drawString("H");
    const long whole = alphaSum(full, kWidth, kHeight);
    EXPECT_NEAR(static_cast<double>(half) / whole, 0.5, 0.02);
}

TEST_F(TextOnCanvas, EdgesKeepTheTextColourOnATransparentCanvas)
{
    mText.setColour(255, 176, 0);
    drawn("O");
    int partial = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
        {
            const std::uint8_t* pixel = mCanvas.pixel(x, y);
            if (pixel[3] > 0 && pixel[3] < 255)
            {
                ++partial;
                EXPECT_EQ(pixel[0], 255);
                EXPECT_EQ(pixel[1], 176);
                EXPECT_EQ(pixel[2], 0);
            }
        }
    EXPECT_GT(partial, 20);
}

TEST_F(TextOnCanvas, BlendsOverAnOpaqueBackground)
{
    const InkBox box = drawn("I", 255);
    CanvasBuffer blue(kWidth, kHeight);
    blue.fill(0, 0, 255, 255);
    TextContext text(blue.canvas());
    text.setPen(20.0f, kBaseline);
    text.drawString("I");
    const std::uint8_t* middle = blue.pixel((box.left + box.right) / 2, (box.top + box.bottom) / 2);
    EXPECT_EQ(middle[0], 255);
    EXPECT_EQ(middle[2], 255);
    const std::uint8_t* edge = blue.pixel(box.left - 1, (box.top + box.bottom) / 2);
    EXPECT_GT(edge[0], 0);
    EXPECT_LT(edge[0], 255);
    EXPECT_EQ(edge[3], 255);
    const std::uint8_t* outside = blue.pixel(2, 2);
    EXPECT_EQ(outside[0], 0);
    EXPECT_EQ(outside[2], 255);
}

TEST_F(TextOnCanvas, NothingIsDrawnOutsideTheClipRectangle)
{
    mText.setClipRect(0, 0, 40, kHeight);
    const InkBox box = drawn("HHHH", 1);
    EXPECT_LE(box.right, 39);
    EXPECT_GT(box.pixels, 0);
}

TEST_F(TextOnCanvas, SpacesAndControlCharactersOnlyMoveThePen)
{
    mText.setPen(20.0f, kBaseline);
    mText.drawString(" \n\t ");
    EXPECT_EQ(inkOf(mCanvas, kWidth, kHeight, 1).pixels, 0);
    EXPECT_FLOAT_EQ(mText.penX(), 20.0f + 2.0f * mText.characterAdvance(' '));
    mText.drawCharacter(200); // outside the table: ignored
    EXPECT_FLOAT_EQ(mText.penX(), 20.0f + 2.0f * mText.characterAdvance(' '));
}

TEST_F(TextOnCanvas, TextRunningOffTheCanvasIsCutNotWrittenOutside)
{
    mText.setPen(-30.0f, 10.0f);
    mText.drawString("Wg");
    mText.setPen(kWidth - 10.0f, kHeight + 20.0f);
    mText.drawString("Wg");
    EXPECT_GT(inkOf(mCanvas, kWidth, kHeight, 1).pixels, 0);
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
}

INSTANTIATE_TEST_SUITE_P(BuiltInFonts, EveryFont, ::testing::ValuesIn(builtInFonts()), fontName);
