#pragma once

#include "Painter.h"
#include "dsp/BiquadCoefficients.h"

namespace velmoran::editor
{

// One slot of the response graph: a band (slots 0..9) or one of the two markers (10 and 11),
// with its settings, its handle and the state of the mouse gestures on it.
struct GraphSlot
{
    float freqHz = 1000.0f;
    float gainDb = 0.0f;
    float q = 1.0f;
    // Handle position in drawing pixels, and the same rounded to whole pixels.
    float handleX = 0.0f;
    float handleY = 0.0f;
    int handleXPixel = 0;
    int handleYPixel = 0;
    // Position of the mouse during a drag, in drawing pixels.
    float dragX = 0.0f;
    float dragY = 0.0f;
    unsigned typeCode = 0;
    // 0 both channels, 1 the first only, 2 the second only.
    unsigned routing = 0;
    bool visible = false;
    bool active = true;
    bool selected = false;
    bool dragged = false;
    // The coefficients changed since the curve was last evaluated.
    bool dirty = false;
    // Opacity of the handle's ring (0..255): half the curve's alpha when picked, fading to an eighth.
    unsigned highlight = 0;
    Rgba curveColour;
    Rgba fillColour;
    dsp::BiquadCoefficients coefficients;
};

} // namespace velmoran::editor
