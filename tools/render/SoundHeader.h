#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velmoran::render
{

// The bytes of samples a header promises and the bytes the file holds after it.
struct SampleBytes
{
    int64_t promised = 0;
    int64_t present = 0;
};

// For a regular WAV or AIFF file whose sample chunk ("data", "SSND") promises more bytes than
// the file holds (a copy cut short, a header written alone), the bytes promised and present;
// none for a whole file, another format or anything that is not a regular file (a pipe is not
// read ahead). libsndfile reads such a file quietly as a shorter one.
std::optional<SampleBytes> truncatedSamples(const std::string& path);

} // namespace velmoran::render
