// The controller's one call that only its C++ class offers: the editor view tells it when the
// first editor opens and the last one closes, and the processor analyses the spectrum only in
// between. Processor and controller are compiled in and connected to each other as a host
// connects them.

#include "plugin/Plug.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ParameterChanges.h"
#include "sdk/hosting/ProcessBlock.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
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
        ASSERT_EQ(processor->initialize(&host), kResultOk);
        ASSERT_EQ(controller->initialize(&host), kResultOk);
        ASSERT_EQ(processor->connect(controller), kResultOk);
        ASSERT_EQ(controller->connect(processor), kResultOk);
    }
    void TearDown() override
    {
        processor->disconnect(controller);
        controller->disconnect(processor);
        controller->terminate();
        processor->terminate();
    }

    // Processes a quarter of a second of a 1 kHz sine with "FFT" on, then gives the loudest bin
    // of the first frame the controller receives after that (0 if none arrives).
    float loudestBinAfterProcessing()
    {
        std::vector<std::vector<float>> inputs(2, std::vector<float>(480));
        for (auto& channel : inputs)
            for (size_t i = 0; i < channel.size(); ++i)
                channel[i] =
                    static_cast<float>(0.5 * std::sin(6.283185307179586 * static_cast<double>(i) / 48.0));
        std::vector<std::vector<float>> outputs = inputs;
        auto fftOn = owned(new ParameterChanges());
        int32 index = 0;
        fftOn->addParameterData(Velmoran::kFftTag, index)->addPoint(0, 1.0, index);
        for (int block = 0; block < 25; ++block)
            EXPECT_EQ(processBlock(processor, inputs, outputs, 480, fftOn), kResultOk);
        // Five sender periods, so that a frame posted wholly after the last block has arrived.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        auto frame = Velmoran::makeSpectrumFrame();
        uint64_t neverSeen = ~uint64_t{0};
        EXPECT_TRUE(controller->copySpectrumFrame(*frame, neverSeen));
        return *std::max_element(frame->magnitudes, frame->magnitudes + Velmoran::kAnalyserMagnitudeCount);
    }

    HostApplication host;
    IPtr<Velmoran::CPlug> processor = owned(new Velmoran::CPlug());
    IPtr<Velmoran::CPlugController> controller = owned(new Velmoran::CPlugController());
};

TEST_F(PlugEditorLink, ProcessorAnalysesOnlyWhileAnEditorIsOpen)
{
    EXPECT_EQ(loudestBinAfterProcessing(), 0.0f);
    controller->setEditorOpen(true);
    const float shown = loudestBinAfterProcessing();
    EXPECT_GT(shown, 0.05f);
    controller->setEditorOpen(false);
    EXPECT_EQ(loudestBinAfterProcessing(), shown);
}

// Without a processor at the other end the call has nowhere to go and does nothing.
TEST(PlugEditorLinkAlone, UnconnectedControllerTakesTheCall)
{
    HostApplication host;
    IPtr<Velmoran::CPlugController> controller = owned(new Velmoran::CPlugController());
    ASSERT_EQ(controller->initialize(&host), kResultOk);
    controller->setEditorOpen(true);
    controller->setEditorOpen(false);
    EXPECT_EQ(controller->terminate(), kResultOk);
}

} // namespace
