#include "platform/render/images/FramePacking.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using velmoran::platform::copyFramesIntoTexture;
using velmoran::platform::FramePacking;
using velmoran::platform::framePosition;
using velmoran::platform::packFrames;

namespace
{

constexpr int kDriverLimit = 8192;

// A strip whose pixels say which frame they belong to (red = frame + 1) and where in the frame
// they sit (green = column, blue = row), fully opaque.
std::vector<std::uint8_t> numberedStrip(int width, int height, int frames)
{
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    const int frameHeight = height / frames;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            std::uint8_t* pixel = &pixels[(static_cast<std::size_t>(y) * width + x) * 4];
            pixel[0] = static_cast<std::uint8_t>(y / frameHeight + 1);
            pixel[1] = static_cast<std::uint8_t>(x);
            pixel[2] = static_cast<std::uint8_t>(y % frameHeight);
            pixel[3] = 255;
        }
    return pixels;
}

} // namespace

TEST(FramePacking, EditorStripsGetColumnsRowsAndAPowerOfTwoTexture)
{
    // Width, height, frames; columns, rows, texture width and height.
    const int strips[][7] = {
        {32, 160, 5, 3, 2, 128, 64},    // selector strip
        {16, 16, 1, 1, 1, 64, 64},      // menu icon
        {64, 86, 2, 2, 1, 128, 64},     // switch face
        {32, 96, 3, 2, 2, 64, 64},      // three-state button
        {256, 32, 1, 1, 1, 256, 64},    // wide frame piece
        {884, 308, 1, 1, 1, 1024, 512}, // glyph atlas
    };
    for (const auto& strip : strips)
    {
        SCOPED_TRACE(::testing::Message() << strip[0] << " x " << strip[1] << " in " << strip[2]);
        const FramePacking packing = packFrames(strip[0], strip[1], strip[2], kDriverLimit);
        ASSERT_TRUE(packing.valid);
        EXPECT_EQ(packing.columns, strip[3]);
        EXPECT_EQ(packing.rows, strip[4]);
        EXPECT_EQ(packing.textureWidth, strip[5]);
        EXPECT_EQ(packing.textureHeight, strip[6]);
    }
}

// The frames of a five-frame strip fill the texture's width row by row (four, not the three columns
// the count gives, to a row), each copied into its cell; the rest stays transparent.
TEST(FramePacking, FramesFillTheTextureWidthRowByRowAndTheRestStaysTransparent)
{
    const std::vector<std::uint8_t> strip = numberedStrip(32, 160, 5);
    const FramePacking packing = packFrames(32, 160, 5, kDriverLimit);
    std::vector<std::uint8_t> texture(static_cast<std::size_t>(packing.textureWidth) * packing.textureHeight *
                                      4);
    copyFramesIntoTexture(packing, strip.data(), 32 * 4, texture.data());
    auto pixelAt = [&](int x, int y)
    { return &texture[(static_cast<std::size_t>(y) * packing.textureWidth + x) * 4]; };

    const int corners[5][2] = {{0, 0}, {32, 0}, {64, 0}, {96, 0}, {0, 32}};
    for (int frame = 0; frame < 5; ++frame)
    {
        SCOPED_TRACE(frame);
        EXPECT_EQ(framePosition(packing, frame).x, corners[frame][0]);
        EXPECT_EQ(framePosition(packing, frame).y, corners[frame][1]);
        // The frame's pixel (5, 7) and its bottom-right corner.
        const std::uint8_t* pixel = pixelAt(corners[frame][0] + 5, corners[frame][1] + 7);
        EXPECT_EQ(std::vector<int>(pixel, pixel + 4), (std::vector<int>{frame + 1, 5, 7, 255}));
        EXPECT_EQ(pixelAt(corners[frame][0] + 31, corners[frame][1] + 31)[0], frame + 1);
    }
    EXPECT_EQ(pixelAt(40, 40)[3], 0);
}

TEST(FramePacking, EmptyNonsenseOrTooLargeStripsAreRefused)
{
    EXPECT_FALSE(packFrames(0, 16, 1, kDriverLimit).valid);
    EXPECT_FALSE(packFrames(16, 16, 0, kDriverLimit).valid);
    EXPECT_FALSE(packFrames(16, 4, 5, kDriverLimit).valid);
    EXPECT_FALSE(packFrames(16, -16, 1, kDriverLimit).valid);
    // 64 -> 128 -> 256 against a limit of 128: the step from 256 starts above the limit, but the
    // last doubling may start at the limit itself.
    EXPECT_FALSE(packFrames(300, 16, 1, 128).valid);
    EXPECT_TRUE(packFrames(200, 16, 1, 128).valid);
}
