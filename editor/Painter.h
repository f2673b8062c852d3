#pragma once

#include <cstdint>

namespace velmoran::platform
{
struct FontDescriptor;
}

namespace velmoran::editor
{

// A colour with straight alpha, each component 0..255.
struct Rgba
{
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
    std::uint8_t a = 255;
};

// The same colour at another opacity (0..255).
constexpr Rgba withAlpha(Rgba colour, int alpha)
{
    return {colour.r, colour.g, colour.b,
            static_cast<std::uint8_t>(alpha < 0     ? 0
                                      : alpha > 255 ? 255
                                                    : alpha)};
}

// A rectangle in design pixels (the editor's 998 x 634 coordinate system, origin top left).
struct Rect
{
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    float right() const { return x + width; }
    float bottom() const { return y + height; }
    // True when (px, py) lies inside, edges included.
    bool contains(float px, float py) const
    {
        return px >= x && px <= x + width && py >= y && py <= y + height;
    }
};

// One vertex of a coloured triangle list, in design pixels.
struct ColouredVertex
{
    float x = 0.0f;
    float y = 0.0f;
    Rgba colour;
};

// How a piece of text looks: a built-in font, its size in design pixels and its colour.
struct TextStyle
{
    const platform::FontDescriptor* font = nullptr;
    float size = 13.0f;
    Rgba colour{255, 255, 255, 255};
    bool shadow = false;
};

// Everything the editor draws goes through this interface: the OpenGL renderer on Windows, a
// recorder in the native tests. Coordinates are design pixels; the implementation scales them
// to the window. UI thread only.
class Painter
{
public:
    virtual ~Painter() = default;

    // Rectangle in one colour.
    virtual void fillRect(const Rect& rect, Rgba colour) = 0;
    // Rectangle shading from the top colour to the bottom colour.
    virtual void fillRectGradient(const Rect& rect, Rgba top, Rgba bottom) = 0;
    // Triangles, three vertices each, with per-vertex colours (blended, not anti-aliased: soften
    // edges with transparent vertices).
    virtual void fillTriangles(const ColouredVertex* vertices, int vertexCount) = 0;
    // Anti-aliased ring between two radii (a radius of 0 gives a disc).
    virtual void drawCircle(float centreX, float centreY, float outerRadius, float innerRadius,
                            Rgba colour) = 0;
    // Frame `frame` of stored image `imageId` (split into `frameCount` frames stacked vertically)
    // with its top-left corner at (x, y), at 1:1; mirrored horizontally and/or vertically on request.
    virtual void drawImage(int imageId, int frameCount, int frame, float x, float y, float opacity = 1.0f,
                           bool mirrorX = false, bool mirrorY = false) = 0;
    // One line of text with the top of its line at (x, y).
    virtual void drawText(float x, float y, const char* text, const TextStyle& style) = 0;
    // Clips everything drawn after it to the rectangle; an empty rectangle switches clipping off.
    virtual void setClip(const Rect& rect) = 0;
    // Saturation of everything drawn after it: 1 full colour, 0 grey.
    virtual void setSaturation(float saturation) = 0;
};

} // namespace velmoran::editor
