#pragma once

#include "GLEntryPoints.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace velmoran::platform
{

// A texture on the shared context with the packed RGBA pixels it was made from, kept for
// re-uploads and read-backs. Deleting the record deletes the GL texture when a context is current.
struct GLTexture
{
    GLTexture() = default;
    GLTexture(const GLTexture&) = delete;
    GLTexture& operator=(const GLTexture&) = delete;
    ~GLTexture();

    GLuint name = 0;
    int width = 0;  // pixels, a power of two for loaded images
    int height = 0; // pixels
    int flags = 1;
    std::vector<uint8_t> pixels; // width * height * 4 bytes, R G B A, top row first
    int32_t useCount = 1;
};

// Creates a texture from width * height RGBA pixels (null: cleared ones, for a texture filled
// later or read back) with linear filtering; the wrap mode is GL_CLAMP_TO_EDGE or GL_REPEAT. The
// context must be current.
std::unique_ptr<GLTexture> makeTexture(const uint8_t* pixels, int width, int height, GLint wrap);
// The same, taking over a pixel buffer of width * height * 4 bytes.
std::unique_ptr<GLTexture> makeTexture(std::vector<uint8_t>&& pixels, int width, int height, GLint wrap);
// Uploads the record's whole pixel copy again. The context must be current.
void uploadTexture(const GLTexture& texture);
// The power-of-two side (from 64) that holds a requirement in pixels, or -1 when it would have to
// grow past the largest side.
int powerOfTwoSide(int required, int maximumSide);

} // namespace velmoran::platform
