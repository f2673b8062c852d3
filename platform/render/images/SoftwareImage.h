#pragma once

#include <cstdint>
#include <vector>

namespace velmoran::platform
{

// An RGBA image in memory, straight alpha, top row first. Images loaded from the module's
// resources point into the resource itself and are read-only.
struct SoftwareImage
{
    int width = 0;         // pixels
    int height = 0;        // pixels
    int rowstride = 0;     // bytes from one row to the next
    int bytesPerPixel = 4; // always 4: red, green, blue, alpha
    const std::uint8_t* pixels = nullptr;
};

// A writable RGBA image that text and panels are composed into, straight alpha, top row first.
struct SoftwareCanvas
{
    int width = 0;
    int height = 0;
    int rowstride = 0;
    int bytesPerPixel = 4;
    std::uint8_t* pixels = nullptr;
};

// A canvas that owns its pixels, cleared to transparent black.
class CanvasBuffer
{
public:
    // Gives a width x height canvas (pixels); negative sizes give an empty one.
    CanvasBuffer(int width, int height);

    // Gives the canvas over this buffer's pixels.
    SoftwareCanvas canvas();

    // Gives the same pixels as a read-only image.
    SoftwareImage image() const;

    // Gives the four bytes (red, green, blue, alpha) of pixel (x, y); x and y must lie inside.
    const std::uint8_t* pixel(int x, int y) const;

    // Sets every pixel to one colour (0..255 each).
    void fill(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha);

private:
    int mWidth;
    int mHeight;
    std::vector<std::uint8_t> mPixels;
};

} // namespace velmoran::platform
