#pragma once

// A processor and controller running as in a host session: connected, set up for 48 kHz, active,
// with stereo buffers made once, so that a block can be processed without the host side
// allocating anything.

#include "PluginHost.h"

#include "plugin/SpectrumFrame.h"

#include <array>
#include <vector>

namespace velmoran::test
{

class RunningInstance
{
public:
    // Made, connected, set up for blocks of up to maxBlockLength samples and activated.
    explicit RunningInstance(int32 maxBlockLength = 512);
    // Deactivated; the instance is then taken down in the host's order.
    ~RunningInstance();
    RunningInstance(const RunningInstance&) = delete;
    RunningInstance& operator=(const RunningInstance&) = delete;

    // True when the instance was made and activated.
    bool valid() const { return mActive; }
    // Processes the first sampleCount samples of inputs into outputs (audio thread).
    tresult process(int32 sampleCount, IParameterChanges* changes = nullptr);
    // The frame the controller last received; read it only while no frame can arrive (after
    // disconnect or destruction of the processor).
    const Vst::Velmoran::SpectrumFrame* controllerFrame() const;
    // Stops frames from reaching the controller.
    void disconnect() { plugin.disconnect(); }

    PluginInstance plugin;
    std::array<std::vector<float>, 2> inputs;
    std::array<std::vector<float>, 2> outputs;

private:
    bool mActive = false;
    std::array<float*, 2> mInputChannels{};
    std::array<float*, 2> mOutputChannels{};
    AudioBusBuffers mInputBus{};
    AudioBusBuffers mOutputBus{};
    ProcessData mData{};
};

} // namespace velmoran::test
