#pragma once

#include "ResponseMeasurement.h"

#include <string>

namespace velmoran::render
{

// The gnuplot script that draws curves into pngPath: measured and designed magnitude over
// 20 Hz..20 kHz on a logarithmic axis, with the data inside the script.
std::string plotScript(const ResponseCurves& curves, const std::string& title, const std::string& pngPath);

// Draws curves as a PNG at pngPath with gnuplot; the file appears only when complete. Throws
// RenderError naming the file when gnuplot is missing or fails, or the path cannot be written.
void writeResponsePlot(const ResponseCurves& curves, const std::string& title, const std::string& pngPath);

} // namespace velmoran::render
