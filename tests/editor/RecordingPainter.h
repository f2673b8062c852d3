#pragma once

#include "editor/Painter.h"

#include <string>
#include <vector>

namespace velmoran::test
{

// Keeps the editor's triangles, images and texts as they are drawn, so the native tests can ask
// what was drawn where.
class RecordingPainter : public editor::Painter
{
public:
    struct Text
    {
        float x;
        float y;
        std::string text;
    };
    struct Image
    {
        int id;
        int frame;
    };

    void fillRect(const editor::Rect&, editor::Rgba) override {}
    void fillRectGradient(const editor::Rect&, editor::Rgba, editor::Rgba) override {}
    void fillTriangles(const editor::ColouredVertex* vertices, int vertexCount) override
    {
        triangles.insert(triangles.end(), vertices, vertices + vertexCount);
    }
    void drawCircle(float, float, float, float, editor::Rgba) override {}
    void drawImage(int imageId, int, int frame, float, float, float, bool, bool) override
    {
        images.push_back({imageId, frame});
    }
    void drawText(float x, float y, const char* text, const editor::TextStyle&) override
    {
        texts.push_back({x, y, text});
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

    std::vector<editor::ColouredVertex> triangles;
    std::vector<Image> images;
    std::vector<Text> texts;
    float saturation = 1.0f;
};

} // namespace velmoran::test
