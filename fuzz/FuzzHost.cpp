#include "FuzzHost.h"

#include "plugin/PlugIds.h"
#include "sdk/hosting/ProcessBlock.h"

#include "public.sdk/source/common/memorystream.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" Steinberg::IPluginFactory* PLUGIN_API GetPluginFactory();
extern "C" bool ModuleEntry(void* sharedLibraryHandle);

namespace velmoran::fuzz
{

namespace
{

IPluginFactory& factory()
{
    // Entered once, as a host enters the module before its first factory call; never left, so
    // that the instances kept for the run outlive every input.
    static IPluginFactory* entered = []
    {
        require(ModuleEntry(nullptr), "the module entry succeeds");
        IPluginFactory* made = GetPluginFactory();
        require(made != nullptr, "the module gives a factory");
        return made;
    }();
    return *entered;
}

template <typename Interface> IPtr<Interface> makeInstance(const FUID& classId)
{
    Interface* made = nullptr;
    if (factory().createInstance(classId.toTUID(), Interface::iid, reinterpret_cast<void**>(&made)) !=
            kResultOk ||
        !made)
    {
        return nullptr;
    }
    IPtr<Interface> instance = owned(made);
    require(instance->initialize(&hostApplication()) == kResultOk, "a new instance initialises");
    return instance;
}

} // namespace

void require(bool condition, const char* what)
{
    if (!condition)
    {
        std::fprintf(stderr, "velmoran fuzz: property broken: %s\n", what);
        std::abort();
    }
}

HostApplication& hostApplication()
{
    // Not reference counted by the SDK's hosting classes: kept for the whole run.
    static HostApplication* host = new HostApplication();
    return *host;
}

IPtr<IComponent> makeProcessor()
{
    return makeInstance<IComponent>(Vst::Velmoran::kPlugProcessorUID);
}

IPtr<IEditController> makeController()
{
    return makeInstance<IEditController>(Vst::Velmoran::kPlugControllerUID);
}

const std::vector<char>& defaultState()
{
    static const std::vector<char> bytes = []
    {
        IPtr<IComponent> fresh = makeProcessor();
        require(fresh != nullptr, "a processor can be made");
        MemoryStream stream;
        require(fresh->getState(&stream) == kResultOk, "a fresh processor writes its state");
        std::vector<char> state(stream.getData(), stream.getData() + stream.getSize());
        fresh->terminate();
        return state;
    }();
    return bytes;
}

IPtr<IBStream> streamOver(const uint8_t* data, size_t size)
{
    // MemoryStream only reads from memory it was given; it never writes to it here.
    return owned(new MemoryStream(const_cast<uint8_t*>(data), static_cast<TSize>(size)));
}

std::vector<float> stateOf(IComponent* component)
{
    MemoryStream stream;
    require(component->getState(&stream) == kResultOk, "the state can always be written");
    std::vector<float> values(static_cast<size_t>(stream.getSize()) / sizeof(float));
    std::memcpy(values.data(), stream.getData(), values.size() * sizeof(float));
    return values;
}

SharedProcessor& SharedProcessor::instance()
{
    static SharedProcessor* shared = new SharedProcessor();
    return *shared;
}

SharedProcessor::SharedProcessor()
{
    mComponent = makeProcessor();
    require(mComponent != nullptr, "a processor can be made");
    mProcessor = FUnknownPtr<IAudioProcessor>(mComponent);
    require(mProcessor != nullptr, "the processor is an audio processor");
}

void SharedProcessor::restart(double sampleRate)
{
    mComponent->setActive(false);
    SpeakerArrangement stereo = SpeakerArr::kStereo;
    require(mProcessor->setBusArrangements(&stereo, 1, &stereo, 1) == kResultOk, "stereo buses are taken");
    const std::vector<char>& state = defaultState();
    require(mComponent->setState(streamOver(reinterpret_cast<const uint8_t*>(state.data()), state.size())) ==
                kResultOk,
            "the default state loads");
    ProcessSetup setup{kRealtime, kSample32, 8192, sampleRate};
    require(mProcessor->setupProcessing(setup) == kResultOk, "any positive sample rate is taken");
    require(mComponent->setActive(true) == kResultOk, "the processor activates");
    setEditorOpen(false);
}

void SharedProcessor::setEditorOpen(bool open)
{
    FUnknownPtr<IConnectionPoint> processor(mComponent);
    auto message = owned(new HostMessage());
    message->setMessageID("EditorOpen");
    message->getAttributes()->setInt("open", open ? 1 : 0);
    require(processor && processor->notify(message) == kResultOk, "the processor takes \"EditorOpen\"");
}

tresult SharedProcessor::process(std::vector<std::vector<float>>& inputs,
                                 std::vector<std::vector<float>>& outputs, int32 sampleCount,
                                 IParameterChanges* changes)
{
    return processBlock(mProcessor, inputs, outputs, sampleCount, changes);
}

bool allFinite(const std::vector<std::vector<float>>& channels)
{
    for (const auto& channel : channels)
    {
        for (float sample : channel)
        {
            if (!std::isfinite(sample))
            {
                return false;
            }
        }
    }
    return true;
}

} // namespace velmoran::fuzz
