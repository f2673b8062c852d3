// The spectrum link: frames and the sample rate travelling from processor to controller.

#include "PluginHost.h"
#include "support/AtomicReferences.h"

#include "plugin/PlugParameters.h"
#include "plugin/SpectrumFrame.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;
using Clock = std::chrono::steady_clock;

// A controller stand-in at the other end of the processor's connection: records what arrives.
class ListeningPeer : public IConnectionPoint
{
public:
    ListeningPeer() = default;
    virtual ~ListeningPeer() = default;

    tresult PLUGIN_API connect(IConnectionPoint*) SMTG_OVERRIDE { return kResultOk; }
    tresult PLUGIN_API disconnect(IConnectionPoint*) SMTG_OVERRIDE { return kResultOk; }
    tresult PLUGIN_API notify(IMessage* message) SMTG_OVERRIDE
    {
        if (!message || !message->getMessageID() || !message->getAttributes())
        {
            return kInvalidArgument;
        }
        std::lock_guard<std::mutex> guard(mLock);
        if (std::strcmp(message->getMessageID(), "BinaryMessage") == 0)
        {
            const void* data = nullptr;
            uint32 size = 0;
            if (message->getAttributes()->getBinary("FFTData", data, size) == kResultOk)
            {
                mFrameSizes.push_back(size);
                mLastFrame.assign(static_cast<const char*>(data), static_cast<const char*>(data) + size);
            }
        }
        else if (std::strcmp(message->getMessageID(), "setActive") == 0)
        {
            double rate = 0.0;
            if (message->getAttributes()->getFloat("sampleRate", rate) == kResultOk)
            {
                mSampleRates.push_back(rate);
            }
        }
        return kResultOk;
    }

    std::vector<uint32> frameSizes()
    {
        std::lock_guard<std::mutex> guard(mLock);
        return mFrameSizes;
    }
    std::vector<double> sampleRates()
    {
        std::lock_guard<std::mutex> guard(mLock);
        return mSampleRates;
    }
    std::vector<char> lastFrame()
    {
        std::lock_guard<std::mutex> guard(mLock);
        return mLastFrame;
    }

    VELMORAN_ATOMIC_REFERENCES(IConnectionPoint)

private:
    std::mutex mLock;
    std::vector<uint32> mFrameSizes;
    std::vector<double> mSampleRates;
    std::vector<char> mLastFrame;
};

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
        {
            point->disconnect(peer);
        }
    }

    PluginInstance plugin{false};
    IPtr<ListeningPeer> peer = owned(new ListeningPeer());
    IPtr<IConnectionPoint> point;
};

TEST_F(SpectrumLink, FullFramesArriveAboutEvery20Ms)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const std::vector<uint32> sizes = peer->frameSizes();
    // 25 periods; a loaded machine or an emulator may lose some.
    EXPECT_GE(sizes.size(), 8u);
    EXPECT_LE(sizes.size(), 27u);
    for (uint32 size : sizes)
    {
        EXPECT_EQ(size, 32776u);
    }
    const std::vector<char> frame = peer->lastFrame();
    ASSERT_EQ(frame.size(), 32776u);
    float rate = 0.0f;
    int32 size = -1;
    std::memcpy(&rate, frame.data(), 4);
    std::memcpy(&size, frame.data() + 4, 4);
    EXPECT_EQ(rate, 44100.0f); // never written while "FFT" is off
    EXPECT_EQ(size, 0);
}

TEST_F(SpectrumLink, FrameCarriesTheAnalyserOnceFftIsOn)
{
    std::vector<std::vector<float>> inputs(2, std::vector<float>(1024, 0.3f));
    std::vector<std::vector<float>> outputs(2, std::vector<float>(1024));
    ASSERT_EQ(processBlock(plugin.processor, inputs, outputs, 1024, changesOf({{Plug::kFftTag, 1.0}})),
              kResultOk);
    const auto start = Clock::now();
    float rate = 0.0f;
    int32 size = 0;
    while (Clock::now() - start < std::chrono::seconds(2))
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        const std::vector<char> frame = peer->lastFrame();
        if (frame.size() == 32776u)
        {
            std::memcpy(&rate, frame.data(), 4);
            std::memcpy(&size, frame.data() + 4, 4);
            if (size != 0)
            {
                break;
            }
        }
    }
    EXPECT_EQ(rate, 48000.0f);
    EXPECT_TRUE(size == 4096 || size == 8192 || size == 16384) << size;
}

TEST_F(SpectrumLink, ActivationSendsTheSampleRate)
{
    ProcessSetup setup{kRealtime, kSample32, 256, 88200.0};
    ASSERT_EQ(plugin.processor->setupProcessing(setup), kResultOk);
    ASSERT_EQ(plugin.component->setActive(true), kResultOk);
    ASSERT_EQ(plugin.component->setActive(false), kResultOk);
    const std::vector<double> rates = peer->sampleRates();
    ASSERT_EQ(rates.size(), 1u);
    EXPECT_EQ(rates[0], 88200.0);
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

TEST(SpectrumLinkLifetime, UnconnectedProcessorSendsIntoNothing)
{
    PluginInstance plugin(false);
    ASSERT_TRUE(plugin.valid());
    std::this_thread::sleep_for(std::chrono::milliseconds(70));
}

TEST(SpectrumLinkController, KeepsFramesUpToItsSizeAndTakesTheRate)
{
    PluginInstance plugin(false);
    ASSERT_TRUE(plugin.valid());
    FUnknownPtr<IConnectionPoint> controller(plugin.controller);
    ASSERT_TRUE(controller);
    std::vector<char> frame(32777, 1);
    auto message = owned(new HostMessage());
    message->setMessageID("BinaryMessage");
    message->getAttributes()->setBinary("FFTData", frame.data(), 32777);
    EXPECT_EQ(controller->notify(message), kResultOk);
    message->getAttributes()->setBinary("FFTData", frame.data(), 32776);
    EXPECT_EQ(controller->notify(message), kResultOk);
    message->getAttributes()->setBinary("FFTData", frame.data(), 3);
    EXPECT_EQ(controller->notify(message), kResultOk);

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
