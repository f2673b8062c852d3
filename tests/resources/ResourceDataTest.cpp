#include "resources/ResourceData.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

using velmoran::resources::findBinaryResource;
using velmoran::resources::ResourceBytes;

namespace
{

struct StoredImage
{
    int id;
    int width;
    int height;
    int frames;
};

std::uint32_t field(const ResourceBytes& bytes, int offset)
{
    const std::uint8_t* p = bytes.data + offset;
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

// The editor's image table: every id with its size and the frame count it is loaded with.
std::vector<StoredImage> storedImages()
{
    std::vector<StoredImage> images;
    for (int id = 129; id <= 134; ++id)
        images.push_back({id, 64, 86, 2});
    for (int id = 135; id <= 149; ++id)
        images.push_back({id, 16, 16, 1});
    for (int id : {150, 151, 152, 155, 156, 158, 161, 162, 163, 164})
        images.push_back({id, 32, 64, 2});
    images.push_back({153, 128, 32, 1});
    images.push_back({154, 32, 32, 1});
    images.push_back({157, 256, 32, 1});
    images.push_back({159, 128, 32, 1});
    images.push_back({160, 32, 96, 3});
    images.push_back({165, 32, 160, 5});
    images.push_back({250, 32, 256, 1});
    for (int id : {251, 252, 253})
        images.push_back({id, 24, 48, 1});
    images.push_back({1024, 884, 308, 1});
    images.push_back({1025, 825, 280, 1});
    images.push_back({1026, 1017, 320, 1});
    images.push_back({1027, 521, 175, 1});
    return images;
}

class EveryStoredImage : public ::testing::TestWithParam<StoredImage>
{
};

std::string imageName(const ::testing::TestParamInfo<StoredImage>& info)
{
    return "id" + std::to_string(info.param.id);
}

} // namespace

// Each image is a raw RGBA pixbuf of its size, and the editor loads it with its frame count.
TEST_P(EveryStoredImage, IsARawRgbaPixbufOfItsSize)
{
    const StoredImage& expected = GetParam();
    const ResourceBytes bytes = findBinaryResource(expected.id);
    ASSERT_NE(bytes.data, nullptr);
    ASSERT_GE(bytes.size, 24u);
    EXPECT_EQ(field(bytes, 0), 0x47646B50u) << "magic";
    EXPECT_EQ(field(bytes, 8), 0x01010002u) << "pixdata type";
    EXPECT_EQ(field(bytes, 12), 4u * expected.width) << "rowstride";
    EXPECT_EQ(field(bytes, 16), static_cast<std::uint32_t>(expected.width));
    EXPECT_EQ(field(bytes, 20), static_cast<std::uint32_t>(expected.height));
    EXPECT_EQ(field(bytes, 4), 24u + 4u * expected.width * expected.height) << "total length";
    EXPECT_GE(bytes.size, 24u + 4u * expected.width * expected.height);
    for (const auto& artwork : velmoran::resources::kArtworkImages)
        if (artwork.id == expected.id)
        {
            EXPECT_EQ(artwork.frames, expected.frames) << "frame count the editor is given";
        }
}

INSTANTIATE_TEST_SUITE_P(ResourceTable, EveryStoredImage, ::testing::ValuesIn(storedImages()), imageName);

// The artwork table lists every image but the four font atlases, and no other id is stored.
TEST(StoredImages, ArtworkTableListsEveryImageButTheAtlasesAndUnknownIdsAreAbsent)
{
    EXPECT_EQ(velmoran::resources::kArtworkImages.size(), storedImages().size() - 4);
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
