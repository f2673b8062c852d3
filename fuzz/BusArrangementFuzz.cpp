// setBusArrangements with any counts and speaker arrangements, then processing with the buses
// the processor settled on: only mono to mono and stereo to stereo are taken, a refusal leaves
// stereo buses, and every settled layout processes to finite audio.

#include "FuzzHost.h"

#include <fuzzer/FuzzedDataProvider.h>

#include "pluginterfaces/vst/vstspeaker.h"

#include <bitset>

using namespace velmoran::fuzz;

namespace
{

SpeakerArrangement anyArrangement(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.PickValueInArray<SpeakerArrangement>(
                                     {SpeakerArr::kEmpty, SpeakerArr::kMono, SpeakerArr::kStereo,
                                      SpeakerArr::k51, SpeakerArr::kStereoSurround, SpeakerArr::k71Music,
                                      SpeakerArr::k222, ~SpeakerArrangement{0}})
                               : input.ConsumeIntegral<SpeakerArrangement>();
}

int channelCount(SpeakerArrangement arrangement)
{
    return static_cast<int>(std::bitset<64>(arrangement).count());
}

SpeakerArrangement busArrangement(IAudioProcessor* processor, BusDirection direction)
{
    SpeakerArrangement arrangement = 0;
    require(processor->getBusArrangement(direction, 0, arrangement) == kResultOk,
            "the main bus is always there");
    return arrangement;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    SharedProcessor& shared = SharedProcessor::instance();
    shared.restart();
    shared.component()->setActive(false);
    FuzzedDataProvider input(data, size);
    const int rounds = input.ConsumeIntegralInRange(1, 4);
    for (int round = 0; round < rounds; ++round)
    {
        std::vector<SpeakerArrangement> inputs(input.ConsumeIntegralInRange<size_t>(0, 3));
        std::vector<SpeakerArrangement> outputs(input.ConsumeIntegralInRange<size_t>(0, 3));
        for (auto& arrangement : inputs)
        {
            arrangement = anyArrangement(input);
        }
        for (auto& arrangement : outputs)
        {
            arrangement = anyArrangement(input);
        }
        const tresult result = shared.processor()->setBusArrangements(
            inputs.empty() ? nullptr : inputs.data(), static_cast<int32>(inputs.size()),
            outputs.empty() ? nullptr : outputs.data(), static_cast<int32>(outputs.size()));
        const bool pair = inputs.size() == 1 && outputs.size() == 1 &&
                          channelCount(inputs[0]) == channelCount(outputs[0]) &&
                          (channelCount(inputs[0]) == 1 || channelCount(inputs[0]) == 2);
        require((result == kResultOk) == pair, "exactly mono and stereo pairs are taken");
        const int inputChannels = channelCount(busArrangement(shared.processor(), kInput));
        const int outputChannels = channelCount(busArrangement(shared.processor(), kOutput));
        require(inputChannels == outputChannels && (inputChannels == 1 || inputChannels == 2),
                "the buses are always a mono or a stereo pair");
        if (!pair && inputs.size() == 1 && outputs.size() == 1)
        {
            require(inputChannels == 2, "a refused pair of buses leaves stereo buses");
        }
    }
    const int inputChannels = channelCount(busArrangement(shared.processor(), kInput));
    const int outputChannels = channelCount(busArrangement(shared.processor(), kOutput));
    require(shared.component()->setActive(true) == kResultOk, "the settled layout activates");
    std::vector<std::vector<float>> inputBuffers(static_cast<size_t>(inputChannels),
                                                 std::vector<float>(256, 0.5f));
    std::vector<std::vector<float>> outputBuffers(static_cast<size_t>(outputChannels),
                                                  std::vector<float>(256));
    require(shared.process(inputBuffers, outputBuffers, 256) == kResultOk, "the settled layout processes");
    require(allFinite(outputBuffers), "the settled layout gives finite audio");
    return 0;
}
