// Audio through the loaded module against the band engine driven directly, sample for sample.

#include "PluginHost.h"

#include "dsp/BandEngine.h"
#include "plugin/PlugParameters.h"
#include "support/EngineRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

// The engine as a freshly made processor has set it up: 48 kHz, the default parameters, the
// input at unity although its stored value reads -0.06 dB.
void setUpAsNewProcessor(velmoran::dsp::BandEngine& engine)
{
    engine.setSampleRate(48000.0f);
    engine.setEffectOn(true);
    engine.setAnalyserOn(false);
    engine.setAnalyserSourceOutput(false);
    engine.setInputGainDb(0.0f);
    for (int band = 1; band <= Plug::kBandCount; ++band)
    {
        engine.setBandFrequency(band, Plug::bandFrequencyHz(Plug::defaultValue(Plug::frequencyTag(band))));
        engine.setBandGain(band, Plug::bandGainDb(Plug::defaultValue(Plug::gainTag(band))));
        engine.setBandQ(band, Plug::bandQ(Plug::defaultValue(Plug::qTag(band))));
        engine.setBandType(band, Plug::filterTypeCode(Plug::defaultValue(Plug::filterTypeTag(band))));
        engine.setBandEnabled(band, true);
        engine.setBandMode(band, 0);
    }
    engine.setOutputGainDb(Plug::ioGainDb(0.495f));
    engine.setPolarityInverted(false);
    engine.setSoloBand(0);
}

using PlugAudio = WithInstance<>;

TEST_F(PlugAudio, ModuleMatchesTheEngineSampleForSample)
{
    ProcessSetup setup{kRealtime, kSample32, 1024, 48000.0};
    ASSERT_EQ(plugin.processor->setupProcessing(setup), kResultOk);
    ASSERT_EQ(plugin.component->setActive(true), kResultOk);

    auto engine = std::make_unique<velmoran::dsp::BandEngine>();
    setUpAsNewProcessor(*engine);

    std::mt19937 random(4);
    std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
    // 150 is cut into 64, 64 and 22; the others try the edges of the chunking.
    const int blockSizes[] = {150, 1, 64, 0, 513, 37, 128, 150};
    int changedSamples = 0;
    for (size_t block = 0; block < std::size(blockSizes); ++block)
    {
        const int count = blockSizes[block];
        std::vector<std::vector<float>> input(2, std::vector<float>(static_cast<size_t>(count)));
        for (auto& channel : input)
            std::generate(channel.begin(), channel.end(), [&] { return noise(random); });
        std::vector<std::vector<float>> fromModule(2, std::vector<float>(static_cast<size_t>(count)));

        IPtr<ParameterChanges> changes;
        if (block == 0)
        {
            // Band 4 up by 12 dB at 2.5 kHz, output gain to 0 dB: the engine glides over the chunks.
            changes = changesOf({{Plug::gainTag(4), 30.0 / 36.0},
                                 {Plug::frequencyTag(4), 2480.0 / 19980.0},
                                 {Plug::kOutputGainTag, 0.5}});
            engine->setBandGain(4, Plug::bandGainDb(static_cast<float>(30.0 / 36.0)));
            engine->setBandFrequency(4, Plug::bandFrequencyHz(static_cast<float>(2480.0 / 19980.0)));
            engine->setOutputGainDb(Plug::ioGainDb(0.5f));
        }
        if (block == 4)
        {
            changes = changesOf({{Plug::kPolarityTag, 1.0}, {Plug::modeTag(4), 0.25}});
            engine->setPolarityInverted(true);
            engine->setBandMode(4, 1);
        }
        ASSERT_EQ(processBlock(plugin.processor, input, fromModule, count, changes), kResultOk);
        const velmoran::testing::Stereo stereo =
            velmoran::testing::ProcessInChunks(*engine, input[0], input[1]);
        for (int channel = 0; channel < 2; ++channel)
        {
            const std::vector<float>& fromEngine = channel == 0 ? stereo.left : stereo.right;
            for (int sample = 0; sample < count; ++sample)
            {
                changedSamples +=
                    std::fabs(fromModule[channel][sample] - input[channel][sample]) > 1e-3f ? 1 : 0;
                ASSERT_EQ(fromModule[channel][sample], fromEngine[sample])
                    << "block " << block << " channel " << channel << " sample " << sample;
            }
        }
    }
    EXPECT_GT(changedSamples, 1000) << "the settings should have changed the signal";
    EXPECT_EQ(plugin.component->setActive(false), kResultOk);
}

} // namespace
} // namespace velmoran::test
