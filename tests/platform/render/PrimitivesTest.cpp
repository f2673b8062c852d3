#include "RenderTestWindow.h"

#include "platform/render/BitmapFont.h"
#include "platform/render/images/FramePacking.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

using velmoran::platform::CGLRenderer;
using velmoran::platform::Colour;
using velmoran::test::Pixel;
using velmoran::test::pixelAt;

namespace
{

constexpr int kWidth = 200;
constexpr int kHeight = 100;

::testing::AssertionResult looksLike(const Pixel& pixel, int r, int g, int b, int tolerance = 2)
{
    if (std::abs(pixel.r - r) <= tolerance && std::abs(pixel.g - g) <= tolerance &&
        std::abs(pixel.b - b) <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixel (" << pixel.r << ", " << pixel.g << ", " << pixel.b
                                         << ") is not (" << r << ", " << g << ", " << b << ")";
}

int brightness(const Pixel& pixel)
{
    return std::max({pixel.r, pixel.g, pixel.b});
}

// Pixels of a small test picture: every pixel a different opaque colour.
std::vector<uint8_t> patternPixels(int width, int height)
{
    std::vector<uint8_t> pixels(static_cast<size_t>(width * height * 4));
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            uint8_t* p = &pixels[static_cast<size_t>((y * width + x) * 4)];
            p[0] = static_cast<uint8_t>(x * 4);
            p[1] = static_cast<uint8_t>(y * 4);
            p[2] = static_cast<uint8_t>((x * 7 + y * 13) & 0xFF);
            p[3] = 255;
        }
    }
    return pixels;
}

class Primitives : public ::testing::Test
{
protected:
    void SetUp() override
    {
        HWND window = velmoran::test::openChildWindow(kWidth, kHeight);
        ASSERT_EQ(renderer.initialise(window, kWidth, kHeight, kWidth, kHeight), 0);
        renderer.makeCurrent();
        renderer.beginFrame();
        renderer.setClearColour(0, 0, 0);
        renderer.clear();
    }

    void TearDown() override
    {
        renderer.teardown();
        velmoran::test::closeAllWindows();
    }

    Pixel at(int x, int y) const { return pixelAt(x, y, kHeight); }

