#pragma once

#include "Painter.h"

namespace velmoran::editor
{

// Colour of a hue (0..1 around the circle) at a saturation and value (0..1), each component
// scaled to 0..255 and truncated, with the given opacity (0..255).
Rgba hsvColour(float hue, float saturation, float value, int alpha = 255);

// Colour of a graph slot's curve, handle ring and marker line (slots 0..9 the bands, 10 the
// output gain marker, 11 the frequency readout marker).
Rgba slotCurveColour(int slot);

// Translucent colour (alpha 127) of the fill under a graph slot's curve.
Rgba slotFillColour(int slot);

} // namespace velmoran::editor
