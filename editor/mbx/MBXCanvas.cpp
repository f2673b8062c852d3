#include "editor/mbx/MBXCanvas.h"

#include <algorithm>
#include <cstdint>

namespace Steinberg::Vst::Velmoran
{

namespace
{

using velmoran::editor::Rgba;
using velmoran::platform::SoftwareCanvas;
using velmoran::platform::SoftwareImage;

std::uint8_t* pixelOf(const SoftwareCanvas& canvas, int x, int y)
{
    return canvas.pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(canvas.rowstride) +
           static_cast<std::size_t>(x) * 4;
}

const std::uint8_t* pixelOf(const SoftwareImage& image, int x, int y)
{
    return image.pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(image.rowstride) +
           static_cast<std::size_t>(x) * 4;
}

// Straight-alpha "over" of red, green, blue at `alpha` (0..255).
void blend(std::uint8_t* pixel, const std::uint8_t* colour, int alpha)
{
    if (alpha <= 0)
        return;
    const int below = pixel[3] * (255 - alpha);
    const int outAlpha255 = alpha * 255 + below;
    for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<std::uint8_t>(
            (colour[channel] * alpha * 255 + pixel[channel] * below + outAlpha255 / 2) / outAlpha255);
    pixel[3] = static_cast<std::uint8_t>((outAlpha255 + 127) / 255);
}

MBXRect clipped(const SoftwareCanvas& canvas, const MBXRect& rect)
{
    const int left = std::max(rect.x, 0);
    const int top = std::max(rect.y, 0);
    const int right = std::min(rect.right(), canvas.width);
    const int bottom = std::min(rect.bottom(), canvas.height);
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

// The source offset for destination offset `offset` along one axis of a capped stretch.
int stretchedSource(int offset, int destinationLength, int sourceLength, int leadingCap, int trailingCap)
{
    if (offset < leadingCap)
        return offset;
    const int fromEnd = destinationLength - offset;
    if (fromEnd <= trailingCap)
        return sourceLength - fromEnd;
    const int middleSource = std::max(sourceLength - leadingCap - trailingCap, 1);
    const int middleDestination = std::max(destinationLength - leadingCap - trailingCap, 1);
    return leadingCap + (offset - leadingCap) * middleSource / middleDestination;
}

bool readable(const SoftwareImage& image, const MBXRect& source)
{
    return image.pixels != nullptr && !source.empty() && source.x >= 0 && source.y >= 0 &&
           source.right() <= image.width && source.bottom() <= image.height;
}

} // namespace

void fillRect(const SoftwareCanvas& canvas, const MBXRect& rect, Rgba colour)
{
    const MBXRect area = clipped(canvas, rect);
    const std::uint8_t rgb[3] = {colour.r, colour.g, colour.b};
    for (int y = area.y; y < area.bottom(); ++y)
        for (int x = area.x; x < area.right(); ++x)
            blend(pixelOf(canvas, x, y), rgb, colour.a);
}

void drawImage(const SoftwareCanvas& canvas, const SoftwareImage& image, const MBXRect& source, int x, int y)
{
    drawImageStretched(canvas, image, source, {x, y, source.width, source.height}, {});
}

void drawImageStretched(const SoftwareCanvas& canvas, const SoftwareImage& image, const MBXRect& source,
                        const MBXRect& destination, const MBXImageCaps& caps)
{
    if (!readable(image, source))
        return;
    const MBXRect area = clipped(canvas, destination);
    for (int y = area.y; y < area.bottom(); ++y)
    {
        const int sourceY = source.y + stretchedSource(y - destination.y, destination.height, source.height,
                                                       caps.top, caps.bottom);
        for (int x = area.x; x < area.right(); ++x)
        {
            const int sourceX = source.x + stretchedSource(x - destination.x, destination.width, source.width,
                                                           caps.left, caps.right);
            const std::uint8_t* texel = pixelOf(image, sourceX, sourceY);
            blend(pixelOf(canvas, x, y), texel, texel[3]);
        }
    }
}

} // namespace Steinberg::Vst::Velmoran
