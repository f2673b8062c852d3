#include "PngWriter.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <vector>

namespace velmoran::tools
{

namespace
{

std::uint32_t crc32(const std::uint8_t* data, std::size_t size, std::uint32_t crc = 0)
{
    static const std::array<std::uint32_t, 256> table = []
    {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t n = 0; n < 256; ++n)
        {
            std::uint32_t c = n;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            entries[n] = c;
        }
        return entries;
    }();
    crc = ~crc;
    for (std::size_t i = 0; i < size; ++i)
        crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

void putBigEndian(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
}

void putChunk(std::vector<std::uint8_t>& out, const char* type, const std::vector<std::uint8_t>& body)
{
    putBigEndian(out, static_cast<std::uint32_t>(body.size()));
    const std::size_t typeStart = out.size();
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), body.begin(), body.end());
    putBigEndian(out, crc32(out.data() + typeStart, out.size() - typeStart));
}

// A zlib stream of stored (uncompressed) deflate blocks.
std::vector<std::uint8_t> storedZlib(const std::vector<std::uint8_t>& data)
{
    std::vector<std::uint8_t> out = {0x78, 0x01};
    std::size_t offset = 0;
    do
    {
        const std::size_t length = std::min<std::size_t>(65535, data.size() - offset);
        const bool last = offset + length == data.size();
        out.push_back(last ? 1 : 0);
        out.push_back(static_cast<std::uint8_t>(length & 0xFF));
        out.push_back(static_cast<std::uint8_t>(length >> 8));
        out.push_back(static_cast<std::uint8_t>(~length & 0xFF));
        out.push_back(static_cast<std::uint8_t>((~length >> 8) & 0xFF));
        out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(offset),
                   data.begin() + static_cast<std::ptrdiff_t>(offset + length));
        offset += length;
    } while (offset < data.size());
    std::uint32_t a = 1, b = 0;
    for (std::uint8_t byte : data)
    {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    putBigEndian(out, (b << 16) | a);
    return out;
}

} // namespace

bool writePng(const std::string& path, const platform::SoftwareImage& image)
{
    std::vector<std::uint8_t> scanlines;
    const std::size_t rowBytes = static_cast<std::size_t>(image.width) * 4;
    scanlines.reserve((rowBytes + 1) * static_cast<std::size_t>(image.height));
    for (int y = 0; y < image.height; ++y)
    {
        scanlines.push_back(0);
        const std::uint8_t* row =
            image.pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(image.rowstride);
        scanlines.insert(scanlines.end(), row, row + rowBytes);
    }

    std::vector<std::uint8_t> header;
    putBigEndian(header, static_cast<std::uint32_t>(image.width));
    putBigEndian(header, static_cast<std::uint32_t>(image.height));
    header.insert(header.end(), {8, 6, 0, 0, 0}); // 8-bit RGBA, no interlace

    std::vector<std::uint8_t> file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    putChunk(file, "IHDR", header);
    putChunk(file, "IDAT", storedZlib(scanlines));
    putChunk(file, "IEND", {});
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    return static_cast<bool>(out);
}

} // namespace velmoran::tools
