// The processor as a host drives it: buses, set-up, parameter changes, blocks of odd shapes. The
// controller's and the messages' hostile calls are the fuzz targets' (their corpus holds each
// input that once crashed).

#include "PluginHost.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include "pluginterfaces/vst/vstspeaker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

std::string busName(IComponent* component, MediaType type, BusDirection direction)
{
    BusInfo info;
    return component->getBusInfo(type, direction, 0, info) == kResultOk ? asciiOf(info.name) : "";
}

using PlugProcessor = WithInstance<>;

// One audio bus each way (their layouts in the table below) and one event input; 32-bit samples
// only; null arrangements are refused.
TEST_F(PlugProcessor, OffersItsBusesAndThirtyTwoBitSamples)
{
    IComponent* component = plugin.component;
    EXPECT_EQ(component->getBusCount(kAudio, kInput), 1);
    EXPECT_EQ(component->getBusCount(kAudio, kOutput), 1);
    EXPECT_EQ(component->getBusCount(kEvent, kInput), 1);
    EXPECT_EQ(component->getBusCount(kEvent, kOutput), 0);
    EXPECT_EQ(busName(component, kAudio, kOutput), "Stereo Out");
    BusInfo info;
    ASSERT_EQ(component->getBusInfo(kEvent, kInput, 0, info), kResultOk);
    EXPECT_EQ(asciiOf(info.name), "Event In");
    EXPECT_EQ(info.channelCount, 1);
    EXPECT_EQ(info.flags, static_cast<uint32>(BusInfo::kDefaultActive));
    EXPECT_EQ(plugin.processor->canProcessSampleSize(kSample32), kResultTrue);
    EXPECT_NE(plugin.processor->canProcessSampleSize(kSample64), kResultTrue);
    EXPECT_EQ(plugin.processor->setBusArrangements(nullptr, 1, nullptr, 1), kResultFalse);
    SpeakerArrangement input = 0;
    ASSERT_EQ(plugin.processor->getBusArrangement(kInput, 0, input), kResultOk);
    EXPECT_EQ(input, SpeakerArr::kStereo);
}

TEST_F(PlugProcessor, SetUpRefusesSixtyFourBitSamplesAndRatesThatAreNoRates)
{
    for (auto [sampleSize, rate] : {std::pair{kSample64, 88200.0},
                                    {kSample32, 0.0},
                                    {kSample32, std::numeric_limits<double>::quiet_NaN()}})
    {
        ProcessSetup setup{kRealtime, sampleSize, 256, rate};
        EXPECT_NE(plugin.processor->setupProcessing(setup), kResultOk) << sampleSize << " " << rate;
    }
}

struct LayoutCase
{
    const char* name;
    std::vector<SpeakerArrangement> layouts; // asked for in turn, each for input and output alike
    const char* inputName;
};

using PlugBusLayout = WithInstance<testing::TestWithParam<LayoutCase>>;

// A mono or stereo pair is taken whatever came before; the input bus is named after it and a block of
// as many channels comes out in every channel. Which requests are refused, and that a refusal leaves
// stereo buses, is the bus arrangement fuzz target's.
TEST_P(PlugBusLayout, NamesTheInputBusAndProcessesEveryChannel)
{
    for (SpeakerArrangement layout : GetParam().layouts)
    {
        SpeakerArrangement in = layout;
        SpeakerArrangement out = layout;
        ASSERT_EQ(plugin.processor->setBusArrangements(&in, 1, &out, 1), kResultOk);
    }
    EXPECT_EQ(busName(plugin.component, kAudio, kInput), GetParam().inputName);
    const size_t channels = GetParam().layouts.back() == SpeakerArr::kMono ? 1 : 2;
    std::vector<std::vector<float>> in(channels, std::vector<float>(256, 0.5f));
    std::vector<std::vector<float>> out(channels, std::vector<float>(256));
    ASSERT_EQ(processBlock(plugin.processor, in, out, 256), kResultOk);
    for (const auto& channel : out)
        EXPECT_GT(std::fabs(channel[255]), 0.1f);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, PlugBusLayout,
    testing::Values(LayoutCase{"Mono", {SpeakerArr::kMono}, "Mono In"},
                    LayoutCase{"MonoAgain", {SpeakerArr::kMono, SpeakerArr::kMono}, "Mono In"},
                    LayoutCase{"StereoAfterMono", {SpeakerArr::kMono, SpeakerArr::kStereo}, "Stereo In"}),
    [](const testing::TestParamInfo<LayoutCase>& info) { return std::string(info.param.name); });

