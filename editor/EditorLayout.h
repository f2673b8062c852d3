#pragma once

#include "Painter.h"

namespace velmoran::editor
{

// The editor's design size in design pixels; the window is this times the display scale unless
// the host gives a rectangle.
inline constexpr float kDesignWidth = 998.0f;
inline constexpr float kDesignHeight = 634.0f;

// Colours of the look: amber marks what is on or selected, light grey the handles' rims.
inline constexpr Rgba kAmber{255, 176, 0, 255};
inline constexpr Rgba kLightGrey{240, 240, 240, 255};
inline constexpr Rgba kLegend{214, 218, 224, 255};
inline constexpr Rgba kLegendDim{125, 132, 143, 255};

// The graph panel: 24 pixels in from the sides, below the title bar, above the control row.
inline Rect graphPanelRect(float editorWidth, float editorHeight)
{
    return {24.0f, 48.0f, editorWidth - 48.0f, editorHeight - 154.0f};
}

} // namespace velmoran::editor