    CGLRenderer renderer;
};

TEST_F(Primitives, FilledRectangleHasTheDrawingColourInsideOnly)
{
    renderer.setColour(200, 100, 50);
    renderer.fillRect(20, 20, 40, 30);
    EXPECT_TRUE(looksLike(at(21, 21), 200, 100, 50));
    EXPECT_TRUE(looksLike(at(58, 48), 200, 100, 50));
    EXPECT_TRUE(looksLike(at(19, 30), 0, 0, 0));
    EXPECT_TRUE(looksLike(at(40, 51), 0, 0, 0));
}

TEST_F(Primitives, TranslucentColourBlendsOverTheBackground)
{
    renderer.setClearColour(0, 0, 200);
    renderer.clear();
    renderer.setColour(255, 0, 0, 128);
    renderer.fillRect(0, 0, kWidth, kHeight);
    EXPECT_TRUE(looksLike(at(50, 50), 128, 0, 99, 3));
}

TEST_F(Primitives, QuadsFollowTheirCornersAndColours)
{
    const float corners[8] = {10, 10, 90, 10, 90, 90, 10, 90};
    const Colour colours[4] = {{1, 0, 0, 1}, {1, 0, 0, 1}, {0, 0, 1, 1}, {0, 0, 1, 1}};
    renderer.fillQuad(corners, colours);
    const Pixel top = at(50, 11);
    const Pixel bottom = at(50, 88);
    EXPECT_GT(top.r, 240);
    EXPECT_LT(top.b, 15);
    EXPECT_GT(bottom.b, 240);
    EXPECT_LT(bottom.r, 15);

    renderer.setColour(0, 255, 0);
    const float kite[8] = {150, 10, 190, 50, 150, 90, 110, 50};
    renderer.fillQuad(kite);
    EXPECT_TRUE(looksLike(at(150, 50), 0, 255, 0));
    EXPECT_TRUE(looksLike(at(115, 15), 0, 0, 0));
}

TEST_F(Primitives, VerticalGradientRunsFromTopToBottomColour)
{
    renderer.fillRectVerticalGradient(0, 0, kWidth, kHeight, {1, 1, 1, 1}, {0, 0, 0, 1});
    EXPECT_GT(brightness(at(100, 1)), 245);
    EXPECT_NEAR(brightness(at(100, 50)), 128, 4);
    EXPECT_LT(brightness(at(100, 98)), 10);
}

TEST_F(Primitives, TrianglesFromArraysAndFromAVertexArray)
{
    const float positions[6] = {10, 10, 60, 10, 10, 60};
    const float colours[12] = {0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1};
    renderer.drawTriangles(positions, colours, 1);
    EXPECT_TRUE(looksLike(at(15, 15), 0, 255, 0));
    EXPECT_TRUE(looksLike(at(55, 55), 0, 0, 0));

    velmoran::platform::VertexArray vertices;
    vertices.add(100, 10, {1, 1, 0, 1});
    vertices.add(190, 10, {1, 1, 0, 1});
    vertices.add(190, 90, {1, 1, 0, 1});
    ASSERT_EQ(vertices.vertexCount(), 3);
    renderer.drawTriangles(vertices);
    EXPECT_TRUE(looksLike(at(185, 15), 255, 255, 0));
    EXPECT_TRUE(looksLike(at(105, 85), 0, 0, 0));
}

struct SaturationCase
{
    const char* primitive;
    float saturation;
};

class PrimitivesSaturation : public Primitives, public ::testing::WithParamInterface<SaturationCase>
{
};

TEST_P(PrimitivesSaturation, MixesBetweenGreyAndFullColour)
{
    const SaturationCase& saturationCase = GetParam();
    const std::string primitive = saturationCase.primitive;
    EXPECT_EQ(renderer.setSaturation(saturationCase.saturation), 1.0f);
    renderer.setColour(255, 0, 0);
    std::unique_ptr<velmoran::platform::GLTexture> texture;
    if (primitive == "flat")
        renderer.fillRect(0, 0, kWidth, kHeight);
    else if (primitive == "scanline")
        renderer.drawScanlineRect(0, 0, kWidth, kHeight);
    else
    {
        std::vector<uint8_t> red(64 * 64 * 4, 0);
        for (size_t i = 0; i < red.size(); i += 4)
            red[i] = red[i + 3] = 255;
        texture = renderer.createTexture(red.data(), 64, 64);
        renderer.makeCurrent();
        renderer.drawImage(*texture, 0, 0, 0, 0, 64, 64);
    }
    // Rec. 709 luminance of pure red: 0.2126.
    if (saturationCase.saturation == 0.0f)
        EXPECT_TRUE(looksLike(at(30, 30), 54, 54, 54));
    else
        EXPECT_TRUE(looksLike(at(30, 30), 255, 0, 0));
}

INSTANTIATE_TEST_SUITE_P(Programs, PrimitivesSaturation,
                         ::testing::Values(SaturationCase{"flat", 0.0f}, SaturationCase{"flat", 1.0f},
                                           SaturationCase{"scanline", 0.0f}, SaturationCase{"scanline", 1.0f},
                                           SaturationCase{"image", 0.0f}, SaturationCase{"image", 1.0f}));

TEST_F(Primitives, SaturationIsClampedAndGivesThePreviousValue)
{
    EXPECT_EQ(renderer.setSaturation(2.0f), 1.0f);
    EXPECT_EQ(renderer.setSaturation(-1.0f), 1.0f);
    EXPECT_EQ(renderer.setSaturation(0.5f), 0.0f);
}

TEST_F(Primitives, DiscIsFilledToItsRadiusWithASoftEdge)
{
    renderer.setColour(255, 255, 255);
    renderer.drawCircle(100.3f, 50.7f, 20.0f, 0.0f);
    EXPECT_TRUE(looksLike(at(100, 50), 255, 255, 255));
    EXPECT_TRUE(looksLike(at(118, 50), 255, 255, 255));
    EXPECT_TRUE(looksLike(at(100, 32), 255, 255, 255));
    EXPECT_TRUE(looksLike(at(121, 50), 0, 0, 0));
    EXPECT_TRUE(looksLike(at(100, 71), 0, 0, 0));
    // Along the diagonal the brightness falls from full to nothing over about one pixel at r = 20,
    // with a partly covered pixel in between.
    int previous = 255;
    bool partial = false;
    for (int step = 12; step <= 16; ++step)
    {
        const int value = brightness(at(100 + step, 50 + step));
        EXPECT_LE(value, previous);
        partial = partial || (value > 10 && value < 245);
        previous = value;
    }
    EXPECT_TRUE(partial);
    EXPECT_GT(brightness(at(113, 63)), 245); // 18.4 pixels out
    EXPECT_LT(brightness(at(115, 65)), 10);  // 21.2 pixels out
}

TEST_F(Primitives, RingLiesBetweenItsRadiiInEitherOrder)
{
    renderer.setColour(0, 255, 0);
    renderer.drawCircle(60, 50, 10.0f, 20.0f);
    renderer.drawCircle(150, 50, 20.0f, 10.0f);
    for (const int centre : {60, 150})
    {
        EXPECT_TRUE(looksLike(at(centre, 50), 0, 0, 0));
        EXPECT_TRUE(looksLike(at(centre + 5, 50), 0, 0, 0));
        EXPECT_TRUE(looksLike(at(centre + 15, 50), 0, 255, 0));
        EXPECT_TRUE(looksLike(at(centre, 50 - 15), 0, 255, 0));
        EXPECT_TRUE(looksLike(at(centre + 22, 50), 0, 0, 0));
    }
}

class PrimitivesScanlines : public Primitives, public ::testing::WithParamInterface<float>
{
};

TEST_P(PrimitivesScanlines, AlternateBandsOfRowsAreDarkened)
{
    renderer.setPixelScale(GetParam());
    const int band = 2 * static_cast<int>(std::floor(GetParam()));
    // A fully transparent white shows only the extra opacity of the darkened bands.
    renderer.setColour(255, 255, 255, 0);
    renderer.drawScanlineRect(0, 0, kWidth, kHeight);
    for (int row = 0; row < 4 * band; ++row)
    {
        const bool dark = (row % (2 * band)) >= band;
        const int topRow = kHeight - 1 - row;
        EXPECT_NEAR(brightness(at(50, topRow)), dark ? 32 : 0, 2) << "row " << row << " from the bottom";
    }
}

INSTANTIATE_TEST_SUITE_P(PixelScales, PrimitivesScanlines, ::testing::Values(1.0f, 2.0f, 2.5f));

TEST_F(Primitives, GridKeepsTheFirstEighthOfEachCell)
{
    renderer.setColour(255, 255, 255);
    renderer.drawGridRect(0, 0, kWidth, kHeight, 16.0f);
    for (int column = 0; column < 48; ++column)
    {
        for (int row = 0; row < 48; ++row)
        {
            const bool dot = column % 16 < 2 && row % 16 < 2;
            EXPECT_EQ(brightness(at(column, kHeight - 1 - row)) > 128, dot) << column << ", " << row;
        }
    }
}

TEST_F(Primitives, ImageAtNativeSizeReproducesItsTexture)
{
    const std::vector<uint8_t> pixels = patternPixels(64, 64);
    auto texture = renderer.createTexture(pixels.data(), 64, 64);
    ASSERT_NE(texture, nullptr);
    renderer.drawImage(*texture, 0, 0, 30, 20, 64, 64);
    int worst = 0;
    for (int y = 0; y < 64; ++y)
    {
        for (int x = 0; x < 64; ++x)
        {
            const Pixel drawn = at(30 + x, 20 + y);
            const uint8_t* expected = &pixels[static_cast<size_t>((y * 64 + x) * 4)];
            worst = std::max({worst, std::abs(drawn.r - expected[0]), std::abs(drawn.g - expected[1]),
                              std::abs(drawn.b - expected[2])});
        }
    }
    EXPECT_LE(worst, 1);
}

TEST_F(Primitives, ImagePartAndOpacity)
{
    const std::vector<uint8_t> pixels = patternPixels(64, 64);
    auto texture = renderer.createTexture(pixels.data(), 64, 64);
    renderer.drawImage(*texture, 16, 8, 0, 0, 8, 8);
    const uint8_t* source = &pixels[static_cast<size_t>((10 * 64 + 19) * 4)];
    EXPECT_TRUE(looksLike(at(3, 2), source[0], source[1], source[2], 1));
    EXPECT_TRUE(looksLike(at(9, 9), 0, 0, 0));

    renderer.drawImage(*texture, 16, 8, 100, 0, 8, 8, 0.5f);
    EXPECT_TRUE(looksLike(at(103, 2), source[0] / 2, source[1] / 2, source[2] / 2, 2));
}

TEST_F(Primitives, ScaledImageStretchesTheSourceRectangle)
{
    std::vector<uint8_t> pixels(64 * 64 * 4, 0);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
        {
            uint8_t* p = &pixels[static_cast<size_t>((y * 64 + x) * 4)];
            p[x < 32 ? 0 : 2] = 255;
            p[3] = 255;
        }
    auto texture = renderer.createTexture(pixels.data(), 64, 64);
    renderer.drawImageScaled(*texture, 0, 0, 64, 64, 0, 0, 128, 64);
    EXPECT_TRUE(looksLike(at(10, 30), 255, 0, 0));
    EXPECT_TRUE(looksLike(at(118, 30), 0, 0, 255));
}

class PrimitivesFrames : public Primitives, public ::testing::WithParamInterface<int>
{
};

TEST_P(PrimitivesFrames, FrameCallDrawsTheFrameAskedFor)
{
    // Five 32 x 32 frames packed into 128 x 64 as the image loader packs them; frame k is grey k * 50.
    velmoran::platform::FramePacking packing = velmoran::platform::packFrames(32, 160, 5, 16384);
    ASSERT_EQ(packing.textureWidth, 128);
    std::vector<uint8_t> strip(32 * 160 * 4);
    for (int row = 0; row < 160; ++row)
        for (int x = 0; x < 32; ++x)
        {
            uint8_t* p = &strip[static_cast<size_t>((row * 32 + x) * 4)];
            p[0] = p[1] = p[2] = static_cast<uint8_t>((row / 32) * 50 + 20);
            p[3] = 255;
        }
    std::vector<uint8_t> packed(static_cast<size_t>(packing.textureWidth * packing.textureHeight * 4), 0);
    velmoran::platform::copyFramesIntoTexture(packing, strip.data(), 32 * 4, packed.data());
    auto texture = renderer.createTexture(packed.data(), packing.textureWidth, packing.textureHeight);

    const int frame = GetParam();
    renderer.drawImageFrame(*texture, 32, 32, frame, 50, 40);
    const int grey = frame * 50 + 20;
    EXPECT_TRUE(looksLike(at(51, 41), grey, grey, grey, 1));
    EXPECT_TRUE(looksLike(at(66, 56), grey, grey, grey, 1));
    EXPECT_TRUE(looksLike(at(81, 71), grey, grey, grey, 1));
    EXPECT_TRUE(looksLike(at(83, 56), 0, 0, 0));
}

INSTANTIATE_TEST_SUITE_P(Frames, PrimitivesFrames, ::testing::Values(0, 1, 2, 3, 4));

TEST_F(Primitives, DashedLinesAlternateTwoPixelsOnAndOff)
{
    renderer.setColour(255, 200, 0);
    renderer.drawDashedLineHorizontal(10, 10, 64, 3, 0);
    renderer.drawDashedLineVertical(150, 10, 64, 3, 0);
    for (int i = 0; i < 32; ++i)
    {
        const bool on = i % 4 < 2;
        EXPECT_EQ(brightness(at(10 + i, 11)) > 128, on) << "along x at " << i;
        EXPECT_EQ(brightness(at(151, 10 + i)) > 128, on) << "along y at " << i;
    }
    EXPECT_TRUE(looksLike(at(10, 11), 255, 200, 0));
}

TEST_F(Primitives, DashPhaseShiftsThePattern)
{
    renderer.setColour(255, 255, 255);
    renderer.drawDashedLineHorizontal(10, 10, 64, 3, 2);
    EXPECT_LT(brightness(at(10, 11)), 128);
    EXPECT_GT(brightness(at(12, 11)), 128);
}

TEST_F(Primitives, StripShapesAreLitRaisedSunkenOrOutlined)
{
    renderer.setColour(100, 100, 100);
    renderer.drawStripShape(10, 10, 40, 40, 0.0f);
    EXPECT_TRUE(looksLike(at(30, 15), 108, 108, 108));
    EXPECT_TRUE(looksLike(at(30, 45), 100, 100, 100));

    renderer.drawStripShape(60, 10, 40, 40, 1.5f);
    EXPECT_TRUE(looksLike(at(80, 15), 93, 93, 93));
    EXPECT_TRUE(looksLike(at(80, 45), 100, 100, 100));

    renderer.drawStripShape(110, 10, 40, 40, 2.0f);
    EXPECT_TRUE(looksLike(at(110, 30), 100, 100, 100));
    EXPECT_TRUE(looksLike(at(130, 10), 100, 100, 100));
    EXPECT_TRUE(looksLike(at(149, 30), 100, 100, 100));
    EXPECT_TRUE(looksLike(at(130, 30), 0, 0, 0));

    renderer.drawStripShape(160, 10, 0.005f, 40, 0.0f);
    EXPECT_TRUE(looksLike(at(160, 30), 0, 0, 0));
}

TEST_F(Primitives, BitmapLabelIsDrawnInTheDrawingColourAndAdvances)
{
    renderer.setColour(255, 176, 0);
    renderer.drawBitmapString(10, 10, "II");
    const int advance = velmoran::platform::bitmapGlyphs()['I'].advance;
    int lit = 0;
    int litSecond = 0;
    for (int y = 10; y < 28; ++y)
        for (int x = 0; x < advance; ++x)
        {
            const Pixel first = at(10 + x, y);
            const Pixel second = at(10 + advance + x, y);
            lit += first.r > 200 && std::abs(first.g - 176) < 40 && first.b < 30 ? 1 : 0;
            litSecond += second.r > 200 ? 1 : 0;
        }
    EXPECT_GT(lit, 6);
    EXPECT_EQ(lit, litSecond);
    EXPECT_TRUE(looksLike(at(10 + 2 * advance + 4, 18), 0, 0, 0));
}

TEST_F(Primitives, ModelViewMatrixMovesTheDrawing)
{
    CGLRenderer::Matrix shift{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 100, 0, 0, 1};
    renderer.setModelViewMatrix(shift);
    renderer.setColour(255, 0, 0);
    renderer.fillRect(0, 0, 20, 20);
    EXPECT_TRUE(looksLike(at(110, 10), 255, 0, 0));
    EXPECT_TRUE(looksLike(at(10, 10), 0, 0, 0));
    renderer.resetModelViewMatrix();
    renderer.fillRect(0, 0, 20, 20);
    EXPECT_TRUE(looksLike(at(10, 10), 255, 0, 0));
}

} // namespace
