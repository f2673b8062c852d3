// The spectrum link as the editor depends on it, processor and controller compiled in and connected
// to each other as a host connects them: the processor analyses only while an editor is open, and
// learns that one is from the controller's connection and from each activation, whatever order a
// host creates, connects, activates and re-connects the two in; the controller takes the rate the
// processor sends. Which frames the controller keeps of any message is the notify fuzz target's.

#include "plugin/Plug.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ParameterChanges.h"
#include "sdk/hosting/ProcessBlock.h"

#include "support/Signals.h"
#include "support/WaitFor.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;

class PlugEditorLink : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(controller->initialize(&host), kResultOk);
        ASSERT_EQ(processor->initialize(&host), kResultOk);
        int32 index = 0;
        mFftOn->addParameterData(Velmoran::kFftTag, index)->addPoint(0, 1.0, index);
    }
    void TearDown() override
    {
        controller->editorClosed(editor());
        disconnect();
        controller->terminate();
        processor->terminate();
    }

    void connect()
    {
        ASSERT_EQ(processor->connect(controller), kResultOk);
        ASSERT_EQ(controller->connect(processor), kResultOk);
    }
    void disconnect()
    {
        processor->disconnect(controller);
        controller->disconnect(processor);
    }
    // The controller only tells the editors it is told of about parameters; nothing here draws.
    struct EditorStandIn : Velmoran::EditorListener
    {
        void parameterChanged(ParamID, ParamValue) override {}
    };
    Velmoran::EditorListener* editor() { return &mEditorStandIn; }

    // Plays one block of a 1 kHz sine of the given amplitude with "FFT" on; true when the
    // controller has been sent a frame since it was last looked at.
    bool playAndLook(double amplitude = 0.5)
    {
        std::vector<std::vector<float>> inputs(
            2, velmoran::testing::MakeSine(1000.0, 48000.0, kBlock, amplitude));
        EXPECT_EQ(processBlock(processor, inputs, mOutputs, kBlock, mFftOn), kResultOk);
        return controller->copySpectrumFrame(*mFrame, mSeen);
    }
    // Plays the given time, then gives the third frame sent after it: the frame the controller holds
    // and the one on its way may have been taken before the last block; the one after them was not.
    const Velmoran::SpectrumFrame& frameAfterPlaying(double seconds, double amplitude)
    {
        for (int block = 0; block < static_cast<int>(seconds * 48000.0 / kBlock); ++block)
            playAndLook(amplitude);
        int frames = 0;
        EXPECT_TRUE(velmoran::test::waitFor(
            [&] { return (frames += controller->copySpectrumFrame(*mFrame, mSeen) ? 1 : 0) == 3; }));
        return *mFrame;
    }

    // Ten whole periods of the sine a block, so the blocks join without a step.
    static constexpr int32 kBlock = 480;
    HostApplication host;
    IPtr<Velmoran::CPlug> processor = owned(new Velmoran::CPlug());
    IPtr<Velmoran::CPlugController> controller = owned(new Velmoran::CPlugController());
    std::unique_ptr<Velmoran::SpectrumFrame> mFrame = Velmoran::makeSpectrumFrame();

private:
    IPtr<ParameterChanges> mFftOn = owned(new ParameterChanges());
    std::vector<std::vector<float>> mOutputs{2, std::vector<float>(kBlock)};
    uint64_t mSeen = ~uint64_t{0};
    EditorStandIn mEditorStandIn;
};

// The editor draws its axes for the rate activation sends before any frame arrives.
TEST_F(PlugEditorLink, ActivationSendsTheSampleRate)
{
    connect();
    ProcessSetup setup{kRealtime, kSample32, 256, 88200.0};
    ASSERT_EQ(processor->setupProcessing(setup), kResultOk);
    ASSERT_EQ(processor->setActive(true), kResultOk);
    EXPECT_EQ(controller->sampleRate(), 88200.0);
    ASSERT_EQ(processor->setActive(false), kResultOk);
}

// With no editor open the processor rests, however often it is connected and activated.
TEST_F(PlugEditorLink, RestsWithoutAnEditor)
{
    connect();
    ASSERT_EQ(processor->setActive(true), kResultOk);
    disconnect();
    connect();
    // A counted run of blocks paced as a host's audio thread, at least half a second in all: long
    // enough for the sender to pass on a frame had one been made. A busy machine can only make this
    // pass more easily, never fail it.
    int analysed = 0;
    for (int block = 0; block < 250; ++block)
    {
        analysed += playAndLook() && mFrame->transformSize > 0 ? 1 : 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(analysed, 0);
}

enum class Order
{
    EditorOpenedBeforeConnecting,
    NewProcessorAfterTheEditorOpened,
    ReconnectedAfterTheEditorOpened,
    ReinitialisedAndReconnected,
    ProcessorSideReconnectedAndActivated
};

class PlugEditorLinkOrder : public PlugEditorLink, public testing::WithParamInterface<Order>
{
};

TEST_P(PlugEditorLinkOrder, SpectrumShowsUntilTheLastEditorCloses)
{
    const bool openedFirst = GetParam() == Order::EditorOpenedBeforeConnecting;
    if (openedFirst)
        controller->editorOpened(editor());
    connect();
    if (!openedFirst)
        controller->editorOpened(editor());
    switch (GetParam())
    {
    case Order::EditorOpenedBeforeConnecting:
        break;
    case Order::NewProcessorAfterTheEditorOpened:
        disconnect();
        processor->terminate();
        processor = owned(new Velmoran::CPlug());
        ASSERT_EQ(processor->initialize(&host), kResultOk);
        connect();
        break;
    case Order::ReconnectedAfterTheEditorOpened:
        disconnect();
        connect();
        break;
    case Order::ReinitialisedAndReconnected:
        ASSERT_EQ(processor->terminate(), kResultOk);
        ASSERT_EQ(processor->initialize(&host), kResultOk);
        connect();
        break;
    case Order::ProcessorSideReconnectedAndActivated:
        ASSERT_EQ(processor->disconnect(controller), kResultOk);
        ASSERT_EQ(processor->connect(controller), kResultOk);
        ASSERT_EQ(processor->setActive(true), kResultOk);
        break;
    }
    // Playing on until the controller holds an analysed frame.
    ASSERT_TRUE(velmoran::test::waitFor([this] { return playAndLook() && mFrame->transformSize > 0; }));
    // The sine shows in frames of the analyser's rate and size; once the last editor closes, the
    // frame stays as it was while silence plays.
    const Velmoran::SpectrumFrame shown = frameAfterPlaying(1.0, 0.5);
    EXPECT_EQ(shown.sampleRate, 48000.0f);
    EXPECT_EQ(shown.transformSize, 4096);
    EXPECT_GT(*std::max_element(shown.magnitudes, shown.magnitudes + Velmoran::kAnalyserMagnitudeCount),
              0.05f);
    controller->editorClosed(editor());
    EXPECT_EQ(std::memcmp(&frameAfterPlaying(0.3, 0.0), &shown, sizeof(shown)), 0);
    ASSERT_EQ(processor->setActive(false), kResultOk);
}

INSTANTIATE_TEST_SUITE_P(EveryOrder, PlugEditorLinkOrder,
                         testing::Values(Order::EditorOpenedBeforeConnecting,
                                         Order::NewProcessorAfterTheEditorOpened,
                                         Order::ReconnectedAfterTheEditorOpened,
                                         Order::ReinitialisedAndReconnected,
                                         Order::ProcessorSideReconnectedAndActivated));

} // namespace
