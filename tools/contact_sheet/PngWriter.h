#pragma once

#include "platform/render/images/SoftwareImage.h"

#include <string>

namespace velmoran::tools
{

// Writes an RGBA image as a PNG file (uncompressed deflate blocks); false when the file cannot
// be written.
bool writePng(const std::string& path, const platform::SoftwareImage& image);

} // namespace velmoran::tools
