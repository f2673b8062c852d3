#include "ProcessBlock.h"

namespace Steinberg
{
namespace Vst
{
namespace
{

std::vector<float*> channelPointers(std::vector<std::vector<float>>& channels)
{
    std::vector<float*> pointers;
    pointers.reserve(channels.size());
    for (auto& channel : channels)
        pointers.push_back(channel.data());
    return pointers;
}

} // namespace

tresult processBlock(IAudioProcessor* processor, float* const* inputs, int32 inputChannels,
                     float* const* outputs, int32 outputChannels, int32 sampleCount,
                     IParameterChanges* changes, int32 processMode)
{
    AudioBusBuffers inputBus;
    inputBus.numChannels = inputChannels;
    inputBus.channelBuffers32 = const_cast<float**>(inputs);
    AudioBusBuffers outputBus;
    outputBus.numChannels = outputChannels;
    outputBus.channelBuffers32 = const_cast<float**>(outputs);
    ProcessData data;
    data.processMode = processMode;
    data.symbolicSampleSize = kSample32;
    data.numSamples = sampleCount;
    data.numInputs = 1;
    data.numOutputs = 1;
    data.inputs = &inputBus;
    data.outputs = &outputBus;
    data.inputParameterChanges = changes;
    return processor->process(data);
}

tresult processBlock(IAudioProcessor* processor, std::vector<std::vector<float>>& inputs,
                     std::vector<std::vector<float>>& outputs, int32 sampleCount, IParameterChanges* changes)
{
    const std::vector<float*> inputPointers = channelPointers(inputs);
    const std::vector<float*> outputPointers = channelPointers(outputs);
    return processBlock(processor, inputPointers.data(), static_cast<int32>(inputs.size()),
                        outputPointers.data(), static_cast<int32>(outputs.size()), sampleCount, changes);
}

} // namespace Vst
} // namespace Steinberg
