#include "platform/render/images/ImageLoader.h"

#include <cstdio>

namespace velmoran::platform
{

namespace
{

constexpr std::uint32_t kPixdataMagic = 0x47646B50; // "GdkP"
constexpr std::size_t kHeaderBytes = 24;

std::uint32_t readBigEndian(const std::uint8_t* bytes)
{
    return (static_cast<std::uint32_t>(bytes[0]) << 24) | (static_cast<std::uint32_t>(bytes[1]) << 16) |
           (static_cast<std::uint32_t>(bytes[2]) << 8) | static_cast<std::uint32_t>(bytes[3]);
}

bool hasPixdataMagic(resources::ResourceBytes bytes)
{
    return bytes.size >= 4 && readBigEndian(bytes.data) == kPixdataMagic;
}

// Reads the header; the type and total-length fields are not consulted, but a record whose pixels
// would run past its end is refused so that a damaged resource cannot be read out of bounds.
std::optional<SoftwareImage> decodeHeader(resources::ResourceBytes bytes)
{
    if (bytes.size < kHeaderBytes)
        return std::nullopt;
    const std::uint32_t rowstride = readBigEndian(bytes.data + 12);
    const std::uint32_t width = readBigEndian(bytes.data + 16);
    const std::uint32_t height = readBigEndian(bytes.data + 20);
    const std::uint64_t pixelBytes = static_cast<std::uint64_t>(rowstride) * height;
    if (width > 0xFFFF || height > 0xFFFF || rowstride < 4ull * width ||
        pixelBytes > bytes.size - kHeaderBytes)
        return std::nullopt;
    SoftwareImage image;
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.rowstride = static_cast<int>(rowstride);
    image.bytesPerPixel = 4;
    image.pixels = bytes.data + kHeaderBytes;
    return image;
}

} // namespace

std::optional<SoftwareImage> imageFromPixdata(resources::ResourceBytes bytes)
{
    if (bytes.data == nullptr || bytes.size == 0)
        return std::nullopt;
    if (!hasPixdataMagic(bytes))
    {
        std::fputs("afx_pixbuf_new_from_inline - pixbuf is not a pixbuf test failed\n", stdout);
        std::fflush(stdout);
        return std::nullopt;
    }
    return decodeHeader(bytes);
}

std::optional<SoftwareImage> loadImage(int id)
{
    return imageFromPixdata(resources::findBinaryResource(id));
}

std::optional<SoftwareImage> loadImageSilently(int id)
{
    const resources::ResourceBytes bytes = resources::findBinaryResource(id);
    if (bytes.data == nullptr || !hasPixdataMagic(bytes))
        return std::nullopt;
    return decodeHeader(bytes);
}

} // namespace velmoran::platform
