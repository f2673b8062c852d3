// The controller's one call that only its C++ class offers: the editor view tells it when the
// first editor opens and the last one closes, and the processor analyses the spectrum only in
// between, the frames reaching the controller. Processor and controller are compiled in and connected to each
// other as a host connects them.

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
#include <cstring>
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

    // Processes the given time of a 1 kHz sine of the given amplitude with "FFT" on, then gives
    // the header and the analyser's magnitudes of a frame the sender took after the last block.
    std::pair<std::pair<float, int32>, std::vector<float>> frameAfterProcessing(double seconds,
                                                                                double amplitude)
    {
        // Ten whole periods of 48 samples a block, so the blocks join without a step.
        std::vector<std::vector<float>> inputs(2,
                                               velmoran::testing::MakeSine(1000.0, 48000.0, 480, amplitude));
        std::vector<std::vector<float>> outputs = inputs;
        auto fftOn = owned(new ParameterChanges());
        int32 index = 0;
        fftOn->addParameterData(Velmoran::kFftTag, index)->addPoint(0, 1.0, index);
        for (int block = 0; block < static_cast<int>(seconds * 100); ++block)
            EXPECT_EQ(processBlock(processor, inputs, outputs, 480, fftOn), kResultOk);
        // The frame the controller holds now and the one on its way may have been taken before the
        // last block; the one after them was not.
        auto frame = Velmoran::makeSpectrumFrame();
        uint64_t seen = ~uint64_t{0};
        int changes = 0;
        EXPECT_TRUE(velmoran::test::waitFor(
            [&]
            {
                changes += controller->copySpectrumFrame(*frame, seen) ? 1 : 0;
                return changes == 3;
            }));
        return {{frame->sampleRate, frame->transformSize},
                {frame->magnitudes, frame->magnitudes + Velmoran::kAnalyserMagnitudeCount}};
    }

    HostApplication host;
    IPtr<Velmoran::CPlug> processor = owned(new Velmoran::CPlug());
    IPtr<Velmoran::CPlugController> controller = owned(new Velmoran::CPlugController());
};

// Without an editor the analyser rests and the frame stays as it was; once the first one opens, a
// 1 kHz sine shows within 0.3 s (three attack time constants) at 90 % of the level it settles at,
// and when the last one closes the frame rests again.
TEST_F(PlugEditorLink, ProcessorAnalysesOnlyWhileAnEditorIsOpen)
{
    const auto resting = frameAfterProcessing(0.5, 0.5);
    EXPECT_EQ(resting.first, std::make_pair(44100.0f, int32{0}));
    EXPECT_EQ(*std::max_element(resting.second.begin(), resting.second.end()), 0.0f);

    controller->setEditorOpen(true);
    const auto rising = frameAfterProcessing(0.3, 0.5);
    const auto settled = frameAfterProcessing(1.0, 0.5);
    EXPECT_EQ(settled.first, std::make_pair(48000.0f, int32{4096}));
    const auto peak = std::max_element(settled.second.begin(), settled.second.end()) - settled.second.begin();
    EXPECT_GT(settled.second[peak], 0.05f);
    EXPECT_GT(rising.second[peak], 0.9f * settled.second[peak]);

    controller->setEditorOpen(false);
    EXPECT_EQ(frameAfterProcessing(0.3, 0.0), settled);
}

// A frame up to the exchanged size is kept byte for byte (a shorter one over its own length), a
// larger one is dropped whole; "setActive" brings the rate; a binary message without "FFTData" is
// not the link's.
TEST(PlugEditorLinkAlone, ControllerKeepsFramesUpToItsSizeAndTakesTheRate)
{
    HostApplication host;
    IPtr<Velmoran::CPlugController> controller = owned(new Velmoran::CPlugController());
    ASSERT_EQ(controller->initialize(&host), kResultOk);
    std::vector<char> kept(sizeof(Velmoran::SpectrumFrame));
    auto frame = Velmoran::makeSpectrumFrame();
    std::memcpy(kept.data(), frame.get(), kept.size());
    uint64_t seen = ~uint64_t{0};
    ASSERT_TRUE(controller->copySpectrumFrame(*frame, seen));
    const struct
    {
        uint32 size;
        char fill;
        bool keeps;
    } cases[] = {{32776, 1, true}, {32777, 2, false}, {3, 3, true}};
    for (const auto& sent : cases)
    {
        SCOPED_TRACE(sent.size);
        const std::vector<char> bytes(sent.size, sent.fill);
        auto message = owned(new HostMessage());
        message->setMessageID("BinaryMessage");
        message->getAttributes()->setBinary("FFTData", bytes.data(), sent.size);
        EXPECT_EQ(controller->notify(message), kResultOk);
        if (sent.keeps)
            std::copy(bytes.begin(), bytes.end(), kept.begin());
        EXPECT_EQ(controller->copySpectrumFrame(*frame, seen), sent.keeps);
        EXPECT_EQ(std::memcmp(frame.get(), kept.data(), kept.size()), 0);
    }

    auto rate = owned(new HostMessage());
    rate->setMessageID("setActive");
    rate->getAttributes()->setFloat("sampleRate", 96000.0);
    EXPECT_EQ(controller->notify(rate), kResultOk);
    EXPECT_EQ(controller->sampleRate(), 96000.0);

    auto other = owned(new HostMessage());
    other->setMessageID("BinaryMessage");
    EXPECT_NE(controller->notify(other), kResultOk);
    EXPECT_EQ(controller->terminate(), kResultOk);
}

} // namespace
