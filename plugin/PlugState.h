#pragma once

#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/vsttypes.h"

#include <array>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// The saved state: normalised values as 32-bit floats in native byte order, no header. Earlier
// versions saved only the first 57 values; the later ones are optional when reading.
constexpr int kStateValueCount = 69;
constexpr int kRequiredStateValueCount = 57;

// The tag stored at each index of the state.
const std::array<ParamID, kStateValueCount>& stateTags();

// The values read from a state stream, in state order; only the first count are valid.
struct StateValues
{
    std::array<float, kStateValueCount> values{};
    int count = 0;
};

// Reads a state stream; false (and nothing to apply) when the required block cannot be read or
// holds a value that is not a number. Values are limited to 0..1.
bool readState(IBStream* stream, StateValues& state);
// Writes all values of the state, taken from a table indexed by tag; kResultOk when all were written.
tresult writeState(IBStream* stream, const float* valuesByTag);

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
