// Every filter type at every sample rate a host may run, from 8 kHz to 384 kHz, with band
// frequencies from 20 Hz through Nyquist up to 20 kHz: the designs stay stable and bounded, follow
// their analogue prototypes where the band lies beyond Nyquist, the editor's curve is the sound's,
// and the engine's output stays finite while settings and the rate change under it.
#include "dsp/BandEngine.h"
#include "dsp/BeyondNyquistDesign.h"

#include "support/EngineRun.h"
#include "support/FilterResponse.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace velmoran::dsp;
using namespace velmoran::test;

constexpr float kRates[] = {8000.0f,  11025.0f, 16000.0f, 22050.0f,  24000.0f,  32000.0f, 44100.0f,
                            48000.0f, 88200.0f, 96000.0f, 176400.0f, 192000.0f, 384000.0f};
constexpr float kGainsDb[] = {-18.0f, 0.0f, 18.0f};
constexpr float kQs[] = {0.3f, 1.0f, 5.0f};
constexpr int kChunk = BandEngine::kMaxChunkLength;

// 20 Hz to 20 kHz in sixths of an octave, with Nyquist itself and its close neighbours where they fall
// inside that range.
std::vector<float> BandFrequencies(float rate)
{
    std::vector<float> frequencies;
    for (float hz = 20.0f; hz < 20000.0f; hz *= 1.122462f)
        frequencies.push_back(hz);
    frequencies.push_back(20000.0f);
    for (const float nearNyquist : {0.999f, 1.0f, 1.001f})
    {
        const float hz = 0.5f * rate * nearNyquist;
        if (hz <= 20000.0f)
            frequencies.push_back(hz);
    }
    return frequencies;
}

// The analogue curve each type is matched to, with the Q its design uses.
AnalogueResponse PrototypeOf(int type, float hz, float db, float q)
{
    const double clamped = std::clamp(hz, 20.0f, 20000.0f);
    if (type >= kTypePeakHalfGain && type <= kTypePeakInverse)
        return {type, clamped, std::pow(10.0, db * 0.05), CorrectPeakingQ(type, db, q)};
    if (type == kTypeBandPass)
        return {type, clamped, 1.0, q};
    return {type, clamped, std::pow(10.0, db / 20.0), MapResonantQ(q)};
}

// How closely a band beyond Nyquist follows its prototype (dB, where the prototype is above
// -30 dB). First-order sections cannot follow the resonant bump of a shelf or pass filter set to
// the highest Q right above Nyquist, hence the wider limit for those.
double BeyondNyquistToleranceDb(int type)
{
    return type <= kTypePeakInverse || type == kTypeLowPass ? 1.5 : 4.5;
}

std::string RateName(const testing::TestParamInfo<float>& info)
{
    return std::to_string(static_cast<int>(info.param)) + "Hz";
}

using SampleRateTable = testing::TestWithParam<float>;

TEST_P(SampleRateTable, DesignsAreStableBoundedAndFollowTheirPrototypesBeyondNyquist)
{
    const float rate = GetParam();
    const double nyquist = 0.5 * rate;
    for (int type = kTypePeakHalfGain; type <= kTypeBandPass; ++type)
        for (const float hz : BandFrequencies(rate))
            for (const float db : kGainsDb)
                for (const float q : kQs)
                {
                    SCOPED_TRACE(testing::Message()
                                 << "type " << type << ", " << hz << " Hz, " << db << " dB, Q " << q);
                    const BiquadCoefficients editor = Design(type, hz, db, q, rate);
                    ASSERT_TRUE(IsFinite(editor) && IsStable(editor));
                    // The audio thread designs the same filter as the editor draws.
                    const BiquadCoefficients audio = DesignForBand(type, hz, db, q, rate);
                    ASSERT_TRUE(IsFinite(audio) && IsStable(audio));

                    const AnalogueResponse prototype = PrototypeOf(type, hz, db, q);
                    const bool beyond = std::min(hz, 20000.0f) >= nyquist;
                    for (double at = 10.0; at < 0.97 * nyquist; at *= 1.25)
                    {
                        const double drawnDb = GainDbAt(editor, at, rate);
                        ASSERT_LE(drawnDb, 24.0) << "at " << at << " Hz";
                        ASSERT_NEAR(GainDbAt(audio, at, rate), drawnDb, 0.001) << "at " << at << " Hz";
                        const double analogueDb = 20.0 * std::log10(prototype.Magnitude(at));
                        if (beyond && analogueDb > -30.0)
                        {
                            ASSERT_NEAR(drawnDb, analogueDb, BeyondNyquistToleranceDb(type))
                                << "at " << at << " Hz";
                        }
                    }
                }
}

