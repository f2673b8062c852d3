#pragma once

#include "platform/render/images/SoftwareImage.h"
#include "resources/ResourceData.h"

#include <optional>

namespace velmoran::platform
{

// Gives the image stored as resource `id` (type "BINARY", an RGBA GdkPixdata record) without
// copying its pixels, or nothing: silently when the module has no such resource, with a line on
// standard output when the record is not a pixbuf.
std::optional<SoftwareImage> loadImage(int id);

// Gives the image held in a GdkPixdata record, or nothing (with the line on standard output) when
// its first four bytes are not "GdkP"; nothing silently for empty bytes or a record shorter than
// its header says.
std::optional<SoftwareImage> imageFromPixdata(resources::ResourceBytes bytes);

// The font loader's variant of loadImage: nothing, and no line, for anything that is not an image.
std::optional<SoftwareImage> loadImageSilently(int id);

} // namespace velmoran::platform
