#include "AudioPlayer.h"

#include "sdk/hosting/ProcessBlock.h"

#include "pluginterfaces/vst/vstspeaker.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editorhost
{

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace
{

constexpr int kChannels = 2;

// The block clock's period.
AudioPlayer::Clock::duration blockLength()
{
    const std::chrono::duration<double> seconds(AudioPlayer::kBlockFrames / kSignalSampleRate);
    return std::chrono::duration_cast<AudioPlayer::Clock::duration>(seconds);
}

} // namespace

AudioPlayer::AudioPlayer(PluginInstance& instance)
    : mInstance(instance), mInputs(kChannels, std::vector<float>(kBlockFrames)),
      mOutputs(kChannels, std::vector<float>(kBlockFrames))
{
}

AudioPlayer::~AudioPlayer()
{
    deactivate();
}

double AudioPlayer::lastPeakDb() const
{
    float peak = 0.0f;
    for (const std::vector<float>& channel : mOutputs)
        for (float sample : channel)
            peak = std::max(peak, std::fabs(sample));
    return 20.0 * std::log10(static_cast<double>(peak));
}

bool AudioPlayer::activate(std::string& error)
{
    SpeakerArrangement stereo = SpeakerArr::kStereo;
    if (mInstance.processor->setBusArrangements(&stereo, 1, &stereo, 1) != kResultOk)
    {
        error = "the processor refuses stereo buses";
        return false;
    }
    ProcessSetup setup = {};
    setup.processMode = kRealtime;
    setup.symbolicSampleSize = kSample32;
    setup.maxSamplesPerBlock = kBlockFrames;
    setup.sampleRate = kSignalSampleRate;
    if (mInstance.processor->setupProcessing(setup) != kResultOk)
    {
        error = "the processor refuses 32-bit processing at 48 kHz in blocks of 512";
        return false;
    }
    if (mInstance.component->setActive(true) != kResultOk)
    {
        error = "the processor refuses to be activated";
        return false;
    }
    mActive = true;
    mInstance.processor->setProcessing(true);
    return true;
}

void AudioPlayer::deactivate()
{
    if (!mActive)
    {
        return;
    }
    mInstance.processor->setProcessing(false);
    mInstance.component->setActive(false);
    mActive = false;
}

bool AudioPlayer::playFor(double seconds, const std::function<void(Clock::time_point)>& waitUntil,
                          std::string& error)
{
    const Clock::time_point start = Clock::now();
    const Clock::time_point end =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    startClock(start);
    for (auto now = start; now < end; now = Clock::now())
    {
        if (!processDueBlocks(now, error))
        {
            return false;
        }
        waitUntil(std::min(nextBlockDue(), end));
    }
    return true;
}

void AudioPlayer::startClock(Clock::time_point now)
{
    mClockStart = now;
    mBlocksAtClockStart = mProcessedBlocks;
}

AudioPlayer::Clock::time_point AudioPlayer::nextBlockDue() const
{
    return mClockStart + (mProcessedBlocks - mBlocksAtClockStart) * blockLength();
}

bool AudioPlayer::processDueBlocks(Clock::time_point now, std::string& error)
{
    while (nextBlockDue() <= now)
    {
        if (!playBlock(error))
        {
            return false;
        }
    }
    return true;
}

bool AudioPlayer::playBlock(std::string& error)
{
    mSignal.fill(mInputs[0].data(), mInputs[1].data(), kBlockFrames);
    ParameterChanges& changes = mInstance.handler->pendingChanges();
    const tresult result = Vst::processBlock(mInstance.processor, mInputs, mOutputs, kBlockFrames,
                                             changes.getParameterCount() > 0 ? &changes : nullptr);
    changes.clearQueue();
    ++mProcessedBlocks;
    if (result != kResultOk)
    {
        error = "the processor failed block " + std::to_string(mProcessedBlocks);
        return false;
    }
    return true;
}

} // namespace velmoran::editorhost
