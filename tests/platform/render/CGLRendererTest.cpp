#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

#include <cstdlib>

using velmoran::platform::CGLRenderer;
using velmoran::test::Pixel;
using velmoran::test::pixelAt;

namespace
{

bool isColour(const Pixel& pixel, int r, int g, int b)
{
    return std::abs(pixel.r - r) <= 2 && std::abs(pixel.g - g) <= 2 && std::abs(pixel.b - b) <= 2;
}

class Renderer : public ::testing::Test
{
protected:
    void SetUp() override { velmoran::test::recordedBoxes().clear(); }

    void TearDown() override
    {
        for (CGLRenderer& renderer : renderers)
            renderer.teardown();
        velmoran::test::closeAllWindows();
    }

    CGLRenderer& open(int width, int height, double logicalWidth, double logicalHeight)
    {
        CGLRenderer& renderer = renderers[used++];
        HWND window = velmoran::test::openChildWindow(width, height);
        EXPECT_EQ(renderer.initialise(window, logicalWidth, logicalHeight, width, height), 0);
        renderer.makeCurrent();
        renderer.beginFrame();
        renderer.setClearColour(0, 0, 0);
        renderer.clear();
        return renderer;
    }

    CGLRenderer renderers[2];
    int used = 0;
};

TEST_F(Renderer, InitialiseSucceedsWithGlsl150AndBuildsTheSharedObjects)
{
    ASSERT_EQ(CGLRenderer::sharedContext(), nullptr);
    CGLRenderer& renderer = open(200, 100, 200, 100);
    EXPECT_FALSE(renderer.missingEntryPoints());
    EXPECT_NE(CGLRenderer::sharedContext(), nullptr);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    for (int number = 1; number <= 5; ++number)
    {
        ASSERT_NE(velmoran::platform::sharedProgram(number), nullptr);
        EXPECT_NE(velmoran::platform::sharedProgram(number)->program, 0u);
        EXPECT_EQ(velmoran::platform::sharedProgram(number)->useCount, 1);
    }
    ASSERT_NE(CGLRenderer::dashTexture(), nullptr);
    EXPECT_EQ(CGLRenderer::dashTexture()->width, 8);
    EXPECT_EQ(CGLRenderer::dashTexture()->height, 1);
    ASSERT_NE(CGLRenderer::glyphAtlas(), nullptr);
    EXPECT_EQ(CGLRenderer::glyphAtlas()->width, 512);
    EXPECT_TRUE(velmoran::test::recordedBoxes().empty());
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
}

TEST_F(Renderer, TwoRenderersShareOneContextUntilTheLastTeardown)
{
    CGLRenderer& first = open(200, 100, 200, 100);
    HGLRC context = CGLRenderer::sharedContext();
    CGLRenderer& second = open(120, 80, 120, 80);
    EXPECT_EQ(CGLRenderer::sharedContext(), context);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 2);
    EXPECT_EQ(velmoran::platform::sharedProgram(velmoran::platform::kProgramFlat)->useCount, 2);
    EXPECT_EQ(CGLRenderer::dashTexture()->useCount, 2);
    EXPECT_EQ(CGLRenderer::glyphAtlas()->useCount, 2);

    first.teardown();
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    second.makeCurrent();
    second.beginFrame();
    second.setColour(0, 0, 255);
    second.fillRect(0, 0, 120, 80);
    EXPECT_TRUE(isColour(pixelAt(60, 40, 80), 0, 0, 255));

    second.teardown();
    EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 0);
    EXPECT_EQ(velmoran::platform::sharedProgram(velmoran::platform::kProgramFlat), nullptr);
    EXPECT_EQ(CGLRenderer::dashTexture(), nullptr);
    EXPECT_EQ(CGLRenderer::glyphAtlas(), nullptr);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

