#include "platform/render/images/SoftwareImage.h"

#include <algorithm>

namespace velmoran::platform
{

CanvasBuffer::CanvasBuffer(int width, int height)
    : mWidth(std::max(width, 0)), mHeight(std::max(height, 0)),
      mPixels(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight) * 4, 0)
{
}

SoftwareCanvas CanvasBuffer::canvas()
{
    return {mWidth, mHeight, mWidth * 4, 4, mPixels.empty() ? nullptr : mPixels.data()};
}

SoftwareImage CanvasBuffer::image() const
{
    return {mWidth, mHeight, mWidth * 4, 4, mPixels.empty() ? nullptr : mPixels.data()};
}

const std::uint8_t* CanvasBuffer::pixel(int x, int y) const
{
    return &mPixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth) +
                     static_cast<std::size_t>(x)) *
                    4];
}

void CanvasBuffer::fill(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha)
{
    for (std::size_t i = 0; i < mPixels.size(); i += 4)
    {
        mPixels[i] = red;
        mPixels[i + 1] = green;
        mPixels[i + 2] = blue;
        mPixels[i + 3] = alpha;
    }
}

} // namespace velmoran::platform
