#include "RenderTestWindow.h"

#include "platform/render/BitmapFont.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <iterator>

using velmoran::platform::CGLRenderer;
using velmoran::platform::Colour;
using velmoran::test::Pixel;

namespace
{

int brightness(const Pixel& pixel)
{
    return std::max({pixel.r, pixel.g, pixel.b});
}

// Pixels of a small opaque picture, from a colour a pixel (fill(x, y, rgba)).
template <typename Fill> std::vector<uint8_t> picture(int width, int height, Fill fill)
{
    std::vector<uint8_t> pixels(static_cast<size_t>(width * height * 4));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            uint8_t* p = &pixels[static_cast<size_t>((y * width + x) * 4)];
            fill(x, y, p);
            p[3] = 255;
        }
    return pixels;
}

// Every pixel a different colour.
std::vector<uint8_t> patternPixels(int width, int height)
{
    return picture(width, height,
                   [](int x, int y, uint8_t* p)
                   {
                       p[0] = static_cast<uint8_t>(x * 4);
                       p[1] = static_cast<uint8_t>(y * 4);
                       p[2] = static_cast<uint8_t>((x * 7 + y * 13) & 0xFF);
                   });
}

using Primitives = velmoran::test::RendererTest;

// One unit a logical pixel from the top left: the drawing colour inside the rectangle only.
TEST_F(Primitives, FilledRectangleHasTheDrawingColourInsideOnly)
{
    renderer.setColour(200, 100, 50);
    renderer.fillRect(20, 20, 40, 30);
    renderer.fillRect(0, 0, 1, 1);
    renderer.fillRect(199, 99, 1, 1);
    expectPixels({{21, 21, 200, 100, 50},
                  {58, 48, 200, 100, 50},
                  {19, 30, 0, 0, 0},
                  {40, 51, 0, 0, 0},
                  {0, 0, 200, 100, 50},
                  {199, 99, 200, 100, 50},
                  {0, 1, 0, 0, 0},
                  {1, 0, 0, 0, 0}});
}

TEST_F(Primitives, TranslucentColourBlendsOverTheClearColour)
{
    renderer.setClearColour(0, 0, 200);
    renderer.clear();
    renderer.setColour(255, 0, 0, 128);
    renderer.fillRect(0, 0, kWidth, kHeight);
    expectPixels({{50, 50, 128, 0, 99}}, 3);
}

TEST_F(Primitives, QuadsFollowTheirCornersAndColours)
{
    const float corners[8] = {10, 10, 90, 10, 90, 90, 10, 90};
    const Colour colours[4] = {{1, 0, 0, 1}, {1, 0, 0, 1}, {0, 0, 1, 1}, {0, 0, 1, 1}};
    renderer.fillQuad(corners, colours);
    renderer.setColour(0, 255, 0);
    const float kite[8] = {150, 10, 190, 50, 150, 90, 110, 50};
    renderer.fillQuad(kite);
    expectPixels({{50, 11, 255, 0, 0}, {50, 88, 0, 0, 255}}, 14);
    expectPixels({{150, 50, 0, 255, 0}, {115, 15, 0, 0, 0}});
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
    velmoran::platform::VertexArray vertices;
    vertices.add(100, 10, {1, 1, 0, 1});
    vertices.add(190, 10, {1, 1, 0, 1});
    vertices.add(190, 90, {1, 1, 0, 1});
    renderer.drawTriangles(vertices);
    expectPixels({{15, 15, 0, 255, 0}, {55, 55, 0, 0, 0}, {185, 15, 255, 255, 0}, {105, 85, 0, 0, 0}});
}

// Every draw ends with no program in use, also one with nothing to draw.
TEST_F(Primitives, EveryDrawLeavesNoProgramInUse)
{
    const velmoran::platform::VertexArray noVertices;
    const std::vector<uint8_t> pixels = patternPixels(64, 64);
    const auto texture = renderer.createTexture(pixels.data(), 64, 64);
    const std::function<void()> draws[] = {
        [&] { renderer.fillRect(0, 0, 10, 10); }, [&] { renderer.drawTriangles(nullptr, nullptr, 0); },
        [&] { renderer.drawTriangles(noVertices); }, [&] { renderer.drawCircle(50, 50, 10, 0); },
        [&] { renderer.drawImage(*texture, 0, 0, 0, 0, 64, 64); }};
    for (size_t draw = 0; draw < std::size(draws); ++draw)
    {
        draws[draw]();
        GLint program = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        EXPECT_EQ(program, 0) << "draw " << draw;
    }
}

