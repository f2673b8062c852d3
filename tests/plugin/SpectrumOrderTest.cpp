// The spectrum reaches an open editor whatever order a host creates, connects, activates and
// re-connects processor and controller in: the processor learns that an editor is open from the
// controller's connection and from each activation, not only from the first editor's opening.

#include "plugin/Plug.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ParameterChanges.h"
#include "sdk/hosting/ProcessBlock.h"

#include "support/Signals.h"
#include "support/WaitFor.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;

enum class Order
{
    EditorOpenedBeforeConnecting,
    NewProcessorAfterTheEditorOpened,
    ReconnectedAfterTheEditorOpened,
    ReinitialisedAndReconnected,
    ProcessorSideReconnectedAndActivated
};

class SpectrumOrder : public testing::TestWithParam<Order>
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(controller->initialize(&host), kResultOk);
        ASSERT_EQ(processor->initialize(&host), kResultOk);
    }
    void TearDown() override
    {
        controller->editorClosed(editor());
        processor->disconnect(controller);
        controller->disconnect(processor);
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

    // Plays one block of a 1 kHz sine with "FFT" on; true once the controller holds an analysed
    // frame.
    bool playAndLook()
    {
        auto fftOn = owned(new ParameterChanges());
        int32 index = 0;
        fftOn->addParameterData(Velmoran::kFftTag, index)->addPoint(0, 1.0, index);
        EXPECT_EQ(processBlock(processor, mInputs, mOutputs, kBlock, fftOn), kResultOk);
        return controller->copySpectrumFrame(*mFrame, mSeen) && mFrame->transformSize > 0;
    }
    bool spectrumArrives()
    {
        return velmoran::test::waitFor([this] { return playAndLook(); });
    }

    static constexpr int32 kBlock = 480;
    std::vector<std::vector<float>> mInputs{2, velmoran::testing::MakeSine(1000.0, 48000.0, kBlock, 0.5)};
    std::vector<std::vector<float>> mOutputs = mInputs;
    std::unique_ptr<Velmoran::SpectrumFrame> mFrame = Velmoran::makeSpectrumFrame();
    uint64_t mSeen = ~uint64_t{0};
    HostApplication host;
    IPtr<Velmoran::CPlug> processor = owned(new Velmoran::CPlug());
    IPtr<Velmoran::CPlugController> controller = owned(new Velmoran::CPlugController());

private:
    EditorStandIn mEditorStandIn;
};

TEST_P(SpectrumOrder, ShowsWhileAnEditorIsOpen)
{
    switch (GetParam())
    {
    case Order::EditorOpenedBeforeConnecting:
        controller->editorOpened(editor());
        connect();
        break;
    case Order::NewProcessorAfterTheEditorOpened:
        connect();
        controller->editorOpened(editor());
        disconnect();
        processor->terminate();
        processor = owned(new Velmoran::CPlug());
        ASSERT_EQ(processor->initialize(&host), kResultOk);
        connect();
        break;
    case Order::ReconnectedAfterTheEditorOpened:
        connect();
        controller->editorOpened(editor());
        disconnect();
        connect();
        break;
    case Order::ReinitialisedAndReconnected:
        connect();
        controller->editorOpened(editor());
        ASSERT_EQ(processor->terminate(), kResultOk);
        ASSERT_EQ(processor->initialize(&host), kResultOk);
        connect();
        break;
    case Order::ProcessorSideReconnectedAndActivated:
        connect();
        controller->editorOpened(editor());
        ASSERT_EQ(processor->disconnect(controller), kResultOk);
        ASSERT_EQ(processor->connect(controller), kResultOk);
        ASSERT_EQ(processor->setActive(true), kResultOk);
        break;
    }
    EXPECT_TRUE(spectrumArrives());
    ASSERT_EQ(processor->setActive(false), kResultOk);
}

INSTANTIATE_TEST_SUITE_P(EveryOrder, SpectrumOrder,
                         testing::Values(Order::EditorOpenedBeforeConnecting,
                                         Order::NewProcessorAfterTheEditorOpened,
                                         Order::ReconnectedAfterTheEditorOpened,
                                         Order::ReinitialisedAndReconnected,
                                         Order::ProcessorSideReconnectedAndActivated));

// With no editor open the processor rests, however often it is connected and activated.
TEST_F(SpectrumOrder, RestsWithoutAnEditor)
{
    connect();
    ASSERT_EQ(processor->setActive(true), kResultOk);
    disconnect();
    connect();
    // A counted run of blocks paced as a host's audio thread, at least half a second in all: long
    // enough for the sender to pass on a frame had one been made. A busy machine can only make this
    // pass more easily, never fail it.
    int frames = 0;
    for (int block = 0; block < 250; ++block)
    {
        frames += playAndLook() ? 1 : 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(frames, 0);
}

} // namespace
