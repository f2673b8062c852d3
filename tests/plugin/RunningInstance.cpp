#include "RunningInstance.h"

#include <algorithm>
#include <cstring>

namespace velmoran::test
{

namespace Plug = Vst::Velmoran;

float ReceivedFrames::loudestBin() const
{
    return *std::max_element(last.magnitudes, last.magnitudes + Plug::kAnalyserMagnitudeCount);
}

ReceivedFrames FrameRelay::received()
{
    std::lock_guard<std::mutex> guard(mLock);
    return mReceived;
}

tresult PLUGIN_API FrameRelay::notify(IMessage* message)
{
    const void* data = nullptr;
    uint32 size = 0;
    if (message && message->getAttributes() && std::strcmp(message->getMessageID(), "BinaryMessage") == 0 &&
        message->getAttributes()->getBinary("FFTData", data, size) == kResultOk &&
        size == sizeof(Plug::SpectrumFrame))
    {
        std::lock_guard<std::mutex> guard(mLock);
        ++mReceived.count;
        std::memcpy(&mReceived.last, data, size);
    }
    return mController->notify(message);
}

RunningInstance::RunningInstance(int32 maxBlockLength)
{
    FUnknownPtr<IConnectionPoint> componentPoint(plugin.component);
    FUnknownPtr<IConnectionPoint> controllerPoint(plugin.controller);
    if (!plugin.valid() || !componentPoint || !controllerPoint)
        return;
    mRelay = owned(new FrameRelay(controllerPoint));
    componentPoint->connect(mRelay);
    controllerPoint->connect(componentPoint);
    for (size_t channel = 0; channel < 2; ++channel)
    {
        inputs[channel].assign(static_cast<size_t>(maxBlockLength), 0.0f);
        outputs[channel].assign(static_cast<size_t>(maxBlockLength), 0.0f);
        mInputChannels[channel] = inputs[channel].data();
        mOutputChannels[channel] = outputs[channel].data();
    }
    ProcessSetup setup{kRealtime, kSample32, maxBlockLength, 48000.0};
    mActive = plugin.processor->setupProcessing(setup) == kResultOk &&
              plugin.component->setActive(true) == kResultOk;
}

RunningInstance::~RunningInstance()
{
    if (mActive)
        plugin.component->setActive(false);
    FUnknownPtr<IConnectionPoint> componentPoint(plugin.component);
    FUnknownPtr<IConnectionPoint> controllerPoint(plugin.controller);
    if (mRelay && componentPoint && controllerPoint)
    {
        componentPoint->disconnect(mRelay);
        controllerPoint->disconnect(componentPoint);
    }
}

bool RunningInstance::openEditor(bool open)
{
    auto message = owned(new HostMessage());
    message->setMessageID("EditorOpen");
    message->getAttributes()->setInt("open", open ? 1 : 0);
    FUnknownPtr<IConnectionPoint> componentPoint(plugin.component);
    return componentPoint && componentPoint->notify(message) == kResultOk;
}

tresult RunningInstance::process(int32 sampleCount, IParameterChanges* changes)
{
    return processBlock(plugin.processor, mInputChannels.data(), 2, mOutputChannels.data(), 2, sampleCount,
                        changes);
}

} // namespace velmoran::test
