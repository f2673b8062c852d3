#pragma once

#include "Painter.h"

#include <string>
#include <vector>

namespace velmoran::editor
{

// A vertical grid line of the frequency axis and its label (a single blank when unlabelled).
struct FrequencyGridLine
{
    float hz;
    std::string label;
};

// A horizontal grid line of the gain axis, its label and the spectrum level that shares its row.
struct GainGridLine
{
    float db;
    std::string label;
    Rgba labelColour;
    std::string spectrumLabel;
};

// Lines at every power of ten in Hz and every whole multiple of one (20, 30 .. 90, 200 ..) from
// minHz to maxHz; the powers of ten are labelled "10", "100", "1k", "10k".
std::vector<FrequencyGridLine> frequencyGridLines(float minHz, float maxHz);

// Lines at every multiple of 6 dB from minDb to maxDb, labelled "0dB", "+6", "-12" .., with the
// spectrum scale of -72..0 dB over the same rows labelled beside them.
std::vector<GainGridLine> gainGridLines(float minDb, float maxDb);

} // namespace velmoran::editor
