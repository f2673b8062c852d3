#include "resources/ResourceData.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

using velmoran::resources::findBinaryResource;
using velmoran::resources::ResourceBytes;

namespace
{

std::uint32_t field(const ResourceBytes& bytes, int offset)
{
    const std::uint8_t* p = bytes.data + offset;
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

} // namespace

// Every image the editor loads, and each glyph atlas, is a raw RGBA pixbuf whose height splits
// into the frames the editor cuts it into; no other id is stored.
TEST(StoredImages, EveryImageIsARawRgbaPixbufOfWholeFramesAndUnknownIdsAreAbsent)
{
    using namespace velmoran::resources;
    std::vector<ImageResource> images(kArtworkImages.begin(), kArtworkImages.end());
    for (int atlas : {kDejaVuSansAtlas, kSairaAtlas, kMichromaAtlas, kArialSmallAtlas})
        images.push_back({atlas, 1});
    for (const ImageResource& image : images)
    {
        SCOPED_TRACE(testing::Message() << "id " << image.id);
        const ResourceBytes bytes = findBinaryResource(image.id);
        ASSERT_GE(bytes.size, 24u);
        const std::uint32_t width = field(bytes, 16);
        const std::uint32_t height = field(bytes, 20);
        EXPECT_EQ(field(bytes, 0), 0x47646B50u) << "magic";
        EXPECT_EQ(field(bytes, 8), 0x01010002u) << "pixdata type";
        EXPECT_EQ(field(bytes, 12), 4u * width) << "rowstride";
        EXPECT_EQ(field(bytes, 4), 24u + 4u * width * height) << "total length";
        EXPECT_GE(bytes.size, 24u + 4u * width * height);
        EXPECT_EQ(height % static_cast<std::uint32_t>(image.frames), 0u) << "frames";
    }
    for (int id : {0, 128, 166, 200, 249, 254, 1023, 1028, -1})
        EXPECT_EQ(findBinaryResource(id).data, nullptr) << "id " << id;
}

TEST(StoredImages, AlphaIsStraightNotPremultiplied)
{
    // The lit lamp's halo fades out over transparency: faint pixels keep the full amber red,
    // which a premultiplied image could not hold.
    const ResourceBytes bytes = findBinaryResource(velmoran::resources::kLamp);
    ASSERT_NE(bytes.data, nullptr);
    int faintAmber = 0;
    for (std::size_t i = 24; i + 3 < bytes.size; i += 4)
    {
        const std::uint8_t* pixel = bytes.data + i;
        if (pixel[3] > 0 && pixel[3] < 96 && pixel[0] > 200 && pixel[0] > pixel[3] + 100)
            ++faintAmber;
    }
    EXPECT_GT(faintAmber, 0);
}

#ifdef _WIN32
TEST(StoredImages, ModuleCarriesTheIconGroups)
{
    HMODULE module = GetModuleHandleA(nullptr);
    for (int id : {200, 260, 261, 262})
    {
        EXPECT_NE(FindResourceA(module, MAKEINTRESOURCEA(id), MAKEINTRESOURCEA(14)), nullptr)
            << "group " << id;
        HANDLE icon = LoadImageA(module, MAKEINTRESOURCEA(id), IMAGE_ICON, 32, 32, 0);
        EXPECT_NE(icon, nullptr) << "icon " << id;
        if (icon != nullptr)
            DestroyIcon(static_cast<HICON>(icon));
    }
}

TEST(StoredImages, LookupCanBePointedAtAnotherModule)
{
    // kernel32 holds no images of ours; null goes back to this program.
    velmoran::resources::setResourceModule(GetModuleHandleA("kernel32.dll"));
    EXPECT_EQ(findBinaryResource(129).data, nullptr);
    velmoran::resources::setResourceModule(nullptr);
    EXPECT_NE(findBinaryResource(129).data, nullptr);
}
#endif
