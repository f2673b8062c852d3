// The processor's threads against each other, as a host runs them: the spectrum sender posting
// frames to the controller while the audio thread processes, processors taken down while their
// sender is busy, and two complete instances running side by side. Built with ThreadSanitizer
// in the linux-tsan preset.

#include "RunningInstance.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"
#include "support/Signals.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

constexpr int32 kBlock = 512;

// With an editor open and "FFT" on, a sine of the given frequency (48 kHz, amplitude 0.5) in both
// input channels; false if the processor refused the editor message or the first block.
bool startAnalysing(RunningInstance& instance, double frequencyHz)
{
    const std::vector<float> sine = velmoran::testing::MakeSine(frequencyHz, 48000.0, kBlock, 0.5);
    for (auto& channel : instance.inputs)
        std::copy(sine.begin(), sine.end(), channel.begin());
    return instance.openEditor() && instance.process(kBlock, changesOf({{Plug::kFftTag, 1.0}})) == kResultOk;
}

// One block as the audio thread processes it; false if it failed or gave a sample that is no number.
bool processOne(RunningInstance& instance)
{
    if (instance.process(kBlock) != kResultOk)
        return false;
    for (const auto& channel : instance.outputs)
        if (!std::all_of(channel.begin(), channel.end(), [](float sample) { return std::isfinite(sample); }))
            return false;
    // A host's audio thread waits for the next buffer; so the sender gets its turns.
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return true;
}

// Processes blocks until done() holds; false if a block went wrong or done() never came.
template <typename Done> bool processUntil(RunningInstance& instance, Done done)
{
    bool fine = true;
    return waitFor(done, [&] { fine = processOne(instance) && fine; }) && fine;
}

using PlugTakenDownWhileSending = ::testing::TestWithParam<int>;

TEST_P(PlugTakenDownWhileSending, EndsCleanlyAtAnyPointOfTheSenderPeriod)
{
    // Each round ends the processor after another number of blocks, each a millisecond or more,
    // and so at another point of its 20 ms period: asleep, allocating the message, or inside the
    // controller's notify.
    for (int round = 0; round < 10; ++round)
    {
        RunningInstance instance(kBlock);
        ASSERT_TRUE(instance.valid());
        ASSERT_TRUE(startAnalysing(instance, 440.0));
        int blocks = 0;
        EXPECT_TRUE(processUntil(instance, [&] { return blocks++ >= GetParam() + round * 23 / 10; }));
    }
}

INSTANTIATE_TEST_SUITE_P(LifetimeBlocks, PlugTakenDownWhileSending, ::testing::Values(0, 7, 19, 43));

TEST(PlugThreads, TwoInstancesRunSideBySideWithoutCrossTalk)
{
    RunningInstance loud(kBlock);
    RunningInstance silent(kBlock);
    ASSERT_TRUE(loud.valid() && silent.valid());
    ASSERT_TRUE(startAnalysing(loud, 2000.0));
    ASSERT_TRUE(startAnalysing(silent, 0.0));
    // Both play until the loud one's controller shows its tone and the silent one's has had five
    // frames: the senders post frames while the audio threads process.
    std::atomic<bool> seen{false};
    const auto bothSeen = [&]
    {
        if (!seen && loud.received().loudestBin() > 1e-3f && silent.received().count >= 5)
            seen = true;
        return seen.load();
    };
    std::thread first([&] { EXPECT_TRUE(processUntil(loud, bothSeen)); });
    std::thread second([&] { EXPECT_TRUE(processUntil(silent, bothSeen)); });
    first.join();
    second.join();
    // Each controller is sent its own processor's signal: module-wide state is not shared.
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
    boosted[stateIndexOf(Plug::gainTag(1))] = 1.0f; // band 1 gain to +18 dB
    // The audio thread processes all along and takes two blocks or more after every load, so
    // that loads and blocks interleave however the threads are scheduled.
    std::atomic<int> blocks{0};
    std::atomic<bool> loaded{false};
    const auto untilLoaded = [&]
    {
        ++blocks;
        return loaded.load();
    };
    std::thread audio([&] { EXPECT_TRUE(processUntil(instance, untilLoaded)); });
    for (int load = 0; load < 40; ++load)
    {
        EXPECT_EQ(instance.plugin.component->setState(streamOf(load % 2 == 0 ? boosted : original)),
                  kResultOk);
        const int after = blocks;
        EXPECT_TRUE(waitFor([&] { return blocks > after + 1; }));
    }
    loaded = true;
    audio.join();
}

} // namespace
} // namespace velmoran::test