// The last point of a queue is the value taken (that a block of no samples applies its changes too
// is what the state and program tests rely on).
TEST_F(PlugProcessor, ChangesTakeTheLastPointOfTheQueue)
{
    auto changes = owned(new ParameterChanges());
    int32 index = 0;
    IParamValueQueue* queue = changes->addParameterData(Plug::gainTag(1), index);
    queue->addPoint(0, 0.2, index);
    queue->addPoint(10, 0.7, index);
    queue->addPoint(100, 0.9, index);
    std::vector<std::vector<float>> inputs(2, std::vector<float>(128));
    std::vector<std::vector<float>> outputs(2, std::vector<float>(128));
    ASSERT_EQ(processBlock(plugin.processor, inputs, outputs, 128, changes), kResultOk);
    EXPECT_FLOAT_EQ(stateValues(plugin.component)[stateIndexOf(Plug::gainTag(1))], 0.9f);
}

TEST_F(PlugProcessor, UnknownTagsAndBadValuesLeaveEverythingAsItWas)
{
    const std::vector<char> before = stateBytes(plugin.component);
    std::vector<std::vector<float>> inputs(2, std::vector<float>(32));
    std::vector<std::vector<float>> outputs(2, std::vector<float>(32));
    auto changes = changesOf({{13, 1.0},
                              {Plug::kPresetTag, 1.0},
                              {70, 1.0},
                              {96, 1.0},
                              {98, 1.0},
                              {5000, 1.0},
                              {0xFFFFFFFF, 1.0},
                              {Plug::gainTag(2), std::numeric_limits<double>::quiet_NaN()},
                              {Plug::gainTag(3), 1.5},
                              {Plug::gainTag(4), -0.5}});
    ASSERT_EQ(processBlock(plugin.processor, inputs, outputs, 32, changes), kResultOk);
    EXPECT_EQ(stateBytes(plugin.component), before);
}

TEST_F(PlugProcessor, OddProcessDataNeverCrashes)
{
    std::vector<float> buffer(4096, 0.25f);
    float* channels[80];
    std::fill(std::begin(channels), std::end(channels), buffer.data());
    AudioBusBuffers input;
    AudioBusBuffers output;
    ProcessData data;
    data.symbolicSampleSize = kSample32;
    EXPECT_EQ(plugin.processor->process(data), kResultOk); // nothing at all

    data.numSamples = 1 << 30;
    data.numInputs = 1;
    data.numOutputs = 1;
    EXPECT_EQ(plugin.processor->process(data), kResultOk); // bus counts without buses

    data.inputs = &input;
    data.outputs = &output;
    input.numChannels = 2;
    output.numChannels = 2;
    EXPECT_EQ(plugin.processor->process(data), kResultOk); // channel lists missing

    data.numSamples = 4096;
    input.channelBuffers32 = channels;
    output.channelBuffers32 = channels;
    input.numChannels = 80;
    output.numChannels = 80;
    EXPECT_EQ(plugin.processor->process(data), kResultOk); // more channels than are served

    float* missing[2] = {nullptr, nullptr};
    input.channelBuffers32 = missing;
    input.numChannels = 2;
    output.numChannels = 1;
    EXPECT_EQ(plugin.processor->process(data), kResultOk); // null channel pointers

    data.numSamples = -5;
    EXPECT_EQ(plugin.processor->process(data), kResultOk);
    for (float sample : buffer)
        ASSERT_TRUE(std::isfinite(sample));
}

} // namespace
} // namespace velmoran::test
