// The two design entries: type dispatch, frequency clamp, Q re-mappings, low and high pass, and the
// band record the audio thread runs.

#include "dsp/FilterDesign.h"
#include "dsp/MatchedDesigns.h"
#include "support/FilterResponse.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <tuple>

namespace
{

using namespace velmoran::dsp;
using namespace velmoran::test;

constexpr float kFs = 48000.0f;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// The six outputs (a0 a1 a2 b0 b1 b2) of one call, pre-filled with values no design gives.
std::array<double, 6> Outputs(int type, float frequencyHz = 1000.0f, float gainDb = 6.0f, float q = 1.0f)
{
    std::array<double, 6> out{11.0, 12.0, 13.0, 14.0, 15.0, 16.0};
    DesignFilter(kFs, frequencyHz, gainDb, q, type, out[0], out[1], out[2], out[3], out[4], out[5]);
    return out;
}

// Codes 0 and 1 give exact unity whatever the settings; codes outside 2..11 write nothing.
TEST(DesignDispatch, PassThroughAndNoDesignCodes)
{
    const std::array<double, 6> unity{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
    for (int type : {0, 1})
        for (float hz : {20.0f, 1000.0f, 1e9f})
            for (float db : {-18.0f, 18.0f, kNaN})
                for (float q : {0.3f, 5.0f, 0.0f})
                    EXPECT_EQ(Outputs(type, hz, db, q), unity) << type << " " << hz << " " << db << " " << q;
    const std::array<double, 6> untouched{11.0, 12.0, 13.0, 14.0, 15.0, 16.0};
    for (int type : {12, 13, 15, 20, 21, 100, -1})
        EXPECT_EQ(Outputs(type), untouched) << type;
}

using DesignCode = ::testing::TestWithParam<int>;

TEST_P(DesignCode, ClampsTheFrequencyTo20HzAnd20kHzAndWritesAMonicDenominator)
{
    const int type = GetParam();
    EXPECT_TRUE(Identical(Design(type, 25000.0f, 6.0f, 1.0f, kFs), Design(type, 20000.0f, 6.0f, 1.0f, kFs)));
    EXPECT_TRUE(Identical(Design(type, 10.0f, 6.0f, 1.0f, kFs), Design(type, 20.0f, 6.0f, 1.0f, kFs)));
    EXPECT_TRUE(Identical(Design(type, -5.0f, 6.0f, 1.0f, kFs), Design(type, 20.0f, 6.0f, 1.0f, kFs)));
    EXPECT_EQ(Outputs(type)[0], 1.0);
}

INSTANTIATE_TEST_SUITE_P(Codes, DesignCode, ::testing::Range(2, 12));

TEST(ResonantQ, FollowsThePowerLawFromQControlToResonance)
{
    for (auto [q, resonance] : {std::make_tuple(0.3f, 0.7), std::make_tuple(5.0f, 1.4),
                                std::make_tuple(1.0f, 0.9417), std::make_tuple(0.707f, 0.8646)})
        EXPECT_NEAR(MapResonantQ(q), resonance, 5e-5) << q;
}

using ResonantDesign = ::testing::TestWithParam<int>;

TEST_P(ResonantDesign, ShelvesAndPassFiltersUseTheMappedResonance)
{
    const int type = GetParam();
    for (auto [q, resonance] : {std::make_tuple(0.3f, 0.7), std::make_tuple(5.0f, 1.4)})
    {
        const BiquadCoefficients expected =
            type == kTypeLowPass    ? DesignMatchedLowPass(kFs, 3000.0, resonance)
            : type == kTypeHighPass ? DesignMatchedHighPass(kFs, 3000.0, resonance)
                                    : DesignShelf(kFs, 3000.0, 9.0, resonance, type == kTypeHighShelf);
        EXPECT_LT(LargestDifferenceDb(Design(type, 3000.0f, 9.0f, q, kFs), expected, kFs), 1e-5) << q;
    }
}

INSTANTIATE_TEST_SUITE_P(Types, ResonantDesign,
                         ::testing::Values(kTypeLowShelf, kTypeHighShelf, kTypeLowPass, kTypeHighPass));

TEST(ResonantDesign, PeakingAndBandPassKeepTheirQ)
{
    EXPECT_TRUE(Identical(Design(kTypePeakHalfGain, 3000.0f, 9.0f, 0.3f, kFs),
                          DesignPeaking(kFs, 3000.0, 9.0, 0.3f)));
    EXPECT_TRUE(
        Identical(Design(kTypeBandPass, 3000.0f, 9.0f, 0.3f, kFs), DesignBandPass(kFs, 3000.0, 0.0, 0.3f)));
}

TEST(PeakingVariant, WithinSixDecibelsEveryVariantIsThePlainHalfGainPeak)
{
    for (int type : {3, 4, 5, 6})
        for (float gainDb : {6.0f, -6.0f, 3.0f, -2.0f, 0.5f})
            EXPECT_TRUE(Identical(Design(type, 1000.0f, gainDb, 1.0f, kFs),
                                  Design(kTypePeakHalfGain, 1000.0f, gainDb, 1.0f, kFs)))
                << type << " " << gainDb;
}

// type, gain in dB, gain expected at the lower band edge
using PeakingVariant = ::testing::TestWithParam<std::tuple<int, float, double>>;

// The lower band edge of a 1 kHz peak with Q 1 lies at (sqrt 5 - 1) / 2 kHz.
TEST_P(PeakingVariant, PutsTheBandEdgeThreeDecibelsFromThePeakOrFromUnity)
{
    const auto [type, gainDb, edgeDb] = GetParam();
    const double lowerEdgeHz = (std::sqrt(5.0) - 1.0) / 2.0 * 1000.0;
    EXPECT_NEAR(GainDbAt(Design(type, 1000.0f, gainDb, 1.0f, kFs), lowerEdgeHz, kFs), edgeDb, 0.02);
}

INSTANTIATE_TEST_SUITE_P(Gains, PeakingVariant,
                         ::testing::Values(std::make_tuple(2, 12.0f, 6.0), std::make_tuple(2, -12.0f, -6.0),
                                           std::make_tuple(3, 12.0f, 9.0), std::make_tuple(3, -12.0f, -9.0),
                                           std::make_tuple(3, 18.0f, 15.0), std::make_tuple(4, 12.0f, 3.0),
                                           std::make_tuple(4, -18.0f, -3.0), std::make_tuple(5, 12.0f, 9.0),
                                           std::make_tuple(5, -12.0f, -3.0), std::make_tuple(6, 12.0f, 3.0),
                                           std::make_tuple(6, -12.0f, -9.0), std::make_tuple(3, 6.5f, 3.5),
                                           std::make_tuple(3, 6.1f, 3.1), std::make_tuple(4, -9.0f, -3.0),
                                           std::make_tuple(4, -12.0f, -3.0)));

// type, frequency in Hz, Q control, sample rate
using PassFilter = ::testing::TestWithParam<std::tuple<int, float, float, float>>;

TEST_P(PassFilter, HasTheShapeOfASecondOrderPass)
{
    const auto [type, f, q, fs] = GetParam();
    const BiquadCoefficients c = Design(type, f, 0.0f, q, fs);
    EXPECT_TRUE(IsStable(c));
    if (type == kTypeLowPass)
    {
        EXPECT_EQ(c.b2, 0.0);
        EXPECT_NEAR(BiquadMagnitude(0.0, c), 1.0, 1e-12);
        EXPECT_LT(GainDbAt(c, 4.0 * f, fs), -20.0);
    }
    else
    {
        EXPECT_EQ(c.b0, c.b2);
        EXPECT_EQ(c.b1, -2.0 * c.b0);
        EXPECT_EQ(BiquadMagnitude(0.0, c), 0.0);
        EXPECT_LT(GainDbAt(c, f / 4.0, fs), -20.0);
    }
    // At the corner a second-order pass passes its resonance; a decade into the stop band it is
    // about 40 dB down.
    EXPECT_NEAR(GainAt(c, f, fs), MapResonantQ(q), 0.1 * MapResonantQ(q));
    if (f <= 1000.0f)
    {
        EXPECT_NEAR(GainDbAt(c, type == kTypeLowPass ? 10.0 * f : f / 10.0, fs), -40.0, 3.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, PassFilter,
                         ::testing::Combine(::testing::Values(9, 10),
                                            ::testing::Values(100.0f, 1000.0f, 4000.0f),
                                            ::testing::Values(0.3f, 1.0f, 5.0f),
                                            ::testing::Values(44100.0f, 48000.0f, 96000.0f)));

bool SameSection(const BiquadSection& x, const BiquadSection& y)
{
    return x.b0 == y.b0 && x.b1 == y.b1 && x.b2 == y.b2 && x.negA1 == y.negA1 && x.negA2 == y.negA2;
}

// The audio thread's entry writes b0, b1, b2, -a1, -a2 of the editor's design into both sets: the
// very coefficients, except for the peaks, whose gain it takes in double precision. The silence
// code and codes 12..99 zero both sets; unknown codes leave the record alone.
TEST(BandRecord, HoldsTheEditorsDesignInBothSets)
{
    for (int type = kTypeNone; type <= kTypeBandPass; ++type)
    {
        SCOPED_TRACE(type);
        BandFilter record;
        DesignBandFilter(record, 3000.0f, -7.5f, 2.0f, kFs, type);
        const BiquadCoefficients c = Design(type, 3000.0f, -7.5f, 2.0f, kFs);
        EXPECT_TRUE(SameSection(record.active, record.pending));
        if (type >= kTypePeakHalfGain && type <= kTypePeakInverse)
            EXPECT_LT(LargestDifferenceDb(DesignForBand(type, 3000.0f, -7.5f, 2.0f, kFs), c, kFs), 1e-6);
        else
            EXPECT_TRUE(SameSection(record.active, BiquadSection{c.b0, c.b1, c.b2, -c.a1, -c.a2}));
    }
    const BiquadSection kept{0.5, 0.25, 0.125, 0.1, 0.2};
    for (int type : {int{kTypeSilence}, 12, 20, 99, -1, 101, 1000})
    {
        BandFilter record;
        record.active = kept;
        record.pending = kept;
        DesignBandFilter(record, 1000.0f, 6.0f, 1.0f, kFs, type);
        const BiquadSection expected =
            type >= 12 && type <= kTypeSilence ? BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0} : kept;
        EXPECT_TRUE(SameSection(record.active, expected) && SameSection(record.pending, expected)) << type;
    }
}

} // namespace
