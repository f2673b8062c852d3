#include "PluginHost.h"

#include "plugin/PlugState.h"

#include "pluginterfaces/base/ustring.h"
#include "public.sdk/source/common/memorystream.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace velmoran::test
{

VST3::Hosting::Module* sharedModule()
{
    static std::unique_ptr<VST3::Hosting::Module> module = []
    {
        std::string error;
        return VST3::Hosting::Module::load(modulePath(), error);
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

size_t stateIndexOf(ParamID tag)
{
    const auto& tags = Vst::Velmoran::stateTags();
    return static_cast<size_t>(std::find(tags.begin(), tags.end(), tag) - tags.begin());
}

IPtr<IBStream> streamOf(const std::vector<float>& values)
{
    std::vector<char> bytes(values.size() * sizeof(float));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return streamOf(bytes);
}

IPtr<ParameterChanges> changesOf(const std::vector<std::pair<ParamID, ParamValue>>& points)
{
    auto changes = owned(new ParameterChanges());
    for (const auto& [tag, value] : points)
    {
        int32 index = 0;
        if (IParamValueQueue* queue = changes->addParameterData(tag, index))
            queue->addPoint(0, value, index);
    }
    return changes;
}

tresult applyChanges(IAudioProcessor* processor, IParameterChanges* changes)
{
    std::vector<std::vector<float>> inputs(2);
    std::vector<std::vector<float>> outputs(2);
    return processBlock(processor, inputs, outputs, 0, changes);
}

std::string asciiOf(const TChar* text)
{
    char8 ascii[256] = {};
    UString(const_cast<TChar*>(text), 128).toAscii(ascii, sizeof(ascii));
    return ascii;
}

void copyAscii(const char* ascii, String128 text)
{
    UString128(ascii).copyTo(text, 128);
}

} // namespace velmoran::test
