#include "RenderTestWindow.h"

#include "platform/render/TextureLoader.h"
#include "platform/render/images/ImageLoader.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

using velmoran::platform::CGLRenderer;
using velmoran::platform::loadImage;
using velmoran::platform::loadTexture;

namespace
{

using TextureLoader = velmoran::test::RendererTest;

// Each frame of a loaded strip, the one on the texture's second row too, draws as stored (its
// opaque pixels) and no wider than a frame. Where each frame lands in the texture is the packing's
// (FramePackingTest.cpp).
TEST_F(TextureLoader, EveryLoadedFrameDrawsAsStored)
{
    const auto image = loadImage(velmoran::resources::kAutoLockSelector);
    ASSERT_TRUE(image.has_value());
    auto texture = loadTexture(renderer, velmoran::resources::kAutoLockSelector, 5);
    ASSERT_NE(texture, nullptr);
    for (int frame = 0; frame < 5; ++frame)
    {
        SCOPED_TRACE(frame);
        renderer.clear();
        renderer.drawImageFrame(*texture, 32, 32, frame, 10, 20);
        int compared = 0;
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
            {
                const uint8_t* stored =
                    image->pixels + static_cast<size_t>((frame * 32 + y) * image->rowstride + x * 4);
                if (stored[3] != 255)
                    continue;
                EXPECT_TRUE(
                    velmoran::test::looksLike(at(10 + x, 20 + y), stored[0], stored[1], stored[2], 1));
                ++compared;
            }
        EXPECT_GT(compared, 100);
        expectPixels({{42, 36, 0, 0, 0}});
    }
}

TEST_F(TextureLoader, MissingImageGivesNothing)
{
    EXPECT_EQ(loadTexture(renderer, 4242, 1), nullptr);
}

TEST(TextureLoaderWithoutContext, GivesNothing)
{
    CGLRenderer renderer;
    EXPECT_EQ(loadTexture(renderer, velmoran::resources::kIconPeak), nullptr);
}

} // namespace
