#include "PluginHost.h"

#include "pluginterfaces/base/ustring.h"
#include "public.sdk/source/common/memorystream.h"

#include <cstring>
#include <memory>

namespace velmoran::test
{

namespace
{

std::string gModulePath;

} // namespace

void setModulePath(const std::string& path)
{
    gModulePath = path;
}

const std::string& modulePath()
{
    return gModulePath;
}

VST3::Hosting::Module* sharedModule()
{
    static std::unique_ptr<VST3::Hosting::Module> module = []
    {
        std::string error;
        return VST3::Hosting::Module::load(gModulePath, error);
    }();
    return module.get();
}

PluginInstance::PluginInstance(bool connectNow)
    : Steinberg::Vst::PluginInstance(sharedModule() ? sharedModule()->factory() : nullptr, connectNow)
{
}

std::vector<float> stateValues(IComponent* component)
{
    const std::vector<char> bytes = stateBytes(component);
    std::vector<float> values(bytes.size() / sizeof(float));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(float));
    return values;
}

IPtr<IBStream> streamOf(const std::vector<float>& values)
{
    std::vector<char> bytes(values.size() * sizeof(float));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return streamOf(bytes);
}

tresult processBlock(IAudioProcessor* processor, std::vector<std::vector<float>>& inputs,
                     std::vector<std::vector<float>>& outputs, int32 sampleCount, IParameterChanges* changes)
{
    std::vector<float*> inputPointers;
    std::vector<float*> outputPointers;
    for (auto& channel : inputs)
    {
        inputPointers.push_back(channel.data());
    }
    for (auto& channel : outputs)
    {
        outputPointers.push_back(channel.data());
    }
    AudioBusBuffers inputBus;
    inputBus.numChannels = static_cast<int32>(inputs.size());
    inputBus.channelBuffers32 = inputPointers.data();
    AudioBusBuffers outputBus;
    outputBus.numChannels = static_cast<int32>(outputs.size());
    outputBus.channelBuffers32 = outputPointers.data();
    ProcessData data;
    data.processMode = kRealtime;
    data.symbolicSampleSize = kSample32;
    data.numSamples = sampleCount;
    data.numInputs = 1;
    data.numOutputs = 1;
    data.inputs = &inputBus;
    data.outputs = &outputBus;
    data.inputParameterChanges = changes;
    return processor->process(data);
}

IPtr<ParameterChanges> changesOf(const std::vector<std::pair<ParamID, ParamValue>>& points)
{
    auto changes = owned(new ParameterChanges());
    for (const auto& [tag, value] : points)
    {
        int32 index = 0;
        if (IParamValueQueue* queue = changes->addParameterData(tag, index))
        {
            queue->addPoint(0, value, index);
        }
    }
    return changes;
}

std::string asciiOf(const TChar* text)
{
    char8 ascii[256] = {};
    UString(const_cast<TChar*>(text), 128).toAscii(ascii, sizeof(ascii));
    return ascii;
}

} // namespace velmoran::test
