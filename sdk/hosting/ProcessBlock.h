#pragma once

#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"

#include <vector>

namespace Steinberg
{
namespace Vst
{

// Runs one block of 32-bit samples through `processor` with one input and one output bus of the
// given channels, as a host's audio callback does; gives the processor's result.
tresult processBlock(IAudioProcessor* processor, float* const* inputs, int32 inputChannels,
                     float* const* outputs, int32 outputChannels, int32 sampleCount,
                     IParameterChanges* changes = nullptr, int32 processMode = kRealtime);

// The same for channels held as vectors, each at least sampleCount long.
tresult processBlock(IAudioProcessor* processor, std::vector<std::vector<float>>& inputs,
                     std::vector<std::vector<float>>& outputs, int32 sampleCount,
                     IParameterChanges* changes = nullptr);

} // namespace Vst
} // namespace Steinberg
