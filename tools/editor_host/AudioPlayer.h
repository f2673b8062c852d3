#pragma once

#include "InputSignal.h"

#include "sdk/hosting/PluginInstance.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velmoran::editorhost
{

// The host's audio side: sets the processor up for 48 kHz stereo in blocks of 512 frames, plays an
// input signal through it one block at a time as real time passes, and hands every block the
// parameter changes that the component handler collected since the block before.
class AudioPlayer
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr int kBlockFrames = 512;

    explicit AudioPlayer(Steinberg::Vst::PluginInstance& instance);
    // Switches processing off if it is on.
    ~AudioPlayer();
    AudioPlayer(const AudioPlayer&) = delete;
    AudioPlayer& operator=(const AudioPlayer&) = delete;

    // Stereo buses, processing set up and switched on, as a host does before playback; false, with
    // the reason in error, when the processor refuses.
    bool activate(std::string& error);
    // Processing switched off and the processor deactivated.
    void deactivate();

    // The signal played from the next block on (the demo mix until set).
    void setSignal(InputSignal signal) { mSignal = std::move(signal); }
    // Plays for `seconds` of real time: the first block at once, each next one a block's length
    // (10.7 ms) later, and between blocks the host's own work through waitUntil(time), which returns
    // by that time. False, with the reason in error, when a block fails.
    bool playFor(double seconds, const std::function<void(Clock::time_point)>& waitUntil, std::string& error);

    // The peak of the last block over both channels, in dBFS (minus infinity for silence).
    double lastPeakDb() const;
    // Blocks processed since activation.
    std::int64_t processedBlocks() const { return mProcessedBlocks; }

private:
    void startClock(Clock::time_point now);
    Clock::time_point nextBlockDue() const;
    bool processDueBlocks(Clock::time_point now, std::string& error);
    bool playBlock(std::string& error);

    Steinberg::Vst::PluginInstance& mInstance;
    InputSignal mSignal = InputSignal::demo();
    std::vector<std::vector<float>> mInputs;
    std::vector<std::vector<float>> mOutputs;
    Clock::time_point mClockStart;
    std::int64_t mBlocksAtClockStart = 0;
    std::int64_t mProcessedBlocks = 0;
    bool mActive = false;
};

} // namespace velmoran::editorhost
