// The engine against the plain per-frame signal path it replaced, following the engine's decisions:
// random automation and a random signal, every output sample and the analyser's display bit for
// bit the same.
#include "ReferenceEngine.h"

#include "dsp/BandEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace
{

using velmoran::dsp::BandEngine;
using velmoran::testing::ReferenceBandEngine;

constexpr int kFrames = 480000;
constexpr int kBins = 2048;

// One random change of the kind a host's automation or a user makes, with values as the processor
// forwards them (including the mode and solo values the engine ignores).
void ChangeSomething(BandEngine& e, std::mt19937& random)
{
    const auto uniform = [&](float low, float high)
    { return std::uniform_real_distribution<float>(low, high)(random); };
    const auto chance = [&](double p) { return std::bernoulli_distribution(p)(random); };
    const auto integer = [&](int low, int high)
    { return std::uniform_int_distribution<int>(low, high)(random); };
    const int band = integer(1, 10);
    switch (integer(0, 14))
    {
    case 0:
    case 1:
        return e.setBandFrequency(band, std::exp(uniform(std::log(20.0f), std::log(20000.0f))));
    case 2:
    case 3:
        return e.setBandGain(band, uniform(-18.0f, 18.0f));
    case 4:
        return e.setBandQ(band, uniform(0.3f, 5.0f));
    case 5:
    case 6:
        return e.setBandType(band, chance(0.9) ? integer(2, 11) : integer(0, 20));
    case 7:
        return e.setBandEnabled(band, chance(0.7));
    case 8:
        return e.setBandMode(band, integer(0, 4));
    case 9:
        return e.setSoloBand(chance(0.5) ? 0 : integer(0, 12));
    case 10:
        return e.setInputGainDb(uniform(-6.0f, 6.0f));
    case 11:
        return e.setOutputGainDb(uniform(-6.0f, 6.0f));
    case 12:
        return e.setPolarityInverted(chance(0.5));
    case 13:
        return e.setEffectOn(chance(0.8));
    default:
        e.setAnalyserOn(chance(0.8));
        return e.setAnalyserSourceOutput(chance(0.5));
    }
}

// Noise with quiet and silent stretches and the odd sample that is no number or far too small.
float NextSample(std::mt19937& random, long frame)
{
    const long stretch = frame / 20000 % 6;
    const float level = stretch == 4 ? 1e-30f : (stretch == 5 ? 0.0f : 0.5f);
    const float sample = std::uniform_real_distribution<float>(-level, level)(random);
    switch (std::uniform_int_distribution<int>(0, 50000)(random))
    {
    case 0:
        return std::numeric_limits<float>::quiet_NaN();
    case 1:
        return std::numeric_limits<float>::infinity();
    case 2:
        return 1e-40f;
    default:
        return sample;
    }
}

using BandEngineIdentityTest = ::testing::TestWithParam<float>;

TEST_P(BandEngineIdentityTest, SameOutputBitForBitAndSameSpectrumUnderRandomAutomation)
{
    const float rate = GetParam();
    auto engine = std::make_unique<BandEngine>();
    auto reference = std::make_unique<ReferenceBandEngine>(*engine);
    engine->setSampleRate(rate);
    engine->setAnalyserOn(true);
    engine->setEffectOn(true);
    reference->setSampleRate(rate);
    std::mt19937 random(static_cast<unsigned>(rate));
    std::vector<float> inL(64), inR(64), outL(64), outR(64), expectedL(64), expectedR(64);
    long checkedBins = 0;
    for (long frame = 0; frame < kFrames;)
    {
        for (int changes = std::poisson_distribution<int>(0.3)(random); changes > 0; --changes)
            ChangeSomething(*engine, random);
        if (std::uniform_int_distribution<int>(0, 3000)(random) == 0)
        {
            engine->reset();
            reference->reset();
        }
        const int length = std::uniform_int_distribution<int>(0, 3)(random) == 0
                               ? std::uniform_int_distribution<int>(1, 64)(random)
                               : 64;
        for (int i = 0; i < length; ++i)
        {
            inL[i] = NextSample(random, frame + i);
            inR[i] = NextSample(random, frame + i);
        }
        engine->updateBlock(length);
        reference->updateBlock();
        engine->processChunk(inL.data(), inR.data(), outL.data(), outR.data(), length);
        reference->processChunk(inL.data(), inR.data(), expectedL.data(), expectedR.data(), length);
        const std::size_t bytes = sizeof(float) * static_cast<std::size_t>(length);
        ASSERT_EQ(std::memcmp(outL.data(), expectedL.data(), bytes), 0) << "chunk at frame " << frame;
        ASSERT_EQ(std::memcmp(outR.data(), expectedR.data(), bytes), 0) << "chunk at frame " << frame;
        const float* shown = reference->analyserMagnitudes();
        ASSERT_EQ(std::memcmp(engine->analyserMagnitudes(), shown, sizeof(float) * kBins), 0)
            << "display at frame " << frame;
        checkedBins += std::count_if(shown, shown + kBins, [](float level) { return level > 1e-9f; });
        frame += length;
    }
    EXPECT_GT(checkedBins, 100L * kBins) << "the analyser should have shown something";
}

INSTANTIATE_TEST_SUITE_P(Rates, BandEngineIdentityTest,
                         ::testing::Values(44100.0f, 48000.0f, 96000.0f, 192000.0f));

} // namespace
