// The processor's threads against each other, as a host runs them: the spectrum sender posting
// frames to the controller while the audio thread processes, processors taken down while their
// sender is busy, and two complete instances running side by side. Built with ThreadSanitizer
// in the linux-tsan preset.

#include "RunningInstance.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <thread>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;
using Clock = std::chrono::steady_clock;

constexpr int32 kBlock = 512;
constexpr double kPi = 3.14159265358979323846;

// With an editor open and "FFT" on, a sine of the given frequency (48 kHz, amplitude 0.5) in both
// input channels; false if the processor refused the editor message or the first block.
bool startAnalysing(RunningInstance& instance, double frequencyHz)
{
    for (auto& channel : instance.inputs)
        for (size_t index = 0; index < channel.size(); ++index)
            channel[index] = static_cast<float>(0.5 * std::sin(2.0 * kPi * frequencyHz * index / 48000.0));
    return instance.openEditor() && instance.process(kBlock, changesOf({{Plug::kFftTag, 1.0}})) == kResultOk;
}

// Processes blocks for the given wall-clock time, as the audio thread does; false if a block
// failed or gave a sample that is no number.
bool processFor(RunningInstance& instance, std::chrono::milliseconds duration)
{
    const auto start = Clock::now();
    while (Clock::now() - start < duration)
    {
        if (instance.process(kBlock) != kResultOk)
            return false;
        for (const auto& channel : instance.outputs)
            if (!std::all_of(channel.begin(), channel.end(),
                             [](float sample) { return std::isfinite(sample); }))
                return false;
        // A host's audio thread waits for the next buffer; so the sender gets its turns.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

using PlugTakenDownWhileSending = testing::TestWithParam<int>;

TEST_P(PlugTakenDownWhileSending, EndsCleanlyAtAnyPointOfTheSenderPeriod)
{
    // Each round ends the processor at another point of its 20 ms period: asleep, allocating the
    // message, or inside the controller's notify.
    for (int round = 0; round < 10; ++round)
    {
        auto instance = std::make_unique<RunningInstance>(kBlock);
        ASSERT_TRUE(instance->valid());
        ASSERT_TRUE(startAnalysing(*instance, 440.0));
        EXPECT_TRUE(processFor(*instance, std::chrono::milliseconds(GetParam() + round * 23 / 10)));
        instance.reset();
    }
}

INSTANTIATE_TEST_SUITE_P(LifetimeMs, PlugTakenDownWhileSending, testing::Values(0, 7, 19, 43));

TEST(PlugThreads, TwoInstancesRunSideBySideWithoutCrossTalk)
{
    RunningInstance loud(kBlock);
    RunningInstance silent(kBlock);
    ASSERT_TRUE(loud.valid() && silent.valid());
    ASSERT_TRUE(startAnalysing(loud, 2000.0));
    ASSERT_TRUE(startAnalysing(silent, 0.0));
    std::thread first([&loud] { EXPECT_TRUE(processFor(loud, std::chrono::milliseconds(500))); });
    std::thread second([&silent] { EXPECT_TRUE(processFor(silent, std::chrono::milliseconds(500))); });
    first.join();
    second.join();
    // Each controller is sent its own processor's signal: module-wide state is not shared.
    // The senders post frames while the audio threads process.
    const ReceivedFrames frames = loud.received();
    EXPECT_GE(frames.count, 5);
    EXPECT_EQ(frames.last.sampleRate, 48000.0f);
    EXPECT_TRUE(frames.last.transformSize == 4096 || frames.last.transformSize == 8192 ||
                frames.last.transformSize == 16384);
    EXPECT_GT(frames.loudestBin(), 1e-3f);
    EXPECT_GT(silent.received().count, 0);
    EXPECT_EQ(silent.received().loudestBin(), 0.0f);
    for (float sample : silent.outputs[0])
        ASSERT_EQ(sample, 0.0f);
}

TEST(PlugThreads, StateLoadedFromTheMainThreadWhileProcessing)
{
    RunningInstance instance(kBlock);
    ASSERT_TRUE(instance.valid());
    ASSERT_TRUE(startAnalysing(instance, 500.0));
    const std::vector<float> original = stateValues(instance.plugin.component);
    std::vector<float> boosted = original;
    // Band 1 gain to +18 dB.
    const auto& tags = Plug::stateTags();
    boosted[static_cast<size_t>(std::find(tags.begin(), tags.end(), Plug::gainTag(1)) - tags.begin())] = 1.0f;
    std::thread audio([&instance] { EXPECT_TRUE(processFor(instance, std::chrono::milliseconds(400))); });
    const auto start = Clock::now();
    int loads = 0;
    while (Clock::now() - start < std::chrono::milliseconds(300))
    {
        auto stream = streamOf(loads % 2 == 0 ? boosted : original);
        EXPECT_EQ(instance.plugin.component->setState(stream), kResultOk);
        ++loads;
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    audio.join();
    EXPECT_GT(loads, 10);
}

} // namespace
} // namespace velmoran::test