// Output gain of the engine with one band set up for a sine at probeHz, after the fades settle.
double EngineGainDb(float rate, int type, float hz, float db, float q, double probeHz)
{
    BandEngine engine;
    engine.setSampleRate(rate);
    velmoran::testing::SetBand(engine, 1, type, hz, db, q);
    engine.setEffectOn(true);
    const std::size_t settle = static_cast<std::size_t>(0.15 * rate);
    // Whole periods of the probe, so that the level reads true at any rate.
    const double periods = std::ceil(16384.0 * probeHz / rate);
    const std::size_t length = settle + static_cast<std::size_t>(std::lround(periods * rate / probeHz));
    const std::vector<float> input = velmoran::testing::MakeSine(probeHz, rate, length, 0.25);
    return velmoran::testing::GainDb(input, velmoran::testing::ProcessInChunks(engine, input).left, settle,
                                     length);
}

TEST_P(SampleRateTable, EnginePlaysTheCurveTheEditorDraws)
{
    const float rate = GetParam();
    for (int type = kTypePeakHalfGain; type <= kTypeBandPass; ++type)
        for (const float hz : {1000.0f, 16000.0f})
            for (const double probeHz : {100.0, 0.125 * rate, 0.4 * rate})
            {
                SCOPED_TRACE(testing::Message() << "type " << type << ", " << hz << " Hz, probe " << probeHz);
                const double drawnDb = GainDbAt(Design(type, hz, 12.0f, 1.0f, rate), probeHz, rate);
                if (drawnDb < -40.0)
                    continue; // deep in a stop band the sine's level is no measure of the curve
                EXPECT_NEAR(EngineGainDb(rate, type, hz, 12.0f, 1.0f, probeHz), drawnDb, 0.05);
            }
}

// Full-scale noise through ten bands, one of each type, whose settings jump every 20 chunks to new
// values through Nyquist and glide there; halfway through the host changes the sample rate.
TEST_P(SampleRateTable, OutputStaysFiniteAndBoundedWhileSettingsAndTheRateChange)
{
    const float rate = GetParam();
    const float otherRate = kRates[(std::find(std::begin(kRates), std::end(kRates), rate) - kRates + 5) % 13];
    std::mt19937 random(static_cast<unsigned>(rate));
    std::uniform_real_distribution<float> sample(-1.0f, 1.0f);
    const std::vector<float> frequencies = BandFrequencies(std::min(rate, otherRate));
    std::uniform_int_distribution<std::size_t> pickFrequency(0, frequencies.size() - 1);
    std::uniform_int_distribution<int> pickSetting(0, 2);

    BandEngine engine;
    engine.setSampleRate(rate);
    for (int band = 1; band <= BandEngine::kBandCount; ++band)
        engine.setBandType(band, kTypePeakHalfGain + band - 1);
    engine.setEffectOn(true);

    constexpr int kChunks = 1200;
    std::vector<float> left(kChunk), right(kChunk), outL(kChunk), outR(kChunk);
    float loudest = 0.0f;
    for (int chunk = 0; chunk < kChunks; ++chunk)
    {
        if (chunk % 20 == 0)
            for (int band = 1; band <= BandEngine::kBandCount; ++band)
            {
                engine.setBandFrequency(band, frequencies[pickFrequency(random)]);
                engine.setBandGain(band, kGainsDb[pickSetting(random)]);
                engine.setBandQ(band, kQs[pickSetting(random)]);
            }
        if (chunk == kChunks / 2)
            engine.setSampleRate(otherRate);
        std::generate(left.begin(), left.end(), [&] { return sample(random); });
        std::generate(right.begin(), right.end(), [&] { return sample(random); });
        engine.updateBlock(kChunk);
        engine.processChunk(left.data(), right.data(), outL.data(), outR.data(), kChunk);
        for (int i = 0; i < kChunk; ++i)
        {
            ASSERT_TRUE(std::isfinite(outL[i]) && std::isfinite(outR[i])) << "chunk " << chunk;
            loudest = std::max({loudest, std::fabs(outL[i]), std::fabs(outR[i])});
        }
    }
    // Ten bands of at most +18 dB each on full-scale noise; a runaway filter goes far beyond.
    EXPECT_LT(loudest, 1000.0f);
}

INSTANTIATE_TEST_SUITE_P(EveryRate, SampleRateTable, testing::ValuesIn(kRates), RateName);

// Rates no host offers still give finite sound: the effect switch, the polarity ramp and the
// glides all settle where a ramp would be shorter than a sample.
TEST(ExtremeRates, EffectAndPolaritySwitchingStayFinite)
{
    for (const float rate : {1.0f, 50.0f, 1.0e6f})
    {
        BandEngine engine;
        engine.setSampleRate(rate);
        engine.setBandType(1, kTypeHighShelf);
        engine.setBandGain(1, 18.0f);
        const std::vector<float> ones(kChunk, 1.0f);
        std::vector<float> left(kChunk), right(kChunk);
        for (int chunk = 0; chunk < 64; ++chunk)
        {
            engine.setEffectOn(chunk % 16 < 8);
            engine.setPolarityInverted(chunk % 4 < 2);
            engine.updateBlock(kChunk);
            engine.processChunk(ones.data(), ones.data(), left.data(), right.data(), kChunk);
            for (int i = 0; i < kChunk; ++i)
                ASSERT_TRUE(std::isfinite(left[i]) && std::fabs(left[i]) < 100.0f)
                    << rate << " Hz, chunk " << chunk << ": " << left[i];
        }
    }
}

} // namespace
