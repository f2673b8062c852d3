#pragma once

#include "editor/Painter.h"

#include <string>
#include <vector>

namespace velmoran::test
{

// Keeps every drawing call of the editor as a line of text and the geometry it was given, so the
// native tests can ask what was drawn where.
class RecordingPainter : public editor::Painter
{
public:
    struct Text
    {
        float x;
        float y;
        std::string text;
        editor::TextStyle style;
    };
    struct Image
    {
        int id;
        int frame;
        float x;
        float y;
        float opacity;
    };

    void fillRect(const editor::Rect& rect, editor::Rgba colour) override
    {
        rects.push_back(rect);
        rectColours.push_back(colour);
    }
    void fillRectGradient(const editor::Rect& rect, editor::Rgba top, editor::Rgba) override
    {
        fillRect(rect, top);
    }
    void fillTriangles(const editor::ColouredVertex* vertices, int vertexCount) override
    {
        triangles.insert(triangles.end(), vertices, vertices + vertexCount);
    }
    void drawCircle(float centreX, float centreY, float outerRadius, float, editor::Rgba) override
    {
        circles.push_back({centreX, centreY, outerRadius, outerRadius});
    }
    void drawImage(int imageId, int, int frame, float x, float y, float opacity, bool, bool) override
    {
        images.push_back({imageId, frame, x, y, opacity});
    }
    void drawText(float x, float y, const char* text, const editor::TextStyle& style) override
    {
        texts.push_back({x, y, text, style});
    }
    void setClip(const editor::Rect&) override {}
    void setSaturation(float value) override { saturation = value; }

    // The drawn texts that equal `text`.
    std::vector<Text> textsEqualTo(const std::string& text) const
    {
        std::vector<Text> found;
        for (const Text& drawn : texts)
            if (drawn.text == text)
                found.push_back(drawn);
        return found;
    }
    // True when some drawn text equals `text`.
    bool drewText(const std::string& text) const { return !textsEqualTo(text).empty(); }
    // True when image `id` was drawn, in frame `frame` unless that is -1.
    bool drewImage(int id, int frame = -1) const
    {
        for (const Image& image : images)
            if (image.id == id && (frame < 0 || image.frame == frame))
                return true;
        return false;
    }
    void clear() { *this = RecordingPainter(); }

    std::vector<editor::Rect> rects;
    std::vector<editor::Rgba> rectColours;
    std::vector<editor::ColouredVertex> triangles;
    std::vector<editor::Rect> circles; // centre in x, y; radius in width
    std::vector<Image> images;
    std::vector<Text> texts;
    float saturation = 1.0f;
};

} // namespace velmoran::test
