// The spectrum link: frames and the sample rate travelling from processor to controller.

#include "RunningInstance.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>
#include <vector>

namespace velmoran::test
{
namespace
{

using Clock = std::chrono::steady_clock;

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
    EXPECT_EQ(received.last.sampleRate, 44100.0f);
    EXPECT_EQ(received.last.transformSize, 0);
}

// Set-up refuses rates that are no rates and 64-bit samples; a valid one is sent on activation.
TEST_F(SpectrumLink, ActivationSendsTheSampleRate)
{
    ProcessSetup setup{kRealtime, kSample64, 256, 88200.0};
    EXPECT_NE(plugin.processor->setupProcessing(setup), kResultOk);
    setup.symbolicSampleSize = kSample32;
    for (double rate : {0.0, std::numeric_limits<double>::quiet_NaN()})
    {
        setup.sampleRate = rate;
        EXPECT_NE(plugin.processor->setupProcessing(setup), kResultOk) << rate;
    }
    setup.sampleRate = 88200.0;
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
}

} // namespace
} // namespace velmoran::test