// Each program mixes between grey (Rec. 709 luminance of pure red: 0.2126) and full colour.
TEST_F(Primitives, SaturationMixesBetweenGreyAndFullColour)
{
    const std::vector<uint8_t> red = picture(64, 64, [](int, int, uint8_t* p) { p[0] = 255; });
    auto texture = renderer.createTexture(red.data(), 64, 64);
    renderer.makeCurrent();
    renderer.setColour(255, 0, 0);
    for (const std::string primitive : {"flat", "scanline", "image"})
        for (const float saturation : {0.0f, 1.0f})
        {
            SCOPED_TRACE(primitive + (saturation == 0.0f ? " grey" : " colour"));
            renderer.clear();
            renderer.setSaturation(saturation);
            if (primitive == "flat")
                renderer.fillRect(0, 0, kWidth, kHeight);
            else if (primitive == "scanline")
                renderer.drawScanlineRect(0, 0, kWidth, kHeight);
            else
                renderer.drawImage(*texture, 0, 0, 0, 0, 64, 64);
            if (saturation == 0.0f)
                expectPixels({{30, 30, 54, 54, 54}});
            else
                expectPixels({{30, 30, 255, 0, 0}});
            renderer.setSaturation(1.0f);
        }
}

TEST_F(Primitives, DiscIsFilledToItsRadius)
{
    renderer.setColour(255, 255, 255);
    renderer.drawCircle(100.3f, 50.7f, 20.0f, 0.0f);
    expectPixels({{100, 50, 255, 255, 255},
                  {118, 50, 255, 255, 255},
                  {100, 32, 255, 255, 255},
                  {121, 50, 0, 0, 0},
                  {100, 71, 0, 0, 0}});
    // Along the diagonal the brightness falls from full (18.4 pixels out) to nothing (21.2 out).
    EXPECT_GT(brightness(at(113, 63)), 245);
    EXPECT_LT(brightness(at(115, 65)), 10);
}

TEST_F(Primitives, RingLiesBetweenItsRadiiInEitherOrder)
{
    renderer.setColour(0, 255, 0);
    renderer.drawCircle(60, 50, 10.0f, 20.0f);
    renderer.drawCircle(150, 50, 20.0f, 10.0f);
    for (const int c : {60, 150})
        expectPixels({{c, 50, 0, 0, 0},
                      {c + 5, 50, 0, 0, 0},
                      {c + 15, 50, 0, 255, 0},
                      {c, 35, 0, 255, 0},
                      {c + 22, 50, 0, 0, 0}});
}

// Bands of rows twice the whole pixel scale high are darkened in turn.
TEST_F(Primitives, ScanlinesDarkenAlternateBandsOfRows)
{
    // A fully transparent white shows only the extra opacity of the darkened bands.
    renderer.setColour(255, 255, 255, 0);
    for (const float scale : {1.0f, 2.0f, 2.5f})
    {
        SCOPED_TRACE(scale);
        renderer.clear();
        renderer.setPixelScale(scale);
        renderer.drawScanlineRect(0, 0, kWidth, kHeight);
        const int band = 2 * static_cast<int>(std::floor(scale));
        for (int row = 0; row < 4 * band; ++row)
        {
            const bool dark = (row % (2 * band)) >= band;
            EXPECT_NEAR(brightness(at(50, kHeight - 1 - row)), dark ? 32 : 0, 2)
                << "row " << row << " from the bottom";
        }
    }
}

TEST_F(Primitives, GridKeepsTheFirstEighthOfEachCell)
{
    renderer.setColour(255, 255, 255);
    renderer.drawGridRect(0, 0, kWidth, kHeight, 16.0f);
    for (int column = 0; column < 48; ++column)
        for (int row = 0; row < 48; ++row)
        {
            const bool dot = column % 16 < 2 && row % 16 < 2;
            EXPECT_EQ(brightness(at(column, kHeight - 1 - row)) > 128, dot) << column << ", " << row;
        }
}

