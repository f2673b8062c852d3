// The engine against the plain per-frame signal path it replaced: the same random signal and the
// same random automation through both, every output sample bit for bit the same, and the
// analyser's display the same to within rounding.
#include "ReferenceEngine.h"

#include "dsp/BandEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
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

// Calls the same setter with the same value on both engines.
struct BothEngines
{
    BandEngine& engine;
    ReferenceBandEngine& reference;

    template <typename Value>
    void set(void (BandEngine::*setter)(Value), void (ReferenceBandEngine::*same)(Value), Value value)
    {
        (engine.*setter)(value);
        (reference.*same)(value);
    }
    template <typename Value>
    void setBand(void (BandEngine::*setter)(int, Value), void (ReferenceBandEngine::*same)(int, Value),
                 int band, Value value)
    {
        (engine.*setter)(band, value);
        (reference.*same)(band, value);
    }
};

// One random change of the kind a host's automation or a user makes, with values as the processor
// forwards them (including the mode and solo values the engine ignores).
void ChangeSomething(BothEngines& both, std::mt19937& random)
{
    const auto uniform = [&](float low, float high)
    { return std::uniform_real_distribution<float>(low, high)(random); };
    const auto chance = [&](double p) { return std::bernoulli_distribution(p)(random); };
    const int band = std::uniform_int_distribution<int>(1, 10)(random);
    switch (std::uniform_int_distribution<int>(0, 14)(random))
    {
    case 0:
    case 1:
        return both.setBand(&BandEngine::setBandFrequency, &ReferenceBandEngine::setBandFrequency, band,
                            std::exp(uniform(std::log(20.0f), std::log(20000.0f))));
    case 2:
    case 3:
        return both.setBand(&BandEngine::setBandGain, &ReferenceBandEngine::setBandGain, band,
                            uniform(-18.0f, 18.0f));
    case 4:
        return both.setBand(&BandEngine::setBandQ, &ReferenceBandEngine::setBandQ, band, uniform(0.3f, 5.0f));
    case 5:
    case 6:
        return both.setBand(&BandEngine::setBandType, &ReferenceBandEngine::setBandType, band,
                            chance(0.9) ? std::uniform_int_distribution<int>(2, 11)(random)
                                        : std::uniform_int_distribution<int>(0, 20)(random));
    case 7:
        return both.setBand(&BandEngine::setBandEnabled, &ReferenceBandEngine::setBandEnabled, band,
                            chance(0.7));
    case 8:
        return both.setBand(&BandEngine::setBandMode, &ReferenceBandEngine::setBandMode, band,
                            std::uniform_int_distribution<int>(0, 4)(random));
    case 9:
        return both.set(&BandEngine::setSoloBand, &ReferenceBandEngine::setSoloBand,
                        chance(0.5) ? 0 : std::uniform_int_distribution<int>(0, 12)(random));
    case 10:
        return both.set(&BandEngine::setInputGainDb, &ReferenceBandEngine::setInputGainDb,
                        uniform(-6.0f, 6.0f));
    case 11:
        return both.set(&BandEngine::setOutputGainDb, &ReferenceBandEngine::setOutputGainDb,
                        uniform(-6.0f, 6.0f));
    case 12:
        return both.set(&BandEngine::setPolarityInverted, &ReferenceBandEngine::setPolarityInverted,
                        chance(0.5));
    case 13:
        return both.set(&BandEngine::setEffectOn, &ReferenceBandEngine::setEffectOn, chance(0.8));
    default:
        both.set(&BandEngine::setAnalyserOn, &ReferenceBandEngine::setAnalyserOn, chance(0.8));
        return both.set(&BandEngine::setAnalyserSourceOutput, &ReferenceBandEngine::setAnalyserSourceOutput,
                        chance(0.5));
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

std::uint32_t BitsOf(float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

using BandEngineIdentityTest = ::testing::TestWithParam<float>;

TEST_P(BandEngineIdentityTest, SameOutputBitForBitAndSameSpectrumUnderRandomAutomation)
{
    const float rate = GetParam();
    auto engine = std::make_unique<BandEngine>();
    auto reference = std::make_unique<ReferenceBandEngine>();
    BothEngines both{*engine, *reference};
    both.set(&BandEngine::setSampleRate, &ReferenceBandEngine::setSampleRate, rate);
    both.set(&BandEngine::setAnalyserOn, &ReferenceBandEngine::setAnalyserOn, true);
    both.set(&BandEngine::setEffectOn, &ReferenceBandEngine::setEffectOn, true);
    std::mt19937 random(static_cast<unsigned>(rate));
    std::vector<float> inL(64), inR(64), outL(64), outR(64), expectedL(64), expectedR(64);
    long checkedBins = 0;
    for (long frame = 0; frame < kFrames;)
    {
        for (int changes = std::poisson_distribution<int>(0.3)(random); changes > 0; --changes)
            ChangeSomething(both, random);
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
        reference->updateBlock(length);
        engine->processChunk(inL.data(), inR.data(), outL.data(), outR.data(), length);
        for (int i = 0; i < length; ++i)
        {
            reference->processFrame(inL[i], inR[i], expectedL[i], expectedR[i]);
            ASSERT_EQ(BitsOf(outL[i]), BitsOf(expectedL[i])) << "frame " << frame + i << ": " << outL[i];
            ASSERT_EQ(BitsOf(outR[i]), BitsOf(expectedR[i])) << "frame " << frame + i << ": " << outR[i];
        }
        const float* expected = reference->analyserMagnitudes();
        const double loudest = *std::max_element(expected, expected + kBins);
        for (int bin = 0; bin < kBins; ++bin)
        {
            // Relative, except for bins 200 dB below the loudest, where only the transforms'
            // rounding is left.
            ASSERT_LE(std::fabs(engine->analyserMagnitudes()[bin] - expected[bin]),
                      1e-6 * expected[bin] + 1e-10 * loudest)
                << "frame " << frame << " bin " << bin;
            checkedBins += expected[bin] > 1e-9 ? 1 : 0;
        }
        frame += length;
    }
    EXPECT_GT(checkedBins, 100L * kBins) << "the analyser should have shown something";
}

INSTANTIATE_TEST_SUITE_P(Rates, BandEngineIdentityTest,
                         ::testing::Values(44100.0f, 48000.0f, 96000.0f, 192000.0f));

} // namespace
