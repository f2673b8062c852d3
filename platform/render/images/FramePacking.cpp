#include "FramePacking.h"

#include <cmath>
#include <cstring>

namespace velmoran::platform
{

namespace
{

constexpr int kMinimumTextureSize = 64;

// Rounds half up by truncation, as the size calculation has always done with its float counts.
int roundCount(float value)
{
    return static_cast<int>(value + 0.5f);
}

// Doubles from 64 until `required` fits; 0 when a doubling would start above the driver's limit.
int powerOfTwoSize(int required, int maxTextureSize)
{
    int size = kMinimumTextureSize;
    while (size < required)
    {
        if (size > maxTextureSize)
            return 0;
        size *= 2;
    }
    return size;
}

} // namespace

FramePacking packFrames(int imageWidth, int imageHeight, int frameCount, int maxTextureSize)
{
    FramePacking packing;
    if (imageWidth <= 0 || imageHeight <= 0 || frameCount <= 0 || imageHeight / frameCount <= 0)
        return packing;

    packing.frameCount = frameCount;
    packing.frameWidth = imageWidth;
    packing.frameHeight = imageHeight / frameCount;

    // Counts in single precision, like the texture loader they came from.
    const float columns = std::ceil(std::sqrt(static_cast<float>(frameCount)));
    const float rows = std::ceil(static_cast<float>(frameCount) / columns);
    packing.columns = roundCount(columns);
    packing.rows = roundCount(rows);

    packing.textureWidth = powerOfTwoSize(packing.columns * packing.frameWidth, maxTextureSize);
    packing.textureHeight = powerOfTwoSize(packing.rows * packing.frameHeight, maxTextureSize);
    packing.valid = packing.textureWidth > 0 && packing.textureHeight > 0;
    return packing;
}

FramePosition framePosition(const FramePacking& packing, int frame)
{
    FramePosition position;
    for (int k = 0; k < frame; ++k)
    {
        position.x += packing.frameWidth;
        if (position.x + packing.frameWidth > packing.textureWidth)
        {
            position.x = 0;
            position.y += packing.frameHeight;
        }
    }
    return position;
}

void copyFramesIntoTexture(const FramePacking& packing, const std::uint8_t* source, int sourceRowstride,
                           std::uint8_t* texturePixels)
{
    if (!packing.valid || source == nullptr || texturePixels == nullptr)
        return;
    const std::size_t rowBytes = static_cast<std::size_t>(packing.frameWidth) * 4;
    const std::size_t textureRowBytes = static_cast<std::size_t>(packing.textureWidth) * 4;
    for (int frame = 0; frame < packing.frameCount; ++frame)
    {
        const FramePosition cell = framePosition(packing, frame);
        // A frame that would leave the texture (a strip wider than the driver allows) is dropped
        // rather than written past the buffer.
        if (cell.x + packing.frameWidth > packing.textureWidth ||
            cell.y + packing.frameHeight > packing.textureHeight)
            continue;
        for (int row = 0; row < packing.frameHeight; ++row)
        {
            const std::uint8_t* from =
                source + static_cast<std::size_t>(frame * packing.frameHeight + row) * sourceRowstride;
            std::uint8_t* to = texturePixels + static_cast<std::size_t>(cell.y + row) * textureRowBytes +
                               static_cast<std::size_t>(cell.x) * 4;
            std::memcpy(to, from, rowBytes);
        }
    }
}

} // namespace velmoran::platform
