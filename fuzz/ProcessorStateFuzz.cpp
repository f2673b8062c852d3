// The processor's setState with any stream: a stream whose first 57 values are not all whole
// numbers changes nothing; any other loads its numbers limited to 0..1; the processor keeps
// writing a 276-byte state and producing finite audio from a full-scale input.

#include "FuzzHost.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace velmoran::fuzz;

namespace
{

constexpr size_t kStateValueCount = 69;
constexpr size_t kRequiredValueCount = 57;

// The leading values of a stream that are whole, finite floats.
std::vector<float> leadingValues(const uint8_t* data, size_t size)
{
    std::vector<float> values;
    for (size_t offset = 0; offset + sizeof(float) <= size && values.size() < kStateValueCount;
         offset += sizeof(float))
    {
        float value = 0.0f;
        std::memcpy(&value, data + offset, sizeof(value));
        if (!std::isfinite(value))
        {
            break;
        }
        values.push_back(value);
    }
    return values;
}

void checkStateAfterLoad(const std::vector<float>& before, const std::vector<float>& after,
                         const std::vector<float>& offered, tresult result)
{
    require(after.size() == kStateValueCount, "the state is always 69 floats");
    for (float value : after)
    {
        require(value >= 0.0f && value <= 1.0f, "every stored value lies in 0..1");
    }
    if (offered.size() < kRequiredValueCount)
    {
        require(result == kResultFalse, "a short or damaged required block is refused");
        require(after == before, "a refused stream changes nothing");
        return;
    }
    require(result == kResultOk, "a whole required block loads");
    for (size_t index = 0; index < offered.size(); ++index)
    {
        require(after[index] == std::clamp(offered[index], 0.0f, 1.0f),
                "loaded values are kept, limited to 0..1");
    }
    for (size_t index = offered.size(); index < kStateValueCount; ++index)
    {
        require(after[index] == before[index], "values missing from the stream stay as they were");
    }
}

void checkAudio(SharedProcessor& shared)
{
    std::vector<std::vector<float>> inputs(2, std::vector<float>(512));
    std::vector<std::vector<float>> outputs(2, std::vector<float>(512));
    for (size_t index = 0; index < inputs[0].size(); ++index)
    {
        // A full-scale square wave at 375 Hz: every band sees energy.
        const float sample = (index / 64) % 2 == 0 ? 1.0f : -1.0f;
        inputs[0][index] = sample;
        inputs[1][index] = -sample;
    }
    for (int block = 0; block < 4; ++block)
    {
        require(shared.process(inputs, outputs, 512) == kResultOk, "a block is processed");
        require(allFinite(outputs), "any loaded state gives finite audio");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    SharedProcessor& shared = SharedProcessor::instance();
    shared.restart();
    const std::vector<float> before = stateOf(shared.component());
    const tresult result = shared.component()->setState(streamOver(data, size));
    checkStateAfterLoad(before, stateOf(shared.component()), leadingValues(data, size), result);
    checkAudio(shared);
    return 0;
}
