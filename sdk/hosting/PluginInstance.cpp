#include "PluginInstance.h"

#include "public.sdk/source/common/memorystream.h"

#include <cstring>

namespace Steinberg
{
namespace Vst
{

namespace
{

// The first class of the factory in the given category, as a host picks the plug-in's classes.
bool findClass(IPluginFactory* factory, const char* category, TUID cid)
{
    const int32 count = factory->countClasses();
    for (int32 index = 0; index < count; ++index)
    {
        PClassInfo info;
        if (factory->getClassInfo(index, &info) == kResultOk && std::strcmp(info.category, category) == 0)
        {
            std::memcpy(cid, info.cid, sizeof(TUID));
            return true;
        }
    }
    return false;
}

} // namespace

PluginInstance::PluginInstance(IPluginFactory* factory, bool connectNow)
{
    if (!factory)
    {
        mFailureReason = "the module has no plug-in factory";
        return;
    }
    host = std::make_unique<HostApplication>();
    if (!makeComponent(factory) || !makeController(factory))
    {
        return;
    }
    handler = owned(new ComponentHandler());
    controller->setComponentHandler(handler);
    if (connectNow)
    {
        connect();
    }
}

bool PluginInstance::makeComponent(IPluginFactory* factory)
{
    TUID componentId;
    if (!findClass(factory, kVstAudioEffectClass, componentId))
    {
        mFailureReason = "the factory offers no audio effect";
        return false;
    }
    IComponent* newComponent = nullptr;
    if (factory->createInstance(componentId, IComponent::iid, reinterpret_cast<void**>(&newComponent)) !=
            kResultOk ||
        !newComponent)
    {
        mFailureReason = "the factory could not make the audio effect";
        return false;
    }
    component = owned(newComponent);
    if (component->initialize(host.get()) != kResultOk)
    {
        mFailureReason = "the audio effect failed to initialise";
        component = nullptr;
        return false;
    }
    mComponentInitialised = true;
    processor = FUnknownPtr<IAudioProcessor>(component);
    if (!processor)
    {
        mFailureReason = "the audio effect is no audio processor";
        return false;
    }
    return true;
}

bool PluginInstance::makeController(IPluginFactory* factory)
{
    TUID controllerId;
    if (component->getControllerClassId(controllerId) != kResultOk)
    {
        mFailureReason = "the audio effect names no edit controller";
        return false;
    }
    IEditController* newController = nullptr;
    if (factory->createInstance(controllerId, IEditController::iid,
                                reinterpret_cast<void**>(&newController)) != kResultOk ||
        !newController)
    {
        mFailureReason = "the factory could not make the edit controller";
        return false;
    }
    controller = owned(newController);
    if (controller->initialize(host.get()) != kResultOk)
    {
        mFailureReason = "the edit controller failed to initialise";
        controller = nullptr;
        return false;
    }
    mControllerInitialised = true;
    return true;
}

PluginInstance::~PluginInstance()
{
    disconnect();
    if (controller && mControllerInitialised)
    {
        controller->setComponentHandler(nullptr);
        controller->terminate();
    }
    if (component && mComponentInitialised)
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

namespace
{

template <typename Holder> std::vector<char> stateBytesOf(Holder* holder)
{
    MemoryStream stream;
    if (!holder || holder->getState(&stream) != kResultOk)
    {
        return {};
    }
    return std::vector<char>(stream.getData(), stream.getData() + stream.getSize());
}

} // namespace

std::vector<char> stateBytes(IComponent* component)
{
    return stateBytesOf(component);
}

std::vector<char> stateBytes(IEditController* controller)
{
    return stateBytesOf(controller);
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

} // namespace Vst
} // namespace Steinberg
