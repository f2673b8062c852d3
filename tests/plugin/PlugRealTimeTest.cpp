// process never allocates, frees or takes a lock, whatever a block's parameter changes ask for:
// glides, filter type and channel mode changes, solo on and off, effect off and on, bypass, the
// analyser on and off (with an editor open, and as editors open and close), polarity and gains. Counted on
// the audio thread only, from before the changes arrive until their glides, cross-fades and ramps have run
// out.

#include "RunningInstance.h"

#include "plugin/PlugParameters.h"
#include "support/RealTimeProbe.h"

#include <gtest/gtest.h>

#include <cmath>
#include <mutex>
#include <string>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

constexpr int32 kLongestBlock = 4096;
// Blocks after each step: 50 blocks of up to 4096 samples outlast every glide, cross-fade
// (512 samples) and ramp (50 ms).
constexpr int kBlocksPerStep = 50;
// Block lengths in turn: single samples, a chunk and a bit, a host's usual sizes.
constexpr int32 kBlockLengths[] = {1, 64, 150, 512, 4096, 0, 37};

using Step = std::vector<std::pair<ParamID, ParamValue>>;

struct ChangeCase
{
    const char* name;
    std::vector<Step> steps;
    // An editor opens before steps 0, 2, 4... and closes before steps 1, 3, 5...; otherwise one
    // stays open throughout.
    bool editorOpensAndCloses = false;
};

std::vector<Step> everyBand(ParamID (*tagOf)(int), std::vector<ParamValue> values)
{
    std::vector<Step> steps;
    for (ParamValue value : values)
    {
        Step step;
        for (int band = 1; band <= Plug::kBandCount; ++band)
            step.emplace_back(tagOf(band), value);
        steps.push_back(step);
    }
    return steps;
}

// Every filter type's code, 0 to 20, on every band in turn.
std::vector<Step> typeChanges()
{
    std::vector<ParamValue> codes;
    for (int code = 0; code <= 20; ++code)
        codes.push_back(code / 20.0);
    return everyBand(Plug::filterTypeTag, codes);
}

std::vector<ChangeCase> changeCases()
{
    return {
        {"FrequencyGlides", everyBand(Plug::frequencyTag, {1.0, 0.0, 0.3})},
        {"GainGlides", everyBand(Plug::gainTag, {1.0, 0.0, 0.5})},
        {"QGlides", everyBand(Plug::qTag, {1.0, 0.0, 0.5})},
        {"TypeChanges", typeChanges()},
        {"ModeChanges", everyBand(Plug::modeTag, {0.25, 0.5, 0.75, 1.0, 0.0})},
        {"EnableOffAndOn", everyBand(Plug::enableTag, {0.0, 1.0})},
        {"SoloOnAndOff",
         {{{Plug::kSoloTag, 3.0 / 12.0}},
          {{Plug::modeTag(3), 0.25}, {Plug::kSoloTag, 3.0 / 12.0}},
          {{Plug::kSoloTag, 7.0 / 12.0}},
          {{Plug::kSoloTag, 1.0}},
          {{Plug::kSoloTag, 0.0}}}},
        {"EffectOffAndOn",
         {{{Plug::kEqTag, 0.0}},
          {{Plug::kEqTag, 1.0}},
          {{Plug::kEqTag, 0.0}, {Plug::gainTag(2), 1.0}},
          {{Plug::kEqTag, 1.0}}}},
        {"HostBypassOnAndOff", {{{Plug::kHostBypassTag, 1.0}}, {{Plug::kHostBypassTag, 0.0}}}},
        {"AnalyserOnAndOff",
         {{{Plug::kFftTag, 1.0}},
          {{Plug::kFftSourceTag, 1.0}},
          {{Plug::kFftTag, 0.0}},
          {{Plug::kFftTag, 1.0}, {Plug::kFftSourceTag, 0.0}},
          {{Plug::kFftSlopeTag, 0.2}}}},
        {"PolarityInvertedAndBack", {{{Plug::kPolarityTag, 1.0}}, {{Plug::kPolarityTag, 0.0}}}},
        {"InputAndOutputGain",
         {{{Plug::kInputGainTag, 1.0}, {Plug::kOutputGainTag, 0.0}},
          {{Plug::kInputGainTag, 0.0}, {Plug::kOutputGainTag, 1.0}}}},
        {"PresetAndUnknownTags", {{{Plug::kPresetTag, 1.0}, {13, 0.5}, {98, 1.0}, {5000, 0.5}}}},
        // Editors opening and closing on the UI thread switch the analyser on and off.
        {"EditorOpensAndCloses", {{{Plug::kFftTag, 1.0}}, {}, {}, {}, {}, {}}, true},
    };
}