// A part of an image lands where asked, at half opacity at half strength; a scaled image stretches
// the source rectangle. Whole frames drawn pixel for pixel are TextureLoaderTest.cpp's.
TEST_F(Primitives, ImagePartsAndScaledImages)
{
    const std::vector<uint8_t> pixels = patternPixels(64, 64);
    auto texture = renderer.createTexture(pixels.data(), 64, 64);
    ASSERT_NE(texture, nullptr);
    renderer.drawImage(*texture, 16, 8, 0, 0, 8, 8);
    renderer.drawImage(*texture, 16, 8, 100, 0, 8, 8, 0.5f);
    const uint8_t* s = &pixels[static_cast<size_t>((10 * 64 + 19) * 4)];
    expectPixels({{3, 2, s[0], s[1], s[2]}, {9, 9, 0, 0, 0}}, 1);
    expectPixels({{103, 2, s[0] / 2, s[1] / 2, s[2] / 2}});

    const std::vector<uint8_t> halves =
        picture(64, 64, [](int x, int, uint8_t* p) { p[x < 32 ? 0 : 2] = 255; });
    auto stretched = renderer.createTexture(halves.data(), 64, 64);
    renderer.clear();
    renderer.drawImageScaled(*stretched, 0, 0, 64, 64, 0, 0, 128, 64);
    expectPixels({{10, 30, 255, 0, 0}, {118, 30, 0, 0, 255}});
}

// Dashes are two pixels on, two off, along either axis; the phase shifts the pattern.
TEST_F(Primitives, DashedLinesAlternateTwoPixelsOnAndOff)
{
    renderer.setColour(255, 200, 0);
    renderer.drawDashedLineHorizontal(10, 10, 64, 3, 0);
    renderer.drawDashedLineVertical(150, 10, 64, 3, 0);
    renderer.drawDashedLineHorizontal(10, 50, 64, 3, 2);
    for (int i = 0; i < 32; ++i)
    {
        const bool on = i % 4 < 2;
        EXPECT_EQ(brightness(at(10 + i, 11)) > 128, on) << "along x at " << i;
        EXPECT_EQ(brightness(at(151, 10 + i)) > 128, on) << "along y at " << i;
        EXPECT_EQ(brightness(at(10 + i, 51)) > 128, !on) << "shifted along x at " << i;
    }
    expectPixels({{10, 11, 255, 200, 0}});
}

// Style 0 is lit from above, 1.5 sunken, 2 an outline; a sliver under a hundredth of a pixel draws nothing.
TEST_F(Primitives, StripShapesAreLitRaisedSunkenOrOutlined)
{
    renderer.setColour(100, 100, 100);
    renderer.drawStripShape(10, 10, 40, 40, 0.0f);
    renderer.drawStripShape(60, 10, 40, 40, 1.5f);
    renderer.drawStripShape(110, 10, 40, 40, 2.0f);
    renderer.drawStripShape(160, 10, 0.005f, 40, 0.0f);
    expectPixels({{30, 15, 108, 108, 108},
                  {80, 15, 93, 93, 93},
                  {80, 45, 100, 100, 100},
                  {110, 30, 100, 100, 100},
                  {130, 10, 100, 100, 100},
                  {130, 30, 0, 0, 0},
                  {160, 30, 0, 0, 0}});
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
            lit += first.r > 200 && std::abs(first.g - 176) < 40 && first.b < 30 ? 1 : 0;
            litSecond += at(10 + advance + x, y).r > 200 ? 1 : 0;
        }
    EXPECT_GT(lit, 6);
    EXPECT_EQ(lit, litSecond);
    expectPixels({{10 + 2 * advance + 4, 18, 0, 0, 0}});
}

TEST_F(Primitives, ModelViewMatrixMovesTheDrawing)
{
    renderer.setModelViewMatrix(CGLRenderer::Matrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 100, 0, 0, 1});
    renderer.setColour(255, 0, 0);
    renderer.fillRect(0, 0, 20, 20);
    expectPixels({{110, 10, 255, 0, 0}, {10, 10, 0, 0, 0}});
    renderer.resetModelViewMatrix();
    renderer.fillRect(0, 0, 20, 20);
    expectPixels({{10, 10, 255, 0, 0}});
}

} // namespace