TEST_F(Renderer, ProjectionPutsTheOriginTopLeftWithOneUnitPerLogicalPixel)
{
    CGLRenderer& renderer = open(200, 100, 200, 100);
    const CGLRenderer::Matrix& m = renderer.projectionMatrix();
    // The logical corners land on the corners of clip space.
    EXPECT_FLOAT_EQ(m[0] * 0.0f + m[12], -1.0f);
    EXPECT_FLOAT_EQ(m[0] * 200.0f + m[12], 1.0f);
    EXPECT_FLOAT_EQ(m[5] * 0.0f + m[13], 1.0f);
    EXPECT_FLOAT_EQ(m[5] * 100.0f + m[13], -1.0f);
    renderer.setColour(255, 255, 0);
    renderer.fillRect(0, 0, 1, 1);
    EXPECT_TRUE(isColour(pixelAt(0, 0, 100), 255, 255, 0));
    EXPECT_TRUE(isColour(pixelAt(0, 1, 100), 0, 0, 0));
}

TEST_F(Renderer, LogicalAreaIsStretchedOverTheViewport)
{
    // 160 x 80 logical pixels on a 200 x 100 window: everything grows by 1.25.
    CGLRenderer& renderer = open(200, 100, 160, 80);
    renderer.setColour(255, 0, 0);
    renderer.fillRect(40, 40, 40, 20);
    EXPECT_TRUE(isColour(pixelAt(51, 51, 100), 255, 0, 0));
    EXPECT_TRUE(isColour(pixelAt(98, 73, 100), 255, 0, 0));
    EXPECT_TRUE(isColour(pixelAt(48, 48, 100), 0, 0, 0));
    EXPECT_TRUE(isColour(pixelAt(101, 76, 100), 0, 0, 0));
    float width = 0.0f;
    float height = 0.0f;
    renderer.logicalSize(width, height);
    EXPECT_EQ(width, 160.0f);
    EXPECT_EQ(height, 80.0f);
}

TEST_F(Renderer, ClearUsesTheClearColour)
{
    CGLRenderer& renderer = open(200, 100, 200, 100);
    renderer.setClearColour(10, 128, 250);
    renderer.clear();
    EXPECT_TRUE(isColour(pixelAt(100, 50, 100), 10, 128, 250));
}

TEST_F(Renderer, ScissorClipsAndAnEmptyRectangleSwitchesItOff)
{
    CGLRenderer& renderer = open(200, 100, 200, 100);
    renderer.setColour(255, 255, 255);
    renderer.setScissor(10, 20, 30, 40);
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    renderer.fillRect(0, 0, 200, 100);
    EXPECT_TRUE(isColour(pixelAt(11, 21, 100), 255, 255, 255));
    EXPECT_TRUE(isColour(pixelAt(38, 58, 100), 255, 255, 255));
    EXPECT_TRUE(isColour(pixelAt(9, 30, 100), 0, 0, 0));
    EXPECT_TRUE(isColour(pixelAt(20, 61, 100), 0, 0, 0));

    renderer.setScissor(0, 0, 0, 0);
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    renderer.fillRect(0, 0, 200, 100);
    EXPECT_TRUE(isColour(pixelAt(150, 90, 100), 255, 255, 255));
}

TEST_F(Renderer, PixelScaleIsAtLeastOne)
{
    CGLRenderer renderer;
    renderer.setPixelScale(0.5f);
    EXPECT_EQ(renderer.pixelScale(), 1.0f);
    renderer.setPixelScale(1.75f);
    EXPECT_EQ(renderer.pixelScale(), 1.75f);
}

TEST_F(Renderer, NewViewportSizeIsFlaggedUntilPresent)
{
    CGLRenderer& renderer = open(200, 100, 200, 100);
    float width = 0.0f;
    float height = 0.0f;
    EXPECT_FALSE(renderer.viewportSize(width, height));
    renderer.setViewportSize(300.0f, 150.0f);
    EXPECT_TRUE(renderer.viewportSize(width, height));
    EXPECT_EQ(width, 300.0f);
    EXPECT_EQ(height, 150.0f);
    renderer.present();
    EXPECT_FALSE(renderer.viewportSize(width, height));
}

