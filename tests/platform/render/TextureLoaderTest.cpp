#include "RenderTestWindow.h"

#include "platform/render/TextureLoader.h"
#include "platform/render/images/ImageLoader.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

#include <cstring>

using velmoran::platform::CGLRenderer;
using velmoran::platform::GLTexture;
using velmoran::platform::loadImage;
using velmoran::platform::loadTexture;

namespace
{

// The four bytes of pixel (x, y) of a texture's packed copy.
const uint8_t* texel(const GLTexture& texture, int x, int y)
{
    return &texture.pixels[static_cast<size_t>((y * texture.width + x) * 4)];
}

bool sameRow(const GLTexture& texture, int x, int y, const velmoran::platform::SoftwareImage& image, int row)
{
    return std::memcmp(texel(texture, x, y), image.pixels + static_cast<size_t>(row * image.rowstride),
                       static_cast<size_t>(image.width * 4)) == 0;
}

using TextureLoader = velmoran::test::RendererTest;

TEST_F(TextureLoader, FiveFrameStripIsPackedRowByRowIntoAPowerOfTwoTexture)
{
    const auto image = loadImage(velmoran::resources::kAutoLockSelector);
    ASSERT_TRUE(image.has_value());
    auto texture = loadTexture(renderer, velmoran::resources::kAutoLockSelector, 5);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->width, 128);
    EXPECT_EQ(texture->height, 64);
    EXPECT_NE(texture->name, 0u);
    EXPECT_EQ(texture->useCount, 1);
    // Frames 0 to 3 fill the first row, frame 4 starts the second.
    for (int frame = 0; frame < 5; ++frame)
        for (int row = 0; row < 32; ++row)
            EXPECT_TRUE(sameRow(*texture, frame % 4 * 32, frame / 4 * 32 + row, *image, frame * 32 + row))
                << "frame " << frame << " row " << row;
    EXPECT_EQ(texel(*texture, 40, 40)[3], 0) << "the space beside frame 4 stays transparent";
}

TEST_F(TextureLoader, SmallIconSitsInTheTopLeftOfA64Texture)
{
    const auto image = loadImage(velmoran::resources::kIconPeak);
    ASSERT_TRUE(image.has_value());
    auto texture = loadTexture(renderer, velmoran::resources::kIconPeak);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->width, 64);
    EXPECT_EQ(texture->height, 64);
    for (int row = 0; row < 16; ++row)
        EXPECT_TRUE(sameRow(*texture, 0, row, *image, row)) << row;
    EXPECT_EQ(texel(*texture, 16, 0)[3], 0);
    EXPECT_EQ(texel(*texture, 0, 16)[3], 0);
}

// Each frame of a loaded strip, the one on the texture's second row too, draws as stored (its
// opaque pixels) and no wider than a frame.
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
