#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

using velmoran::platform::CGLRenderer;
using velmoran::platform::sharedProgram;
using velmoran::test::looksLike;
using velmoran::test::pixelAt;

namespace
{

using Renderer = velmoran::test::RendererTest;

TEST_F(Renderer, InitialiseSucceedsWithGlsl150AndBuildsTheSharedObjects)
{
    EXPECT_FALSE(renderer.missingEntryPoints());
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    for (int number = 1; number <= 5; ++number)
        EXPECT_TRUE(sharedProgram(number) != nullptr && sharedProgram(number)->program != 0u) << number;
    EXPECT_NE(CGLRenderer::dashTexture(), nullptr);
    EXPECT_NE(CGLRenderer::glyphAtlas(), nullptr);
    EXPECT_TRUE(velmoran::test::recordedBoxes().empty());
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
}

TEST_F(Renderer, TwoRenderersShareOneContextUntilTheLastTeardown)
{
    HGLRC context = CGLRenderer::sharedContext();
    CGLRenderer second;
    ASSERT_TRUE(velmoran::test::openClearedRenderer(second, 120, 80));
    EXPECT_EQ(CGLRenderer::sharedContext(), context);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 2);
    EXPECT_EQ(sharedProgram(velmoran::platform::kProgramFlat)->useCount, 2);
    EXPECT_EQ(CGLRenderer::dashTexture()->useCount, 2);
    EXPECT_EQ(CGLRenderer::glyphAtlas()->useCount, 2);

    renderer.teardown();
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    second.makeCurrent();
    second.beginFrame();
    second.setColour(0, 0, 255);
    second.fillRect(0, 0, 120, 80);
    EXPECT_TRUE(looksLike(pixelAt(60, 40, 80), 0, 0, 255));

    second.teardown();
    EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);
    EXPECT_EQ(sharedProgram(velmoran::platform::kProgramFlat), nullptr);
    EXPECT_EQ(CGLRenderer::dashTexture(), nullptr);
    EXPECT_EQ(CGLRenderer::glyphAtlas(), nullptr);
}

TEST_F(Renderer, ScissorClipsAndAnEmptyRectangleSwitchesItOff)
{
    renderer.setColour(255, 255, 255);
    renderer.setScissor(10, 20, 30, 40);
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    renderer.fillRect(0, 0, 200, 100);
    expectPixels({{11, 21, 255, 255, 255}, {38, 58, 255, 255, 255}, {9, 30, 0, 0, 0}, {20, 61, 0, 0, 0}});

    renderer.setScissor(0, 0, 0, 0);
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    renderer.fillRect(0, 0, 200, 100);
    expectPixels({{150, 90, 255, 255, 255}});
}

TEST_F(Renderer, NewViewportSizeIsFlaggedUntilPresent)
{
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
    std::vector<uint8_t> pixels(64 * 64 * 4, 255);
    auto texture = renderer.createTexture(pixels.data(), 64, 64);
    ASSERT_NE(texture, nullptr);
    for (size_t i = 0; i < texture->pixels.size(); i += 4)
        texture->pixels[i + 1] = 0;
    renderer.reuploadTexture(*texture);
    renderer.drawImage(*texture, 0, 0, 0, 0, 64, 64);
    expectPixels({{30, 30, 255, 0, 255}});
}

// A texture made to be read back is made without pixels and starts cleared.
TEST_F(Renderer, ReadBackCopiesTheWindowIntoATextureMadeWithoutPixels)
{
    renderer.setColour(255, 0, 0);
    renderer.fillRect(0, 0, 64, 32);
    renderer.setColour(0, 0, 255);
    renderer.fillRect(0, 32, 64, 32);
    auto texture = renderer.createTexture(nullptr, 64, 64);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->pixels, std::vector<uint8_t>(64 * 64 * 4, 0));
    // The region whose lower edge lies 64 pixels below the top: the window's top-left 64 x 64,
    // rows bottom-up (blue first, then red).
    renderer.readBackTexture(*texture, 0, 64);
    const uint8_t* bottomRow = &texture->pixels[0];
    const uint8_t* topRow = &texture->pixels[static_cast<size_t>(63 * 64 * 4)];
    EXPECT_EQ(bottomRow[2], 255);
    EXPECT_EQ(topRow[0], 255);
}

// Texture sides start at 64 and double up to the driver's limit (-1 beyond it).
TEST_F(Renderer, PowerOfTwoSizes)
{
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    const int cases[][4] = {{16, 16, 64, 64},
                            {96, 64, 128, 64},
                            {884, 308, 1024, 512},
                            {1025, 1, 2048, 64},
                            {2 * limit, 64, -1, 64}};
    for (const auto& request : cases)
    {
        int width = 0;
        int height = 0;
        CGLRenderer::powerOfTwoSize(request[0], request[1], width, height);
        EXPECT_EQ(width, request[2]) << request[0];
        EXPECT_EQ(height, request[3]) << request[1];
    }
}

// 160 x 80 logical pixels on a 200 x 100 window: everything grows by 1.25.
TEST(RendererOnItsOwn, LogicalAreaIsStretchedOverTheViewport)
{
    CGLRenderer renderer;
    ASSERT_TRUE(velmoran::test::openClearedRenderer(renderer, 200, 100, 160, 80));
    renderer.setColour(255, 0, 0);
    renderer.fillRect(40, 40, 40, 20);
    EXPECT_TRUE(looksLike(pixelAt(51, 51, 100), 255, 0, 0));
    EXPECT_TRUE(looksLike(pixelAt(98, 73, 100), 255, 0, 0));
    EXPECT_TRUE(looksLike(pixelAt(48, 48, 100), 0, 0, 0));
    EXPECT_TRUE(looksLike(pixelAt(101, 76, 100), 0, 0, 0));
    renderer.teardown();
    velmoran::test::closeAllWindows();
}

// A window that is gone gives no context; the next renderer creates one and keeps its own count.
TEST(RendererOnItsOwn, FailedContextCreationIsTriedAgainByTheNextRenderer)
{
    const velmoran::test::BoxRecorder boxes;
    HWND gone = velmoran::test::openChildWindow(64, 64);
    DestroyWindow(gone);
    CGLRenderer failed;
    EXPECT_EQ(failed.initialise(gone, 64, 64, 64, 64), CGLRenderer::kNoContext);
    EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);

    CGLRenderer next;
    ASSERT_TRUE(velmoran::test::openClearedRenderer(next, 200, 100));
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    failed.teardown();
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    next.teardown();
    velmoran::test::closeAllWindows();
}

// Without a context: texture sides stop at 1024, the pixel scale is at least one, and every
// drawing call is harmless.
TEST(RendererOnItsOwn, WithoutAContextKeepsSafeLimitsAndDrawsNothing)
{
    ASSERT_EQ(CGLRenderer::sharedContext(), nullptr);
    int width = 0;
    int height = 0;
    CGLRenderer::powerOfTwoSize(1024, 1025, width, height);
    EXPECT_EQ(width, 1024);
    EXPECT_EQ(height, -1);

    CGLRenderer renderer;
    renderer.setPixelScale(0.5f);
    EXPECT_EQ(renderer.pixelScale(), 1.0f);
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
