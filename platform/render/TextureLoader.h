#pragma once

#include "GLTexture.h"

#include <memory>

namespace velmoran::platform
{

class CGLRenderer;

// Loads the stored image `id`, a strip of frameCount frames stacked vertically, as one
// power-of-two texture with the frames packed row by row (frame 0 at the top left). Nothing when
// the image is missing or not a pixbuf, when no context exists, or when the texture would exceed
// the driver's limit. Makes the shared context current on the renderer's window.
std::unique_ptr<GLTexture> loadTexture(CGLRenderer& renderer, int id, int frameCount = 1);

} // namespace velmoran::platform
