#include "BandColours.h"

#include <cmath>

namespace velmoran::editor
{

namespace
{

constexpr int kBandCount = 10;
constexpr int kFillAlpha = 127;
// Stepping the hue by the golden ratio's fraction keeps any run of neighbouring bands far apart
// on the colour circle, however many are in use.
constexpr float kHueStep = 0.618034f;

std::uint8_t component(float unit)
{
    return static_cast<std::uint8_t>(unit * 255.0f);
}

float bandHue(int band)
{
    float hue = 0.0f;
    for (int i = 0; i < band; ++i)
    {
        hue += kHueStep;
        hue -= std::floor(hue);
    }
    return hue;
}

// Output gain lavender, frequency readout amber, input gain a pale green, so the two gain markers
// are told apart at a glance.
Rgba markerColour(int slot, int alpha)
{
    switch (slot)
    {
    case 10:
        return hsvColour(0.75f, 0.25f, 0.85f, alpha);
    case 11:
        return hsvColour(0.12f, 1.0f, 0.9f, alpha);
    default:
        return hsvColour(0.36f, 0.35f, 0.85f, alpha);
    }
}

} // namespace

Rgba hsvColour(float hue, float saturation, float value, int alpha)
{
    const float scaled = (hue - std::floor(hue)) * 6.0f;
    const int sector = static_cast<int>(scaled) % 6;
    const float fraction = scaled - std::floor(scaled);
    const float p = value * (1.0f - saturation);
    const float q = value * (1.0f - saturation * fraction);
    const float t = value * (1.0f - saturation * (1.0f - fraction));
    const float sectors[6][3] = {{value, t, p}, {q, value, p}, {p, value, t},
                                 {p, q, value}, {t, p, value}, {value, p, q}};
    const float* rgb = sectors[sector];
    return withAlpha({component(rgb[0]), component(rgb[1]), component(rgb[2])}, alpha);
}

Rgba slotCurveColour(int slot)
{
    if (slot >= kBandCount)
    {
        return markerColour(slot, 255);
    }
    return hsvColour(bandHue(slot), 0.75f, 0.95f);
}

Rgba slotFillColour(int slot)
{
    if (slot >= kBandCount)
    {
        return markerColour(slot, kFillAlpha);
    }
    return hsvColour(bandHue(slot), 0.99f, 0.95f, kFillAlpha);
}

} // namespace velmoran::editor
