// The spectrum link: frames and the sample rate travelling from processor to controller.

#include "RunningInstance.h"

#include "plugin/PlugParameters.h"
#include "plugin/SpectrumFrame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;
using Clock = std::chrono::steady_clock;

// The header and the analyser's magnitudes of a frame.
std::pair<std::pair<float, int32>, std::vector<float>> contentOf(const Plug::SpectrumFrame& frame)
{
    return {{frame.sampleRate, frame.transformSize},
            {frame.magnitudes, frame.magnitudes + Plug::kAnalyserMagnitudeCount}};
}

class SpectrumLink : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(plugin.valid());
        point = FUnknownPtr<IConnectionPoint>(plugin.component);
        ASSERT_TRUE(point);
        ASSERT_EQ(point->connect(peer), kResultOk);
    }
    void TearDown() override
    {
        if (point)
            point->disconnect(peer);
    }

    PluginInstance plugin{false};
    IPtr<FrameRelay> peer = owned(new FrameRelay());
    IPtr<IConnectionPoint> point;
};

TEST_F(SpectrumLink, FullFramesArriveAboutEvery20Ms)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const ReceivedFrames received = peer->received();
    // 25 periods; a loaded machine or an emulator may lose some.
    EXPECT_GE(received.count, 8);
    EXPECT_LE(received.count, 27);
    EXPECT_EQ(received.otherSizes, 0);
    // Rate and size are never written while "FFT" is off.
    EXPECT_EQ(contentOf(received.last).first, std::make_pair(44100.0f, int32{0}));
}

// Without an editor the analyser rests and the frame stays as it was; once one opens, a 1 kHz
// sine shows within 0.3 s (three attack time constants) at 90 % of the level it settles at, and
// when the last one closes the frame rests again.
TEST_F(SpectrumLink, FrameRestsWithoutAnEditorAndCatchesUpWhenOneOpens)
{
    const auto run = [&](double seconds, double amplitude)
    {
        // Ten whole periods of 48 samples a block, so the blocks join without a step.
        std::vector<std::vector<float>> inputs(2, std::vector<float>(480));
        for (auto& channel : inputs)
            for (size_t i = 0; i < channel.size(); ++i)
                channel[i] = static_cast<float>(amplitude *
                                                std::sin(6.283185307179586 * static_cast<double>(i) / 48.0));
        std::vector<std::vector<float>> outputs = inputs;
        for (int block = 0; block < static_cast<int>(seconds * 100); ++block)
            ASSERT_EQ(processBlock(plugin.processor, inputs, outputs, 480, changesOf({{Plug::kFftTag, 1.0}})),
                      kResultOk);
    };
    // The header and magnitudes of a frame sent wholly after this call.
    const auto nextFrame = [&]
    {
        const int sent = peer->received().count;
        const auto start = Clock::now();
        while (peer->received().count < sent + 2 && Clock::now() - start < std::chrono::seconds(2))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return contentOf(peer->received().last);
    };

    run(0.5, 0.5);
    const auto resting = nextFrame();
    EXPECT_EQ(resting.first, std::make_pair(44100.0f, int32{0}));
    EXPECT_EQ(*std::max_element(resting.second.begin(), resting.second.end()), 0.0f);

    ASSERT_EQ(point->notify(editorMessage(true)), kResultOk);
    run(0.3, 0.5);
    const auto rising = nextFrame();
    run(1.0, 0.5);
    const auto settled = nextFrame();
    EXPECT_EQ(settled.first, std::make_pair(48000.0f, int32{4096}));
    const auto peak = std::max_element(settled.second.begin(), settled.second.end()) - settled.second.begin();
    EXPECT_GT(settled.second[peak], 0.05f);
    EXPECT_GT(rising.second[peak], 0.9f * settled.second[peak]);

    ASSERT_EQ(point->notify(editorMessage(false)), kResultOk);
    run(0.3, 0.0);
    EXPECT_EQ(nextFrame(), settled);
}

TEST_F(SpectrumLink, ActivationSendsTheSampleRate)
{
    ProcessSetup setup{kRealtime, kSample32, 256, 88200.0};
    ASSERT_EQ(plugin.processor->setupProcessing(setup), kResultOk);
    ASSERT_EQ(plugin.component->setActive(true), kResultOk);
    ASSERT_EQ(plugin.component->setActive(false), kResultOk);
    EXPECT_EQ(peer->received().sampleRates, std::vector<double>{88200.0});
}

TEST(SpectrumLinkLifetime, ProcessorDestroyedAtOnceEndsItsThreadWithinAPeriod)
{
    IPtr<IPluginFactory> factory = sharedModule()->factory();
    ASSERT_TRUE(factory);
    PClassInfo info;
    ASSERT_EQ(factory->getClassInfo(0, &info), kResultOk);
    for (int round = 0; round < 5; ++round)
    {
        IComponent* component = nullptr;
        ASSERT_EQ(factory->createInstance(info.cid, IComponent::iid, reinterpret_cast<void**>(&component)),
                  kResultOk);
        const auto start = Clock::now();
        component->release();
        const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
        // One 20 ms period plus scheduling slack (sanitizers and Wine are slow).
        EXPECT_LT(waited.count(), 150) << "round " << round;
    }
}

// The instance's parts are not connected: meanwhile its processor sends frames into nothing.
TEST(SpectrumLinkController, KeepsFramesUpToItsSizeAndTakesTheRate)
{
    PluginInstance plugin(false);
    ASSERT_TRUE(plugin.valid());
    std::this_thread::sleep_for(std::chrono::milliseconds(70));
    FUnknownPtr<IConnectionPoint> controller(plugin.controller);
    ASSERT_TRUE(controller);
    std::vector<char> frame(32777, 1);
    auto message = owned(new HostMessage());
    message->setMessageID("BinaryMessage");
    for (uint32 size : {32777u, 32776u, 3u})
    {
        message->getAttributes()->setBinary("FFTData", frame.data(), size);
        EXPECT_EQ(controller->notify(message), kResultOk) << size;
    }

    auto rate = owned(new HostMessage());
    rate->setMessageID("setActive");
    rate->getAttributes()->setFloat("sampleRate", 96000.0);
    EXPECT_EQ(controller->notify(rate), kResultOk);

    auto other = owned(new HostMessage());
    other->setMessageID("BinaryMessage");
    EXPECT_NE(controller->notify(other), kResultOk); // no "FFTData": not ours
    EXPECT_EQ(controller->notify(nullptr), kInvalidArgument);
}

} // namespace
} // namespace velmoran::test
