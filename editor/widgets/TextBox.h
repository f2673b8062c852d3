#pragma once

#include "Widget.h"

#include <string>
#include <vector>

namespace velmoran::editor
{

// A box of text lines on a translucent dark panel. Each line has its own colour, an optional
// 16 x 16 icon before it and a highlight (an amber bar behind the line). The box takes the size
// its lines need; where it stands is up to its owner.
class TextBox : public Widget
{
public:
    struct Line
    {
        std::string text;
        Rgba colour;
        int icon = 0; // image id, 0 for none
        bool highlighted = false;
    };

    TextBox(const TextStyle& style, bool framed);

    // Replaces every line and resizes the box to fit them.
    void setLines(std::vector<Line> lines);
    // Replaces the lines with plain texts in one colour.
    void setTexts(const std::vector<std::string>& texts, Rgba colour);
    const std::vector<Line>& lines() const { return mLines; }
    // Centres the box on a point.
    void centreOn(float x, float y);
    // The line under (x, y), -1 outside the lines or while hidden.
    int lineAt(float x, float y) const;
    const TextStyle& style() const { return mStyle; }

protected:
    void draw(Painter& painter) const override;

private:
    void fitToLines();
    float rowHeight() const;
    bool hasIcons() const;

    TextStyle mStyle;
    bool mFramed;
    std::vector<Line> mLines;
};

} // namespace velmoran::editor
