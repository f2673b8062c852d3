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

// The class identifier of the factory's class at index.
bool classIdAt(IPluginFactory* factory, int32 index, TUID cid)
{
    PClassInfo info;
    if (factory->getClassInfo(index, &info) != kResultOk)
    {
        return false;
    }
    std::memcpy(cid, info.cid, sizeof(TUID));
    return true;
}

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
{
    VST3::Hosting::Module* module = sharedModule();
    if (!module)
    {
        return;
    }
    IPtr<IPluginFactory> factory = module->factory();
    TUID processorId;
    TUID controllerId;
    if (!factory || !classIdAt(factory, 0, processorId) || !classIdAt(factory, 1, controllerId))
    {
        return;
    }
    host = std::make_unique<HostApplication>();
    IComponent* newComponent = nullptr;
    if (factory->createInstance(processorId, IComponent::iid, reinterpret_cast<void**>(&newComponent)) ==
        kResultOk)
    {
        component = owned(newComponent);
    }
    IEditController* newController = nullptr;
    if (factory->createInstance(controllerId, IEditController::iid,
                                reinterpret_cast<void**>(&newController)) == kResultOk)
    {
        controller = owned(newController);
    }
    if (!component || !controller)
    {
        return;
    }
    processor = FUnknownPtr<IAudioProcessor>(component);
    component->initialize(host.get());
    controller->initialize(host.get());
    handler = owned(new ComponentHandler());
    controller->setComponentHandler(handler);
    if (connectNow)
    {
        connect();
    }
}

PluginInstance::~PluginInstance()
{
    disconnect();
    if (controller)
    {
        controller->setComponentHandler(nullptr);
        controller->terminate();
    }
    if (component)
    {
        component->terminate();
    }
}

void PluginInstance::connect()
{
    FUnknownPtr<IConnectionPoint> componentPoint(component);
    FUnknownPtr<IConnectionPoint> controllerPoint(controller);
    if (mConnected || !componentPoint || !controllerPoint)
    {
        return;
    }
    componentPoint->connect(controllerPoint);
    controllerPoint->connect(componentPoint);
    mConnected = true;
}

void PluginInstance::disconnect()
{
    FUnknownPtr<IConnectionPoint> componentPoint(component);
    FUnknownPtr<IConnectionPoint> controllerPoint(controller);
    if (!mConnected || !componentPoint || !controllerPoint)
    {
        return;
    }
    componentPoint->disconnect(controllerPoint);
    controllerPoint->disconnect(componentPoint);
    mConnected = false;
}

std::vector<char> stateBytes(IComponent* component)
{
    MemoryStream stream;
    if (component->getState(&stream) != kResultOk)
    {
        return {};
    }
    return std::vector<char>(stream.getData(), stream.getData() + stream.getSize());
}

std::vector<float> stateValues(IComponent* component)
{
    const std::vector<char> bytes = stateBytes(component);
    std::vector<float> values(bytes.size() / sizeof(float));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(float));
    return values;
}

IPtr<IBStream> streamOf(const std::vector<char>& bytes)
{
    auto stream = owned(new MemoryStream());
    int32 written = 0;
    if (!bytes.empty())
    {
        stream->write(const_cast<char*>(bytes.data()), static_cast<int32>(bytes.size()), &written);
    }
    stream->seek(0, IBStream::kIBSeekSet, nullptr);
    return stream;
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
