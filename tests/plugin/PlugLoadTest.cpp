// Long use, as a host gives it: many instances processing at once with their sender threads, and
// a soak of full-scale noise with random automation on every block. The test command runs short
// versions; scripts/soak.sh sets the lengths through VELMORAN_LOAD_SECONDS and
// VELMORAN_SOAK_SECONDS. Times are printed as figures, never asserted.

#include "RunningInstance.h"

#include "plugin/PlugParameters.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <thread>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

constexpr int32 kBlock = 512;
constexpr double kSampleRate = 48000.0;
// +60 dBFS: no setting may take a full-scale input beyond this.
constexpr float kLoudestOutput = 1000.0f;

// A length from the environment, or the short default of the test command.
double setting(const char* name, double shortDefault)
{
    const char* text = std::getenv(name);
    const double value = text ? std::atof(text) : 0.0;
    return value > 0.0 ? value : shortDefault;
}

// Processor time the calling thread has used, in microseconds: unlike the wall clock it does not
// count the time the thread waited for a core on a busy machine. The wall clock where there is
// no such clock.
double threadMicroseconds()
{
#if defined(__linux__)
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e6 * static_cast<double>(now.tv_sec) + 1e-3 * static_cast<double>(now.tv_nsec);
#else
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
#endif
}

// Every tag a host can automate but those in `kept`: all band and global parameters, the effect
// switch and bypass.
std::vector<ParamID> automatedTags(const std::vector<ParamID>& kept = {})
{
    std::vector<ParamID> tags = {Plug::kHostBypassTag};
    for (ParamID tag = 0; tag < static_cast<ParamID>(Plug::kProgramValueCount); ++tag)
        tags.push_back(tag);
    const auto left = [&](ParamID tag)
    { return tag == Plug::kUnusedTag || std::find(kept.begin(), kept.end(), tag) != kept.end(); };
    tags.erase(std::remove_if(tags.begin(), tags.end(), left), tags.end());
    return tags;
}

// Fills `changes` with `count` points, each of a random tag of `tags` at a random value.
void automate(ParameterChanges& changes, std::mt19937& random, const std::vector<ParamID>& tags, int count)
{
    changes.clearQueue();
    for (int point = 0; point < count; ++point)
    {
        int32 index = 0;
        changes.addParameterData(tags[random() % tags.size()], index)
            ->addPoint(0, std::uniform_real_distribution<double>(0.0, 1.0)(random), index);
    }
}

// Processes a block of full-scale noise, or of silence, and says what went wrong, if anything: a
// refused call, NaN, infinity, a denormal or a sample beyond +60 dBFS. Adds the block's processor
// time in microseconds to `times` when given, and tracks the loudest sample.
const char* processBlockOf(RunningInstance& instance, std::mt19937& random, IParameterChanges* changes,
                           float& loudest, bool silent = false, std::vector<float>* times = nullptr)
{
    std::uniform_real_distribution<float> noise(-1.0f, 1.0f);
    for (auto& channel : instance.inputs)
        for (float& sample : channel)
            sample = silent ? 0.0f : noise(random);
    const double start = threadMicroseconds();
    const tresult result = instance.process(kBlock, changes);
    if (times)
        times->push_back(static_cast<float>(threadMicroseconds() - start));
    if (result != kResultOk)
        return "a refused block";
    for (const auto& channel : instance.outputs)
    {
        for (float sample : channel)
        {
            if (!std::isfinite(sample))
                return "a sample that is no finite number";
            if (std::fpclassify(sample) == FP_SUBNORMAL)
                return "a denormal sample";
            loudest = std::max(loudest, std::fabs(sample));
            if (std::fabs(sample) > kLoudestOutput)
                return "a sample beyond +60 dBFS";
        }
    }
    return nullptr;
}

TEST(PlugLoad, ThirtyTwoInstancesOnTwoThreadsWithTheirSenders)
{
    constexpr int kInstances = 32;
    const double seconds = setting("VELMORAN_LOAD_SECONDS", 1.0);
    const int blocks = static_cast<int>(seconds * kSampleRate / kBlock);
    std::vector<std::unique_ptr<RunningInstance>> instances;
    for (int index = 0; index < kInstances; ++index)
    {
        instances.push_back(std::make_unique<RunningInstance>(kBlock));
        ASSERT_TRUE(instances.back()->valid()) << "instance " << index;
        ASSERT_TRUE(instances.back()->openEditor());
        ASSERT_EQ(instances.back()->process(0, changesOf({{Plug::kFftTag, 1.0}})), kResultOk);
    }
    // The analyser stays on so that every sender has a real frame to post.
    const std::vector<ParamID> tags = automatedTags({Plug::kFftTag, Plug::kEqTag, Plug::kHostBypassTag});
    std::atomic<int> failures{0};
    auto run = [&](int first, unsigned seed)
    {
        std::mt19937 random(seed);
        auto changes = owned(new ParameterChanges());
        float loudest = 0.0f;
        for (int block = 0; block < blocks; ++block)
        {
            for (int index = first; index < first + kInstances / 2; ++index)
            {
                automate(*changes, random, tags, 1);
                if (processBlockOf(*instances[static_cast<size_t>(index)], random, changes, loudest))
                    ++failures;
            }
        }
    };
    const auto start = std::chrono::steady_clock::now();
    std::thread firstHalf(run, 0, 1);
    std::thread secondHalf(run, kInstances / 2, 2);
    firstHalf.join();
    secondHalf.join();
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(failures.load(), 0);
    for (auto& instance : instances)
        EXPECT_TRUE(waitFor([&] { return instance->received().last.transformSize != 0; }))
            << "every controller receives frames";
    std::printf(
        "[ figures  ] load: %d instances x %.1f s of 48 kHz audio on 2 threads with %d sender threads: "
        "%.2f s wall, %.1f x real time per thread\n",
        kInstances, seconds, kInstances, wall, seconds * kInstances / 2.0 / wall);
}

