#pragma once

#include "editor/mbx/MBXObject.h"
#include "editor/mbx/MBXStyle.h"

#include <string>
#include <vector>

namespace Steinberg::Vst::Velmoran
{

// A rectangle in a box's pixels, origin at its top left.
struct MBXRect
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool empty() const { return width <= 0 || height <= 0; }
    // True when pixel (px, py) lies inside.
    bool contains(int px, int py) const { return px >= x && px < x + width && py >= y && py < y + height; }
};

// One line of text placed in a box: the heading's lines and the wrapped message alike.
struct MBXTextLine
{
    std::string text; // may hold link markup
    const MBXTextStyle* style = nullptr;
    int x = 0;             // pixels, the pen's start
    float baseline = 0.0f; // pixels from the box's top
    bool startsInLink = false;
};

// Where everything of a box goes, in pixels of the box's own window.
struct MBXBoxLayout
{
    int width = 0;
    int height = 0;
    MBXRect titleBar;
    int titleX = 0;
    float titleBaseline = 0.0f;
    MBXRect icon;      // empty without a sign
    int textWidth = 0; // the width message lines wrap at
    std::vector<MBXTextLine> lines;
    MBXRect footer;
    std::vector<MBXRect> buttons; // in the order of the box's labels
    float buttonBaseline = 0.0f;
    std::vector<MBXRect> links; // one per line a link covers
    std::string linkTarget;     // the text of the first link, empty when there is none
};

// Lays a box out: its size follows the title, the wrapped text and the buttons.
MBXBoxLayout layoutBox(const MBXObject& box);

// The index of the button under pixel (x, y), or -1.
int buttonAt(const MBXBoxLayout& layout, int x, int y);

// True when pixel (x, y) lies on a link.
bool linkAt(const MBXBoxLayout& layout, int x, int y);

} // namespace Steinberg::Vst::Velmoran
