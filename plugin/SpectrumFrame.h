#pragma once

#include "pluginterfaces/base/ftypes.h"

#include <memory>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// One spectrum frame as it travels from processor to controller: the analyser's rate in Hz, its
// transform size, and room for 8192 magnitudes of which the analyser fills the first 2048.
struct SpectrumFrame
{
    float sampleRate = 44100.0f;
    int32 transformSize = 0;
    float magnitudes[8192] = {};
};

constexpr int32 kSpectrumFrameBytes = 32776;
constexpr int32 kAnalyserMagnitudeCount = 2048;
static_assert(sizeof(SpectrumFrame) == kSpectrumFrameBytes, "the frame is exchanged byte for byte");

// A fresh frame: 44100 Hz, size 0, all magnitudes zero.
inline std::unique_ptr<SpectrumFrame> makeSpectrumFrame()
{
    return std::make_unique<SpectrumFrame>();
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
