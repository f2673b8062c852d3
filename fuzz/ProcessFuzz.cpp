// process at any sample rate with made-up blocks: parameter queues of any tag, point count, offset and value
// (NaN, infinities, values outside 0..1), block sizes from 0 to 8192 samples, input samples of any bit
// pattern (NaN, infinities, denormals, huge values), and editors opening and closing in between. Whatever
// came before, a block of ordinary audio afterwards comes out finite.

#include "AnyValue.h"
#include "FuzzHost.h"

#include "sdk/hosting/ParameterChanges.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>
#include <limits>

using namespace velmoran::fuzz;

namespace
{

constexpr int32 kLongestBlock = 8192;
// Past this much audio per input the fuzzer learns little more and runs slower.
constexpr int32 kSamplesPerInput = 3 * kLongestBlock;
// Inputs up to this magnitude leave filter tails that still fit a float at the output.
constexpr float kLargestOrdinaryInput = 1e30f;

// The rates hosts offer, or any rate from 1 Hz to 1 MHz: bands beyond Nyquist must stay stable.
double anySampleRate(FuzzedDataProvider& input)
{
    return input.ConsumeBool()
               ? input.PickValueInArray<double>({8000.0, 11025.0, 16000.0, 22050.0, 24000.0, 32000.0, 44100.0,
                                                 48000.0, 88200.0, 96000.0, 176400.0, 192000.0, 384000.0})
               : input.ConsumeFloatingPointInRange<double>(1.0, 1e6);
}

ParamID anyTag(FuzzedDataProvider& input)
{
    return input.ConsumeIntegralInRange(0, 7) != 0 ? input.ConsumeIntegralInRange<ParamID>(0, 99)
                                                   : input.ConsumeIntegral<ParamID>();
}

void fillChanges(FuzzedDataProvider& input, ParameterChanges& changes)
{
    changes.clearQueue();
    const int queueCount = input.ConsumeIntegralInRange(0, 24);
    for (int queue = 0; queue < queueCount; ++queue)
    {
        int32 index = 0;
        IParamValueQueue* values = changes.addParameterData(anyTag(input), index);
        if (!values)
        {
            continue;
        }
        const int pointCount = input.ConsumeIntegralInRange(0, 4);
        for (int point = 0; point < pointCount; ++point)
        {
            const int32 offset = input.ConsumeBool() ? input.ConsumeIntegralInRange(0, kLongestBlock)
                                                     : input.ConsumeIntegral<int32>();
            values->addPoint(offset, anyValue(input), index);
        }
    }
}

// One sample of the chosen kind; records whether it is within ordinary loudness.
float anySample(FuzzedDataProvider& input, int kind, bool& ordinary)
{
    float sample = 0.0f;
    switch (kind)
    {
    case 0:
        sample = input.ConsumeFloatingPointInRange(-1.0f, 1.0f);
        break;
    case 1:
    {
        const auto bytes = input.ConsumeBytes<uint8_t>(sizeof(sample));
        if (bytes.size() == sizeof(sample))
        {
            std::memcpy(&sample, bytes.data(), sizeof(sample));
        }
        break;
    }
    default:
        sample = input.PickValueInArray<float>({std::numeric_limits<float>::quiet_NaN(), INFINITY, -INFINITY,
                                                std::numeric_limits<float>::denorm_min(), -1e-40f, 1e30f,
                                                -3.4e38f, 1.0f, -1.0f, 0.0f});
        break;
    }
    // NaN and infinities must be shrugged off; only huge finite samples leave long loud tails.
    if (std::isfinite(sample) && std::fabs(sample) > kLargestOrdinaryInput)
    {
        ordinary = false;
    }
    return sample;
}

// Input channels: a pattern of up to 64 samples from the data, repeated over the block.
void fillInputs(FuzzedDataProvider& input, std::vector<std::vector<float>>& channels, int32 sampleCount,
                bool& ordinary)
{
    const int kind = input.ConsumeIntegralInRange(0, 2);
    const int patternLength = input.ConsumeIntegralInRange(1, 64);
    std::vector<float> pattern(static_cast<size_t>(2 * patternLength));
    for (float& sample : pattern)
    {
        sample = anySample(input, kind, ordinary);
    }
    for (size_t channel = 0; channel < 2; ++channel)
    {
        channels[channel].assign(static_cast<size_t>(sampleCount), 0.0f);
        for (int32 index = 0; index < sampleCount; ++index)
        {
            channels[channel][static_cast<size_t>(index)] =
                pattern[channel * static_cast<size_t>(patternLength) +
                        static_cast<size_t>(index % patternLength)];
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    SharedProcessor& shared = SharedProcessor::instance();
    FuzzedDataProvider input(data, size);
    shared.restart(anySampleRate(input));
    static IPtr<ParameterChanges> changes = owned(new ParameterChanges());
    std::vector<std::vector<float>> inputs(2);
    std::vector<std::vector<float>> outputs(2);
    bool ordinary = true;
    int32 samplesLeft = kSamplesPerInput;
    while (input.remaining_bytes() > 0 && samplesLeft > 0)
    {
        const int32 sampleCount = std::min(
            samplesLeft, input.ConsumeBool() ? input.ConsumeIntegralInRange(0, kLongestBlock)
                                             : input.PickValueInArray<int32>({0, 1, 63, 64, 65, 150}));
        samplesLeft -= sampleCount;
        fillChanges(input, *changes);
        fillInputs(input, inputs, sampleCount, ordinary);
        outputs.assign(2, std::vector<float>(static_cast<size_t>(sampleCount), 0.0f));
        require(shared.process(inputs, outputs, sampleCount, changes) == kResultOk,
                "every block is processed");
        if (input.ConsumeIntegralInRange(0, 15) == 0)
        {
            // A host may switch processing off and on between any two blocks.
            shared.component()->setActive(false);
            shared.component()->setActive(true);
        }
        if (input.ConsumeIntegralInRange(0, 7) == 0)
        {
            // The analyser runs only while an editor is open; one may open or close at any time.
            shared.setEditorOpen(input.ConsumeBool());
        }
    }
    if (ordinary)
    {
        // Whatever the parameters did, ordinary audio never turns into infinities or NaN.
        inputs.assign(2, std::vector<float>(kLongestBlock, 0.0f));
        for (size_t index = 0; index < inputs[0].size(); ++index)
        {
            inputs[0][index] = index % 2 == 0 ? 1.0f : -1.0f;
            inputs[1][index] = index % 96 < 48 ? 1.0f : -1.0f;
        }
        outputs.assign(2, std::vector<float>(kLongestBlock, 0.0f));
        require(shared.process(inputs, outputs, kLongestBlock) == kResultOk,
                "an ordinary block is processed");
        require(allFinite(outputs), "ordinary audio gives finite audio after any automation");
    }
    return 0;
}
