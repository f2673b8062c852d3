#include "RenderTestWindow.h"

#include "platform/render/TextureLoader.h"
#include "platform/render/images/ImageLoader.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

#include <cstring>

using velmoran::platform::CGLRenderer;
using velmoran::platform::GLTexture;

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

class TextureLoader : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(renderer.initialise(velmoran::test::openChildWindow(200, 100), 200, 100, 200, 100), 0);
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

    CGLRenderer renderer;
};

TEST_F(TextureLoader, FiveFrameStripIsPackedRowByRowIntoAPowerOfTwoTexture)
{
    const auto image = velmoran::platform::loadImage(velmoran::resources::kAutoLockSelector);
    ASSERT_TRUE(image.has_value());
    ASSERT_EQ(image->width, 32);
    ASSERT_EQ(image->height, 160);
    auto texture = velmoran::platform::loadTexture(renderer, velmoran::resources::kAutoLockSelector, 5);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->width, 128);
    EXPECT_EQ(texture->height, 64);
    EXPECT_NE(texture->name, 0u);
    EXPECT_EQ(texture->useCount, 1);
    // Frames 0 to 3 fill the first row, frame 4 starts the second.
    const int cellX[5] = {0, 32, 64, 96, 0};
    const int cellY[5] = {0, 0, 0, 0, 32};
    for (int frame = 0; frame < 5; ++frame)
        for (int row = 0; row < 32; ++row)
            EXPECT_TRUE(sameRow(*texture, cellX[frame], cellY[frame] + row, *image, frame * 32 + row))
                << "frame " << frame << " row " << row;
    EXPECT_EQ(texel(*texture, 40, 40)[3], 0) << "the space beside frame 4 stays transparent";
}

TEST_F(TextureLoader, SmallIconSitsInTheTopLeftOfA64Texture)
{
    const auto image = velmoran::platform::loadImage(velmoran::resources::kIconPeak);
    ASSERT_TRUE(image.has_value());
    auto texture = velmoran::platform::loadTexture(renderer, velmoran::resources::kIconPeak);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->width, 64);
    EXPECT_EQ(texture->height, 64);
    for (int row = 0; row < 16; ++row)
        EXPECT_TRUE(sameRow(*texture, 0, row, *image, row)) << row;
    EXPECT_EQ(texel(*texture, 16, 0)[3], 0);
    EXPECT_EQ(texel(*texture, 0, 16)[3], 0);
}

TEST_F(TextureLoader, LoadedFrameDrawsAsStored)
{
    const auto image = velmoran::platform::loadImage(velmoran::resources::kChannelModeButton);
    ASSERT_TRUE(image.has_value());
    auto texture = velmoran::platform::loadTexture(renderer, velmoran::resources::kChannelModeButton, 3);
    ASSERT_NE(texture, nullptr);
    renderer.drawImageFrame(*texture, 32, 32, 2, 10, 20);
    // Compare the opaque pixels of frame 2 (rows 64..95 of the strip) with the drawing.
    int compared = 0;
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
        {
            const uint8_t* source = image->pixels + static_cast<size_t>((64 + y) * image->rowstride + x * 4);
            if (source[3] != 255)
                continue;
            const velmoran::test::Pixel drawn = velmoran::test::pixelAt(10 + x, 20 + y, 100);
            EXPECT_NEAR(drawn.r, source[0], 1);
            EXPECT_NEAR(drawn.g, source[1], 1);
            EXPECT_NEAR(drawn.b, source[2], 1);
            ++compared;
        }
    EXPECT_GT(compared, 100);
}

TEST_F(TextureLoader, MissingImageGivesNothing)
{
    EXPECT_EQ(velmoran::platform::loadTexture(renderer, 4242, 1), nullptr);
}

TEST(TextureLoaderWithoutContext, GivesNothing)
{
    CGLRenderer renderer;
    EXPECT_EQ(velmoran::platform::loadTexture(renderer, velmoran::resources::kIconPeak), nullptr);
}

} // namespace
