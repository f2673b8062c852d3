#pragma once

#include "Painter.h"

namespace velmoran::editor
{

// Width in design pixels of one line of text in a style (the pen advances of its characters).
float textWidth(const char* text, const TextStyle& style);
// Height of one line of text in a style, in design pixels.
float lineHeight(const TextStyle& style);
// Distance from the top of a line to its baseline in a style, in design pixels.
float textAscent(const TextStyle& style);

} // namespace velmoran::editor
