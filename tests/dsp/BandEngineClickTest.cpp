// The click a step change of a setting leaves in a steady tone: a 1 kHz tone at -12 dBFS through a
// band at 1 kHz, the setting changed at once as a host's step automation does, and the output's
// peak above a split frequency in dB relative to the tone. Each case holds a stated limit at 44.1,
// 48 and 96 kHz; every figure is printed.
#include "dsp/BandEngine.h"
#include "dsp/FilterDesign.h"

#include "support/ClickMeter.h"
#include "support/EngineRun.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace velmoran::dsp;
using velmoran::testing::MakeSine;
using velmoran::testing::PeakAboveDb;
using velmoran::testing::ProcessInChunks;
using velmoran::testing::Stereo;

constexpr int kChunk = BandEngine::kMaxChunkLength;
constexpr int kBand = 1;
constexpr int kLeft = 1;
constexpr double kToneHz = 1000.0;
const double kToneAmplitude = std::pow(10.0, -12.0 / 20.0);
// Two octaves above the tone. The jump of the centre to 3 kHz is also measured above 8 kHz: a
// filter settling at a centre near 3 kHz rings there, with a bandwidth that reaches past 4 kHz,
// which is heard as the band's own resonance rather than as a click; an octave above the band's
// final centre only the broadband part, the click, is left.
constexpr double kSplitHz = 4000.0;
constexpr double kCentreSplitHz = 8000.0;

using Configure = velmoran::testing::EngineChange;

const Configure kNothing = [](BandEngine&) {};

struct ClickCase
{
    std::string name;
    Configure configure; // before switching in
    Configure prepare;   // once settled, before the tone
    Configure change;    // at a chunk boundary half a second into the tone
    double splitHz;
    double limitDb;
};

// The click of `c` at `rate` Hz, the louder of the two channels' figures (both carry the same
// signal, so a band in one channel only is heard against the unchanged other).
double MeasureClick(const ClickCase& c, float rate)
{
    auto engine = std::make_unique<BandEngine>();
    engine->setSampleRate(rate);
    c.configure(*engine);
    engine->setEffectOn(true);
    const std::vector<float> silence(static_cast<std::size_t>(rate / 2), 0.0f);
    ProcessInChunks(*engine, silence);
    ProcessInChunks(*engine, silence, 0, c.prepare);
    // Half a second of steady tone before the change, then three seconds for the longest glide.
    const std::size_t changeAt = static_cast<std::size_t>(rate / 2) / kChunk * kChunk;
    const auto tone = MakeSine(kToneHz, rate, changeAt + static_cast<std::size_t>(3 * rate), kToneAmplitude);
    const Stereo output = ProcessInChunks(*engine, tone, changeAt, c.change);
    return std::max(PeakAboveDb(output.left, changeAt, tone.size(), c.splitHz, rate, kToneAmplitude),
                    PeakAboveDb(output.right, changeAt, tone.size(), c.splitHz, rate, kToneAmplitude));
}

Configure Band(int type, float hz, float db, float q = 1.0f, int mode = 0)
{
    return [=](BandEngine& e) { velmoran::testing::SetBand(e, kBand, type, hz, db, q, mode); };
}

// One setting of the band, or of the whole engine.
template <typename Value>
Configure Set(void (BandEngine::*setter)(int, Value), std::common_type_t<Value> value)
{
    return [=](BandEngine& e) { (e.*setter)(kBand, value); };
}

template <typename Value> Configure Set(void (BandEngine::*setter)(Value), std::common_type_t<Value> value)
{
    return [=](BandEngine& e) { (e.*setter)(value); };
}

// Short names of the type codes for the case names.
std::string TypeName(int type)
{
    static const char* const names[] = {"None",  "NoFilter", "PkHalf",    "PkMinus3", "PkPlus3",  "PkAsym",
                                        "PkInv", "LowShelf", "HighShelf", "LowPass",  "HighPass", "BandPass"};
    return names[type];
}

// Limits in dB: 3 dB above the worst of the three rates, rounded up to a whole decibel, and at
// most -90 dB. The effect switch is a level fade with the dry signal that no filter history
// touches; it keeps its figure.
void Add(std::vector<ClickCase>& cases, const std::string& name, double limitDb, Configure configure,
         Configure prepare, Configure change, double splitHz = kSplitHz)
{
    cases.push_back({name, std::move(configure), std::move(prepare), std::move(change), splitHz, limitDb});
}

