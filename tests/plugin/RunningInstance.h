#pragma once

// A processor and controller running as in a host session: connected, set up for 48 kHz, active,
// with stereo buffers made once, so that a block can be processed without the host side
// allocating anything. The processor's messages pass through a relay on their way to the
// controller, which notes what the frames held.

#include "PluginHost.h"
#include "plugin/SpectrumFrame.h"
#include "support/AtomicReferences.h"

#include <array>
#include <mutex>
#include <vector>

namespace velmoran::test
{

// What reached the controller from the processor.
struct ReceivedFrames
{
    int count = 0;                     // spectrum frames of the exchanged size
    Vst::Velmoran::SpectrumFrame last; // the last of them

    // The loudest of the analyser's magnitudes in the last frame.
    float loudestBin() const;
};

// Notes the processor's spectrum frames (on the thread that sends them) and passes every message on
// to the controller.
class FrameRelay : public IConnectionPoint
{
public:
    explicit FrameRelay(IConnectionPoint* controller) : mController(controller) {}
    virtual ~FrameRelay() = default;

    // What has arrived so far.
    ReceivedFrames received();

    tresult PLUGIN_API connect(IConnectionPoint*) SMTG_OVERRIDE { return kResultOk; }
    tresult PLUGIN_API disconnect(IConnectionPoint*) SMTG_OVERRIDE { return kResultOk; }
    tresult PLUGIN_API notify(IMessage* message) SMTG_OVERRIDE;

    VELMORAN_ATOMIC_REFERENCES(IConnectionPoint)

private:
    IPtr<IConnectionPoint> mController;
    std::mutex mLock;
    ReceivedFrames mReceived;
};

class RunningInstance
{
public:
    // Made, connected, set up for blocks of up to maxBlockLength samples and activated.
    explicit RunningInstance(int32 maxBlockLength = 512);
    // Deactivated and disconnected; the instance is then taken down in the host's order.
    ~RunningInstance();

    // True when the instance was made, connected and activated.
    bool valid() const { return mActive; }
    // Processes the first sampleCount samples of inputs into outputs (audio thread).
    tresult process(int32 sampleCount, IParameterChanges* changes = nullptr);
    // What reached the controller.
    ReceivedFrames received() { return mRelay ? mRelay->received() : ReceivedFrames{}; }
    // Tells the processor that an editor opened or closed, with the message the controller sends;
    // true when the processor took it.
    bool openEditor(bool open = true);

    PluginInstance plugin{false};
    std::array<std::vector<float>, 2> inputs;
    std::array<std::vector<float>, 2> outputs;

private:
    bool mActive = false;
    IPtr<FrameRelay> mRelay;
    std::array<float*, 2> mInputChannels{};
    std::array<float*, 2> mOutputChannels{};
};

} // namespace velmoran::test
