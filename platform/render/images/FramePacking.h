#pragma once

#include <cstdint>

namespace velmoran::platform
{

// How an image strip of several frames stacked vertically is laid out in one power-of-two texture.
// Frames sit row-major in cells of frameWidth x frameHeight; a row holds as many cells as fit in
// the texture's width, which can be more than `columns`.
struct FramePacking
{
    int frameCount = 0;
    int frameWidth = 0;    // pixels, the full width of the strip
    int frameHeight = 0;   // pixels, strip height / frame count (integer division)
    int columns = 0;       // ceil(sqrt(frameCount))
    int rows = 0;          // ceil(frameCount / columns)
    int textureWidth = 0;  // pixels, a power of two, at least 64
    int textureHeight = 0; // pixels, a power of two, at least 64
    bool valid = false;    // false when the strip is empty or the texture grew past the driver's limit
};

// Top-left corner of one frame's cell inside the texture, in pixels.
struct FramePosition
{
    int x = 0;
    int y = 0;
};

// Gives the layout for a strip of imageWidth x imageHeight pixels holding frameCount frames, with
// maxTextureSize the driver's GL_MAX_TEXTURE_SIZE in pixels.
FramePacking packFrames(int imageWidth, int imageHeight, int frameCount, int maxTextureSize);

// Gives the top-left corner of frame `frame` (0-based) in a packed texture, in pixels; the same
// rule places the frames at upload and finds them when drawing.
FramePosition framePosition(const FramePacking& packing, int frame);

// Copies every frame of a strip of straight-alpha RGBA pixels (sourceRowstride bytes a row) into
// its cell of `texturePixels`, which holds textureWidth x textureHeight RGBA pixels and is
// expected to be zeroed beforehand so that the space between cells stays transparent black.
void copyFramesIntoTexture(const FramePacking& packing, const std::uint8_t* source, int sourceRowstride,
                           std::uint8_t* texturePixels);

} // namespace velmoran::platform