std::vector<ClickCase> MakeCases()
{
    using E = BandEngine;
    std::vector<ClickCase> cases;
    const Configure boost = Band(kTypePeakHalfGain, 1000.0f, 12.0f);
    const Configure leftBoost = Band(kTypePeakHalfGain, 1000.0f, 12.0f, 1.0f, kLeft);
    Add(cases, "NoChange", -130.0, boost, kNothing, kNothing);
    Add(cases, "GainPkHalf0To12", -129.0, Band(kTypePeakHalfGain, 1000.0f, 0.0f), kNothing,
        Set(&E::setBandGain, 12.0f));
    // Gain steps across the whole range on every type that has a gain: limits up, down.
    const double gainLimits[][2] = {{-123.0, -126.0}, {-124.0, -125.0}, {-123.0, -125.0}, {-124.0, -125.0},
                                    {-123.0, -125.0}, {-130.0, -131.0}, {-123.0, -125.0}};
    for (int type = kTypePeakHalfGain; type <= kTypeHighShelf; ++type)
    {
        const double* limit = gainLimits[type - kTypePeakHalfGain];
        Add(cases, "Gain" + TypeName(type) + "_Minus18To18", limit[0], Band(type, 1000.0f, -18.0f), kNothing,
            Set(&E::setBandGain, 18.0f));
        Add(cases, "Gain" + TypeName(type) + "_18ToMinus18", limit[1], Band(type, 1000.0f, 18.0f), kNothing,
            Set(&E::setBandGain, -18.0f));
    }
    Add(cases, "CentrePkHalf1kTo3k", -132.0, boost, kNothing, Set(&E::setBandFrequency, 3000.0f),
        kCentreSplitHz);
    Add(cases, "CentrePkHalf1kTo3kAbove4k", -130.0, boost, kNothing, Set(&E::setBandFrequency, 3000.0f));
    // The centre across the whole range, through the tone, on every type: limits up, down.
    const double centreLimits[][2] = {{-110.0, -119.0}, {-124.0, -130.0}, {-90.0, -101.0},  {-124.0, -130.0},
                                      {-90.0, -101.0},  {-122.0, -125.0}, {-122.0, -124.0}, {-134.0, -137.0},
                                      {-133.0, -136.0}, {-134.0, -143.0}};
    for (int type = kTypePeakHalfGain; type <= kTypeBandPass; ++type)
    {
        const double* limit = centreLimits[type - kTypePeakHalfGain];
        Add(cases, "Centre" + TypeName(type) + "_20To20k", limit[0], Band(type, 20.0f, 12.0f), kNothing,
            Set(&E::setBandFrequency, 20000.0f));
        Add(cases, "Centre" + TypeName(type) + "_20kTo20", limit[1], Band(type, 20000.0f, 12.0f), kNothing,
            Set(&E::setBandFrequency, 20.0f));
    }
    Add(cases, "QPkHalf1To5", -129.0, boost, kNothing, Set(&E::setBandQ, 5.0f));
    Add(cases, "QPkHalf5To0p3At2k", -130.0, Band(kTypePeakHalfGain, 2000.0f, 12.0f, 5.0f), kNothing,
        Set(&E::setBandQ, 0.3f));
    Add(cases, "QLowPass0p3To5", -136.0, Band(kTypeLowPass, 1000.0f, 0.0f, 0.3f), kNothing,
        Set(&E::setBandQ, 5.0f));
    Add(cases, "TypePkHalfToHighShelf", -126.0, boost, kNothing, Set(&E::setBandType, kTypeHighShelf));
    Add(cases, "TypePkHalfToLowPass", -128.0, boost, kNothing, Set(&E::setBandType, kTypeLowPass));
    Add(cases, "TypeLowPassToHighPass", -134.0, Band(kTypeLowPass, 1000.0f, 0.0f), kNothing,
        Set(&E::setBandType, kTypeHighPass));
    // A loud old output against a quiet new one, and the reverse.
    Add(cases, "TypeWidePkHalf18ToHighPass", -129.0, Band(kTypePeakHalfGain, 4000.0f, 18.0f, 0.3f), kNothing,
        Set(&E::setBandType, kTypeHighPass));
    Add(cases, "TypeHighPassToWidePkHalf18", -126.0, Band(kTypeHighPass, 4000.0f, 18.0f, 0.3f), kNothing,
        Set(&E::setBandType, kTypePeakHalfGain));
    Add(cases, "TypePkHalfToNone", -129.0, boost, kNothing, Set(&E::setBandType, kTypeNone));
    Add(cases, "TypeNoneToPkHalf", -128.0, Band(kTypeNone, 1000.0f, 12.0f), kNothing,
        Set(&E::setBandType, kTypePeakHalfGain));
    Add(cases, "BandOff", -129.0, boost, kNothing, Set(&E::setBandEnabled, false));
    Add(cases, "BandOn", -128.0, boost, Set(&E::setBandEnabled, false), Set(&E::setBandEnabled, true));
    Add(cases, "SoloOn", -128.0, boost, kNothing, Set(&E::setSoloBand, kBand));
    Add(cases, "SoloOff", -129.0, boost, Set(&E::setSoloBand, kBand), Set(&E::setSoloBand, 0));
    Add(cases, "SoloOffLeftOnly", -129.0, leftBoost, Set(&E::setSoloBand, kBand), Set(&E::setSoloBand, 0));
    Add(cases, "ModeStereoToLeft", -129.0, boost, kNothing, Set(&E::setBandMode, kLeft));
    Add(cases, "ModeLeftToStereo", -128.0, leftBoost, kNothing, Set(&E::setBandMode, 0));
    Add(cases, "EffectOff", -28.3, boost, kNothing, Set(&E::setEffectOn, false));
    Add(cases, "EffectOn", -28.3, boost, Set(&E::setEffectOn, false), Set(&E::setEffectOn, true));
    return cases;
}

constexpr float kRates[] = {44100.0f, 48000.0f, 96000.0f};

using ClickTest = ::testing::TestWithParam<std::tuple<ClickCase, float>>;

TEST_P(ClickTest, StaysBelowItsLimit)
{
    const ClickCase& c = std::get<0>(GetParam());
    const float rate = std::get<1>(GetParam());
    const double clickDb = MeasureClick(c, rate);
    // Every figure goes to the log, the ones within their limits too, for setting the limits anew.
    std::printf("%s at %.0f Hz: %.1f dB, limit %.1f dB\n", c.name.c_str(), rate, clickDb, c.limitDb);
    EXPECT_LE(clickDb, c.limitDb);
}

INSTANTIATE_TEST_SUITE_P(Steps, ClickTest,
                         ::testing::Combine(::testing::ValuesIn(MakeCases()), ::testing::ValuesIn(kRates)),
                         [](const ::testing::TestParamInfo<ClickTest::ParamType>& info) {
                             return std::get<0>(info.param).name + "_" +
                                    std::to_string(static_cast<int>(std::get<1>(info.param)));
                         });

} // namespace