TEST_F(Renderer, ReuploadShowsChangedPixels)
{
    CGLRenderer& renderer = open(200, 100, 200, 100);
    std::vector<uint8_t> pixels(64 * 64 * 4, 255);
    auto texture = renderer.createTexture(pixels.data(), 64, 64);
    ASSERT_NE(texture, nullptr);
    EXPECT_NE(texture->name, 0u);
    EXPECT_EQ(texture->useCount, 1);
    for (size_t i = 0; i < texture->pixels.size(); i += 4)
        texture->pixels[i + 1] = 0;
    renderer.reuploadTexture(*texture);
    renderer.drawImage(*texture, 0, 0, 0, 0, 64, 64);
    EXPECT_TRUE(isColour(pixelAt(30, 30, 100), 255, 0, 255));
}

TEST_F(Renderer, ReadBackCopiesTheWindowIntoTheTexture)
{
    CGLRenderer& renderer = open(200, 100, 200, 100);
    renderer.setColour(255, 0, 0);
    renderer.fillRect(0, 0, 64, 32);
    renderer.setColour(0, 0, 255);
    renderer.fillRect(0, 32, 64, 32);
    std::vector<uint8_t> empty(64 * 64 * 4, 0);
    auto texture = renderer.createTexture(empty.data(), 64, 64);
    // The region whose lower edge lies 64 pixels below the top: the window's top-left 64 x 64.
    renderer.readBackTexture(*texture, 0, 64);
    // Rows come bottom-up: blue first, then red.
    const uint8_t* bottomRow = &texture->pixels[0];
    const uint8_t* topRow = &texture->pixels[static_cast<size_t>(63 * 64 * 4)];
    EXPECT_EQ(bottomRow[2], 255);
    EXPECT_EQ(bottomRow[0], 0);
    EXPECT_EQ(topRow[0], 255);
    EXPECT_EQ(topRow[2], 0);
}

struct SizeCase
{
    int requestWidth;
    int requestHeight;
    int width;
    int height;
};

class PowerOfTwo : public Renderer, public ::testing::WithParamInterface<SizeCase>
{
};

TEST_P(PowerOfTwo, SidesStartAt64AndDoubleUpToTheDriverLimit)
{
    open(200, 100, 200, 100);
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    int width = 0;
    int height = 0;
    CGLRenderer::powerOfTwoSize(GetParam().requestWidth == 0 ? limit * 2 : GetParam().requestWidth,
                                GetParam().requestHeight, width, height);
    EXPECT_EQ(width, GetParam().width);
    EXPECT_EQ(height, GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(Requests, PowerOfTwo,
                         ::testing::Values(SizeCase{16, 16, 64, 64}, SizeCase{96, 64, 128, 64},
                                           SizeCase{884, 308, 1024, 512}, SizeCase{1025, 1, 2048, 64},
                                           SizeCase{0, 64, -1, 64}));

TEST(RendererWithoutContext, PowerOfTwoSizeStopsAt1024)
{
    ASSERT_EQ(CGLRenderer::sharedContext(), nullptr);
    int width = 0;
    int height = 0;
    CGLRenderer::powerOfTwoSize(1024, 1025, width, height);
    EXPECT_EQ(width, 1024);
    EXPECT_EQ(height, -1);
}

TEST(RendererWithoutContext, EveryOperationIsHarmless)
{
    CGLRenderer renderer;
    renderer.clear();
    renderer.beginFrame();
    renderer.setScissor(1, 2, 3, 4);
    renderer.fillRect(0, 0, 10, 10);
    renderer.drawCircle(5, 5, 3, 0);
    renderer.present();
    EXPECT_EQ(renderer.createTexture(nullptr, 64, 64), nullptr);
    renderer.teardown();
}

} // namespace
