#include "SoundHeader.h"

#include <sys/stat.h>

#include <cstring>
#include <fstream>

namespace velmoran::render
{

namespace
{

// Chunks looked at before giving up on finding the samples.
constexpr int kMostChunks = 1000;

uint32_t sizeField(const unsigned char* bytes, bool bigEndian)
{
    return bigEndian ? (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) |
                           bytes[3]
                     : (uint32_t{bytes[3]} << 24) | (uint32_t{bytes[2]} << 16) | (uint32_t{bytes[1]} << 8) |
                           bytes[0];
}

} // namespace

std::optional<SampleBytes> truncatedSamples(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
    {
        return std::nullopt;
    }
    const int64_t fileBytes = status.st_size;
    std::ifstream stream(path, std::ios::binary);
    unsigned char form[12] = {};
    if (!stream.read(reinterpret_cast<char*>(form), sizeof(form)))
    {
        return std::nullopt;
    }
    const bool riff = std::memcmp(form, "RIFF", 4) == 0 && std::memcmp(form + 8, "WAVE", 4) == 0;
    const bool aiff = std::memcmp(form, "FORM", 4) == 0 &&
                      (std::memcmp(form + 8, "AIFF", 4) == 0 || std::memcmp(form + 8, "AIFC", 4) == 0);
    if (!riff && !aiff)
    {
        return std::nullopt;
    }
    const char* samplesId = riff ? "data" : "SSND";
    int64_t offset = sizeof(form);
    for (int chunk = 0; chunk < kMostChunks && offset + 8 <= fileBytes; ++chunk)
    {
        unsigned char header[8] = {};
        if (!stream.seekg(offset) || !stream.read(reinterpret_cast<char*>(header), sizeof(header)))
        {
            return std::nullopt;
        }
        const int64_t size = sizeField(header + 4, aiff);
        if (std::memcmp(header, samplesId, 4) == 0)
        {
            const int64_t present = fileBytes - offset - 8;
            return size > present ? std::optional<SampleBytes>(SampleBytes{size, present}) : std::nullopt;
        }
        // Chunks start at even offsets.
        offset += 8 + size + (size & 1);
    }
    return std::nullopt;
}

} // namespace velmoran::render
