#pragma once

#include "AudioFile.h"
#include "RenderHost.h"

#include <cstdint>
#include <string>

namespace velmoran::render
{

// What a finished render did.
struct RenderSummary
{
    int64_t frames = 0;
    double seconds = 0.0;
    int64_t overs = 0;
};

// Files at least this long in seconds get a progress bar on a terminal.
constexpr double kProgressFromSeconds = 10.0;

// Renders everything reader holds through a started host (same rate and channels) into a new
// file at outputPath with the given libsndfile format and dither and the input's metadata, in
// blocks of blockSize samples. The output appears only when complete; throws RenderError naming
// the file on failure.
RenderSummary renderFile(RenderHost& host, AudioReader& reader, const std::string& outputPath,
                         int outputFormat, Dither dither, int blockSize, bool showProgress);

} // namespace velmoran::render
