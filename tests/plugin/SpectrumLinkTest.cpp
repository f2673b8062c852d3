// The spectrum link: frames and the sample rate travelling from processor to controller.

#include "RunningInstance.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <future>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace velmoran::test
{
namespace
{

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

TEST_F(SpectrumLink, FullFramesKeepArriving)
{
    ASSERT_TRUE(waitFor([this] { return peer->received().count >= 3; }));
    const ReceivedFrames received = peer->received();
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

TEST(SpectrumLinkLifetime, ProcessorDestroyedAtOnceEndsItsThread)
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
        // A sender that never ends would hold the release for good.
        auto done = std::make_shared<std::promise<void>>();
        std::future<void> released = done->get_future();
        std::thread releasing(
            [component, done]
            {
                component->release();
                done->set_value();
            });
        const bool ended = released.wait_for(kPatience) == std::future_status::ready;
        ended ? releasing.join() : releasing.detach();
        ASSERT_TRUE(ended) << "round " << round;
    }
}

} // namespace
} // namespace velmoran::test