// A fixed setting with every band at work and the analyser on: the soak returns to it at the
// start of every round, so that block times taken there compare like with like.
IPtr<ParameterChanges> referenceSetting()
{
    std::vector<std::pair<ParamID, ParamValue>> points = {
        {Plug::kEqTag, 1.0},        {Plug::kHostBypassTag, 0.0}, {Plug::kFftTag, 1.0},
        {Plug::kFftSourceTag, 1.0}, {Plug::kPolarityTag, 0.0},   {Plug::kSoloTag, 0.0},
        {Plug::kInputGainTag, 0.5}, {Plug::kOutputGainTag, 0.5},
    };
    for (int band = 1; band <= Plug::kBandCount; ++band)
    {
        points.push_back({Plug::filterTypeTag(band), (2 + band % 10) / 20.0});
        points.push_back({Plug::frequencyTag(band), band / 11.0});
        points.push_back({Plug::gainTag(band), band % 2 == 0 ? 0.7 : 0.3});
        points.push_back({Plug::qTag(band), 0.4});
        points.push_back({Plug::enableTag(band), 1.0});
        points.push_back({Plug::modeTag(band), 0.0});
    }
    return changesOf(points);
}

// The value below which the given share (0..1) of a series, or of its first or last tenth, lies.
float quantileOf(std::vector<float> values, double share)
{
    if (values.empty())
        return 0.0f;
    const auto index = static_cast<long>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + index, values.end());
    return values[static_cast<size_t>(index)];
}

float medianOfTenth(const std::vector<float>& values, bool last)
{
    const auto tenth = static_cast<long>(std::max<size_t>(1, values.size() / 10));
    return quantileOf(last ? std::vector<float>(values.end() - tenth, values.end())
                           : std::vector<float>(values.begin(), values.begin() + tenth),
                      0.5);
}

TEST(PlugLoad, SoakWithRandomAutomationOnEveryBlock)
{
    // A round is 1,000 blocks (10.7 s): the reference setting (20 blocks to settle, 20 timed),
    // then random automation of every parameter on every block over full-scale noise, then over
    // 200 blocks of silence, where filter tails decay towards denormals.
    constexpr int kRound = 1000;
    constexpr int kReferenceFrom = 20;
    constexpr int kAutomationFrom = 40;
    constexpr int kSilentFrom = 800;
    const double seconds = setting("VELMORAN_SOAK_SECONDS", 60.0);
    const int blocks = static_cast<int>(seconds * kSampleRate / kBlock);
    RunningInstance instance(kBlock);
    ASSERT_TRUE(instance.valid());
    // With an editor open, so that the analyser's share is in every block time.
    ASSERT_TRUE(instance.openEditor());
    const std::vector<ParamID> tags = automatedTags();
    const IPtr<ParameterChanges> reference = referenceSetting();
    std::mt19937 random(5);
    auto changes = owned(new ParameterChanges());
    std::vector<float> referenceMicroseconds;
    std::vector<float> allMicroseconds;
    allMicroseconds.reserve(static_cast<size_t>(blocks));
    float loudest = 0.0f;
    for (int block = 0; block < blocks; ++block)
    {
        const int inRound = block % kRound;
        IParameterChanges* blockChanges = inRound == 0 ? reference.get() : nullptr;
        if (inRound >= kAutomationFrom)
        {
            automate(*changes, random, tags, 1 + static_cast<int>(random() % 4));
            blockChanges = changes;
        }
        const char* problem =
            processBlockOf(instance, random, blockChanges, loudest, inRound >= kSilentFrom, &allMicroseconds);
        ASSERT_EQ(problem, nullptr) << problem << " in block " << block << " ("
                                    << block * static_cast<double>(kBlock) / kSampleRate << " s)";
        if (inRound >= kReferenceFrom && inRound < kAutomationFrom)
            referenceMicroseconds.push_back(allMicroseconds.back());
    }
    std::printf(
        "[ figures  ] soak: %.0f s of 48 kHz audio, %d blocks of %d, random automation on every block; "
        "loudest output %.1f dBFS for full-scale noise; block processor time median %.1f us, 99.9th "
        "percentile %.1f us, longest %.1f us (budget %.0f us); reference setting median %.1f us, "
        "late/early median ratio %.3f\n",
        seconds, blocks, kBlock, 20.0 * std::log10(std::max(loudest, 1e-30f)),
        quantileOf(allMicroseconds, 0.5), quantileOf(allMicroseconds, 0.999),
        quantileOf(allMicroseconds, 1.0), 1e6 * kBlock / kSampleRate, quantileOf(referenceMicroseconds, 0.5),
        medianOfTenth(referenceMicroseconds, true) / medianOfTenth(referenceMicroseconds, false));
}

} // namespace
} // namespace velmoran::test