using PlugRealTime = testing::TestWithParam<ChangeCase>;

// Two sines of different pitch in the instance's inputs.
void fillInputs(RunningInstance& instance)
{
    for (size_t index = 0; index < instance.inputs[0].size(); ++index)
    {
        instance.inputs[0][index] = static_cast<float>(std::sin(0.05 * static_cast<double>(index)));
        instance.inputs[1][index] = static_cast<float>(std::sin(0.21 * static_cast<double>(index)));
    }
}

// Processes kBlocksPerStep blocks of the lengths in turn, the first with `changes`.
void processStep(RunningInstance& instance, IParameterChanges* changes, int& block)
{
    for (int count = 0; count < kBlocksPerStep; ++count, ++block)
    {
        const int32 length = kBlockLengths[block % std::size(kBlockLengths)];
        instance.process(length, count == 0 ? changes : nullptr);
    }
}

TEST_P(PlugRealTime, ProcessNeitherAllocatesNorLocks)
{
    RunningInstance instance(kLongestBlock);
    ASSERT_TRUE(instance.valid());
    fillInputs(instance);
    // Every change list is made before the audio thread is watched, as a host makes its lists.
    std::vector<IPtr<ParameterChanges>> changes;
    for (const Step& step : GetParam().steps)
        changes.push_back(changesOf(step));
    int block = 0;
    for (size_t step = 0; step < changes.size(); ++step)
    {
        // Editor messages are made and delivered on the UI thread, outside the count.
        if (step == 0 || GetParam().editorOpensAndCloses)
        {
            ASSERT_TRUE(instance.openEditor(step % 2 == 0 || !GetParam().editorOpensAndCloses));
        }
        armRealTimeProbe();
        processStep(instance, changes[step], block);
        const RealTimeCounts counts = disarmRealTimeProbe();
        EXPECT_EQ(counts.allocations, 0) << "step " << step;
        EXPECT_EQ(counts.frees, 0) << "step " << step;
        EXPECT_EQ(counts.locks, 0) << "step " << step;
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKindOfChange, PlugRealTime, testing::ValuesIn(changeCases()),
                         [](const testing::TestParamInfo<ChangeCase>& info)
                         { return std::string(info.param.name); });

// The probe itself must see what it is there to see, also inside the loaded module.
TEST(RealTimeProbe, SeesAllocationsFreesAndLocksAlsoInsideTheModule)
{
    IPtr<IPluginFactory> factory = sharedModule()->factory();
    ASSERT_TRUE(factory);
    PClassInfo info;
    ASSERT_EQ(factory->getClassInfo(1, &info), kResultOk);
    std::mutex mutex;
    armRealTimeProbe();
    // Called by name: a new-expression may be left out by the optimiser.
    ::operator delete(::operator new(16));
    {
        std::lock_guard<std::mutex> guard(mutex);
    }
    const RealTimeCounts ownCounts = disarmRealTimeProbe();
    IEditController* controller = nullptr;
    armRealTimeProbe();
    ASSERT_EQ(factory->createInstance(info.cid, IEditController::iid, reinterpret_cast<void**>(&controller)),
              kResultOk);
    controller->release();
    const RealTimeCounts moduleCounts = disarmRealTimeProbe();
    for (const RealTimeCounts& counts : {ownCounts, moduleCounts})
    {
        EXPECT_GE(counts.allocations, 1);
        EXPECT_GE(counts.frees, 1);
    }
    EXPECT_GE(ownCounts.locks, 1);
}

} // namespace
} // namespace velmoran::test
