#include "platform/render/images/ImageLoader.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using velmoran::platform::imageFromPixdata;
using velmoran::platform::loadImage;
using velmoran::platform::loadImageSilently;
using velmoran::resources::ResourceBytes;

namespace
{

const std::string kNotAPixbuf = "afx_pixbuf_new_from_inline - pixbuf is not a pixbuf test failed\n";

// A 2 x 1 record whose first four bytes are `magic`.
std::vector<std::uint8_t> tinyRecord(const char* magic)
{
    std::vector<std::uint8_t> record = {0, 0, 0, 0, 0, 0, 0, 32, 1,   1, 0, 2,   0, 0, 0,   8,
                                        0, 0, 0, 2, 0, 0, 0, 1,  255, 0, 0, 255, 0, 0, 255, 128};
    for (int i = 0; i < 4; ++i)
        record[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(magic[i]);
    return record;
}

ResourceBytes bytesOf(const std::vector<std::uint8_t>& record)
{
    return {record.data(), record.size()};
}

} // namespace

TEST(ImageLoader, ReadsPixelsTopRowFirstAsRedGreenBlueAlpha)
{
    const std::vector<std::uint8_t> record = tinyRecord("GdkP");
    const auto image = imageFromPixdata(bytesOf(record));
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(std::vector<int>({image->width, image->height, image->rowstride, image->bytesPerPixel}),
              std::vector<int>({2, 1, 8, 4}));
    // Red, then blue at half alpha.
    EXPECT_EQ(std::vector<int>(image->pixels, image->pixels + 8),
              std::vector<int>({255, 0, 0, 255, 0, 0, 255, 128}));
}

// A record that is not a pixbuf is refused with the loader's diagnostic; a cut one is refused
// rather than read past its end.
TEST(ImageLoader, RefusesBadRecords)
{
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(imageFromPixdata(bytesOf(tinyRecord("GIF8"))).has_value());
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), kNotAPixbuf);
    std::vector<std::uint8_t> record = tinyRecord("GdkP");
    record.resize(record.size() - 1);
    EXPECT_FALSE(imageFromPixdata(bytesOf(record)).has_value());
    record.resize(10);
    EXPECT_FALSE(imageFromPixdata(bytesOf(record)).has_value());
}

// The font loader's silent variant loads the atlases; a missing resource gives nothing from either
// and prints nothing.
TEST(ImageLoader, SilentVariantLoadsAtlasesAndMissingResourcesGiveNothing)
{
    EXPECT_TRUE(loadImageSilently(velmoran::resources::kArialSmallAtlas).has_value());
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(loadImage(4242).has_value());
    EXPECT_FALSE(loadImageSilently(4242).has_value());
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}
