// The two design entries: type dispatch, frequency clamp, Q re-mappings, low and high pass, and the
// band record the audio thread runs.

#include "dsp/FilterDesign.h"
#include "dsp/MatchedDesigns.h"
#include "support/FilterResponse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <tuple>

namespace
{

using namespace velmoran::dsp;
using namespace velmoran::test;

constexpr float kFs = 48000.0f;

// Six outputs pre-filled with values no design gives, to see which ones a call writes.
struct Outputs
{
    double a0 = 11.0, a1 = 12.0, a2 = 13.0, b0 = 14.0, b1 = 15.0, b2 = 16.0;

    void Design(float sampleRate, float frequencyHz, float gainDb, float q, int type)
    {
        DesignFilter(sampleRate, frequencyHz, gainDb, q, type, a0, a1, a2, b0, b1, b2);
    }
};

// ---- dispatch

class PassThroughCode : public ::testing::TestWithParam<std::tuple<int, float, float, float>>
{
};

TEST_P(PassThroughCode, IsExactUnityWhateverTheSettings)
{
    const auto [type, frequencyHz, gainDb, q] = GetParam();
    Outputs out;
    out.Design(kFs, frequencyHz, gainDb, q, type);
    EXPECT_EQ(out.a0, 1.0);
    EXPECT_EQ(out.a1, 0.0);
    EXPECT_EQ(out.a2, 0.0);
    EXPECT_EQ(out.b0, 1.0);
    EXPECT_EQ(out.b1, 0.0);
    EXPECT_EQ(out.b2, 0.0);
}

INSTANTIATE_TEST_SUITE_P(Settings, PassThroughCode,
                         ::testing::Combine(::testing::Values(0, 1), ::testing::Values(20.0f, 1000.0f, 1e9f),
                                            ::testing::Values(-18.0f, 18.0f,
                                                              std::numeric_limits<float>::quiet_NaN()),
                                            ::testing::Values(0.3f, 5.0f, 0.0f)));

class NoDesignCode : public ::testing::TestWithParam<int>
{
};

TEST_P(NoDesignCode, LeavesAllSixOutputsAsTheyWere)
{
    Outputs out;
    out.Design(kFs, 1000.0f, 6.0f, 1.0f, GetParam());
    EXPECT_EQ(out.a0, 11.0);
    EXPECT_EQ(out.a1, 12.0);
    EXPECT_EQ(out.a2, 13.0);
    EXPECT_EQ(out.b0, 14.0);
    EXPECT_EQ(out.b1, 15.0);
    EXPECT_EQ(out.b2, 16.0);
}

INSTANTIATE_TEST_SUITE_P(Codes, NoDesignCode, ::testing::Values(12, 13, 15, 20, 21, 100, -1));

class DesignCode : public ::testing::TestWithParam<int>
{
};

TEST_P(DesignCode, ClampsTheFrequencyTo20HzAnd20kHz)
{
    const int type = GetParam();
    EXPECT_TRUE(Identical(Design(type, 25000.0f, 6.0f, 1.0f, kFs), Design(type, 20000.0f, 6.0f, 1.0f, kFs)));
    EXPECT_TRUE(Identical(Design(type, 10.0f, 6.0f, 1.0f, kFs), Design(type, 20.0f, 6.0f, 1.0f, kFs)));
    EXPECT_TRUE(Identical(Design(type, -5.0f, 6.0f, 1.0f, kFs), Design(type, 20.0f, 6.0f, 1.0f, kFs)));
}

TEST_P(DesignCode, WritesAMonicDenominator)
{
    Outputs out;
    out.Design(kFs, 1000.0f, 6.0f, 1.0f, GetParam());
    EXPECT_EQ(out.a0, 1.0);
}

INSTANTIATE_TEST_SUITE_P(Codes, DesignCode, ::testing::Range(2, 12));

// ---- Q re-mapping of shelves and pass filters

class ResonantQ : public ::testing::TestWithParam<std::tuple<float, double>>
{
};

TEST_P(ResonantQ, FollowsThePowerLawFromQControlToResonance)
{
    const auto [q, resonance] = GetParam();
    EXPECT_NEAR(MapResonantQ(q), resonance, 5e-5);
}

INSTANTIATE_TEST_SUITE_P(Points, ResonantQ,
                         ::testing::Values(std::make_tuple(0.3f, 0.7), std::make_tuple(5.0f, 1.4),
                                           std::make_tuple(1.0f, 0.9417), std::make_tuple(0.707f, 0.8646)));

// type, Q control, the resonance the filter must be designed with
class ResonantDesign : public ::testing::TestWithParam<std::tuple<int, float, double>>
{
};

TEST_P(ResonantDesign, ShelvesAndPassFiltersUseTheMappedResonance)
{
    const auto [type, q, resonance] = GetParam();
    BiquadCoefficients expected;
    switch (type)
    {
    case kTypeLowShelf:
        expected = DesignShelf(kFs, 3000.0, 9.0, resonance, false);
        break;
    case kTypeHighShelf:
        expected = DesignShelf(kFs, 3000.0, 9.0, resonance, true);
        break;
    case kTypeLowPass:
        expected = DesignMatchedLowPass(kFs, 3000.0, resonance);
        break;
    default:
        expected = DesignMatchedHighPass(kFs, 3000.0, resonance);
        break;
    }
    EXPECT_LT(LargestDifferenceDb(Design(type, 3000.0f, 9.0f, q, kFs), expected, kFs), 1e-5);
}

INSTANTIATE_TEST_SUITE_P(Types, ResonantDesign,
                         ::testing::Values(std::make_tuple(7, 0.3f, 0.7), std::make_tuple(7, 5.0f, 1.4),
                                           std::make_tuple(8, 0.3f, 0.7), std::make_tuple(8, 5.0f, 1.4),
                                           std::make_tuple(9, 0.3f, 0.7), std::make_tuple(9, 5.0f, 1.4),
                                           std::make_tuple(10, 0.3f, 0.7), std::make_tuple(10, 5.0f, 1.4)));

TEST(ResonantDesign, PeakingAndBandPassKeepTheirQ)
{
    EXPECT_TRUE(Identical(Design(kTypePeakHalfGain, 3000.0f, 9.0f, 0.3f, kFs),
                          DesignPeaking(kFs, 3000.0, 9.0, 0.3f)));
    EXPECT_TRUE(
        Identical(Design(kTypeBandPass, 3000.0f, 9.0f, 0.3f, kFs), DesignBandPass(kFs, 3000.0, 0.0, 0.3f)));
}

// ---- peaking variants

// Gain in dB at the lower band edge of the requested Q of a 1 kHz peak, Q 1, 48 kHz.
double LowerEdgeGainDb(int type, float gainDb)
{
    const double lowerEdgeHz = (std::sqrt(5.0) - 1.0) / 2.0 * 1000.0;
    return GainDbAt(Design(type, 1000.0f, gainDb, 1.0f, kFs), lowerEdgeHz, kFs);
}

class PeakingWithinSixDecibels : public ::testing::TestWithParam<std::tuple<int, float>>
{
};

TEST_P(PeakingWithinSixDecibels, IsExactlyThePlainHalfGainPeak)
{
    const auto [type, gainDb] = GetParam();
    EXPECT_TRUE(Identical(Design(type, 1000.0f, gainDb, 1.0f, kFs),
                          Design(kTypePeakHalfGain, 1000.0f, gainDb, 1.0f, kFs)));
}

INSTANTIATE_TEST_SUITE_P(Gains, PeakingWithinSixDecibels,
                         ::testing::Combine(::testing::Values(3, 4, 5, 6),
                                            ::testing::Values(6.0f, -6.0f, 3.0f, -2.0f, 0.5f)));

// type, gain in dB, gain expected at the lower band edge
class PeakingVariant : public ::testing::TestWithParam<std::tuple<int, float, double>>
{
};

TEST_P(PeakingVariant, PutsTheBandEdgeThreeDecibelsFromThePeakOrFromUnity)
{
    const auto [type, gainDb, edgeDb] = GetParam();
    EXPECT_NEAR(LowerEdgeGainDb(type, gainDb), edgeDb, 0.02);
}

INSTANTIATE_TEST_SUITE_P(Gains, PeakingVariant,
                         ::testing::Values(std::make_tuple(2, 12.0f, 6.0), std::make_tuple(2, -12.0f, -6.0),
                                           std::make_tuple(3, 12.0f, 9.0), std::make_tuple(3, -12.0f, -9.0),
                                           std::make_tuple(3, 18.0f, 15.0), std::make_tuple(4, 12.0f, 3.0),
                                           std::make_tuple(4, -18.0f, -3.0), std::make_tuple(5, 12.0f, 9.0),
                                           std::make_tuple(5, -12.0f, -3.0), std::make_tuple(6, 12.0f, 3.0),
                                           std::make_tuple(6, -12.0f, -9.0), std::make_tuple(3, 6.5f, 3.5),
                                           std::make_tuple(4, -9.0f, -3.0)));

TEST(PeakingVariant, MinusThreeDecibelsJustAboveSixDecibelsScalesTheQ)
{
    const float gainDb = 6.1f;
    const double gain = std::pow(10.0, gainDb / 20.0);
    const double scaledQ = std::sqrt(gain) / std::sqrt(gain * gain - 2.0);
    const BiquadCoefficients corrected = Design(kTypePeakMinus3Db, 1000.0f, gainDb, 1.0f, kFs);
    EXPECT_LT(LargestDifferenceDb(corrected, DesignPeaking(kFs, 1000.0, gainDb, scaledQ), kFs), 1e-6);
    EXPECT_GT(LargestDifferenceDb(corrected, Design(kTypePeakHalfGain, 1000.0f, gainDb, 1.0f, kFs), kFs),
              0.01);
}

// type and gain of two variants that must share one Q correction
class PeakingPair : public ::testing::TestWithParam<std::tuple<int, float, int, float>>
{
};

TEST_P(PeakingPair, SharesTheSameCorrection)
{
    const auto [typeA, gainA, typeB, gainB] = GetParam();
    const BiquadCoefficients a = Design(typeA, 2000.0f, gainA, 1.5f, kFs);
    const BiquadCoefficients b = Design(typeB, 2000.0f, gainB, 1.5f, kFs);
    // A cut and a boost of equal size with the same Q mirror each other about 0 dB.
    const double sign = gainA * gainB < 0.0f ? -1.0 : 1.0;
    for (double hz : LogSpaced(20.0, 20000.0, 60))
        EXPECT_NEAR(GainDbAt(a, hz, kFs), sign * GainDbAt(b, hz, kFs), 1e-4) << hz;
}

INSTANTIATE_TEST_SUITE_P(
    Variants, PeakingPair,
    ::testing::Values(std::make_tuple(5, 12.0f, 6, -12.0f), std::make_tuple(5, -12.0f, 6, 12.0f),
                      std::make_tuple(5, 12.0f, 3, 12.0f), std::make_tuple(6, -12.0f, 3, -12.0f),
                      std::make_tuple(5, -12.0f, 4, -12.0f), std::make_tuple(6, 12.0f, 4, 12.0f),
                      std::make_tuple(3, 12.0f, 3, -12.0f), std::make_tuple(4, 12.0f, 4, -12.0f)));

// ---- low and high pass

// type, frequency in Hz, Q control, sample rate
class PassFilter : public ::testing::TestWithParam<std::tuple<int, float, float, float>>
{
};

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
    // At the corner a second-order pass passes its resonance.
    EXPECT_NEAR(GainAt(c, f, fs), MapResonantQ(q), 0.1 * MapResonantQ(q));
}

INSTANTIATE_TEST_SUITE_P(Settings, PassFilter,
                         ::testing::Combine(::testing::Values(9, 10),
                                            ::testing::Values(100.0f, 1000.0f, 4000.0f),
                                            ::testing::Values(0.3f, 1.0f, 5.0f),
                                            ::testing::Values(44100.0f, 48000.0f, 96000.0f)));

// ---- the audio thread's entry

BandFilter RecordWithHistory()
{
    BandFilter record;
    record.active = BiquadSection{0.5, 0.25, 0.125, 0.1, 0.2};
    record.pending = BiquadSection{0.4, 0.3, 0.2, 0.1, 0.05};
    record.activeState = BiquadState{1.0, 2.0, 3.0, 4.0};
    record.pendingState = BiquadState{5.0, 6.0, 7.0, 8.0};
    return record;
}

bool SameSection(const BiquadSection& x, const BiquadSection& y)
{
    return x.b0 == y.b0 && x.b1 == y.b1 && x.b2 == y.b2 && x.negA1 == y.negA1 && x.negA2 == y.negA2;
}

bool SameState(const BiquadState& x, const BiquadState& y)
{
    return x.x1 == y.x1 && x.x2 == y.x2 && x.y1 == y.y1 && x.y2 == y.y2;
}

class BandRecordCode : public ::testing::TestWithParam<int>
{
};

TEST_P(BandRecordCode, MatchesTheEditorsDesignInBothSets)
{
    const int type = GetParam();
    BandFilter record = RecordWithHistory();
    DesignBandFilter(record, 3000.0f, -7.5f, 2.0f, kFs, type);
    const BiquadCoefficients c = Design(type, 3000.0f, -7.5f, 2.0f, kFs);
    EXPECT_TRUE(SameSection(record.active, record.pending));
    EXPECT_TRUE(SameState(record.activeState, RecordWithHistory().activeState));
    EXPECT_LT(LargestDifferenceDb(DesignForBand(type, 3000.0f, -7.5f, 2.0f, kFs), c, kFs), 1e-6);
    if (type > kTypePeakInverse)
    {
        EXPECT_TRUE(SameSection(record.active, BiquadSection{c.b0, c.b1, c.b2, -c.a1, -c.a2}));
    }
}

INSTANTIATE_TEST_SUITE_P(Codes, BandRecordCode, ::testing::Range(0, 12));

TEST(BandRecord, SilenceCodeZeroesBothSets)
{
    BandFilter record = RecordWithHistory();
    DesignBandFilter(record, 1000.0f, 6.0f, 1.0f, kFs, kTypeSilence);
    EXPECT_TRUE(SameSection(record.active, BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0}));
    EXPECT_TRUE(SameSection(record.pending, BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0}));
}

class BandRecordClearingCode : public ::testing::TestWithParam<int>
{
};

TEST_P(BandRecordClearingCode, ClearsEveryCoefficientAndHistoryValue)
{
    BandFilter record = RecordWithHistory();
    DesignBandFilter(record, 1000.0f, 6.0f, 1.0f, kFs, GetParam());
    EXPECT_TRUE(SameSection(record.active, BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0}));
    EXPECT_TRUE(SameSection(record.pending, BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0}));
    EXPECT_TRUE(SameState(record.activeState, BiquadState{}));
    EXPECT_TRUE(SameState(record.pendingState, BiquadState{}));
}

INSTANTIATE_TEST_SUITE_P(Codes, BandRecordClearingCode, ::testing::Values(12, 20, 21, 50, 99));

TEST(BandRecord, UnknownCodesLeaveTheRecordAlone)
{
    for (int type : {-1, 101, 1000})
    {
        BandFilter record = RecordWithHistory();
        DesignBandFilter(record, 1000.0f, 6.0f, 1.0f, kFs, type);
        EXPECT_TRUE(SameSection(record.active, RecordWithHistory().active)) << type;
        EXPECT_TRUE(SameSection(record.pending, RecordWithHistory().pending)) << type;
        EXPECT_TRUE(SameState(record.pendingState, RecordWithHistory().pendingState)) << type;
    }
}

// ---- every setting a user can reach

// sample rate, type code, whether through the audio thread's entry
class EverySetting : public ::testing::TestWithParam<std::tuple<float, int, bool>>
{
};

TEST_P(EverySetting, GivesFiniteStableCoefficients)
{
    const auto [fs, type, forBand] = GetParam();
    int checked = 0;
    for (double f : LogSpaced(20.0, 20000.0, 31))
        for (float gainDb = -18.0f; gainDb <= 18.0f; gainDb += 3.0f)
            for (double q : LogSpaced(0.3, 5.0, 7))
            {
                const float fHz = static_cast<float>(f);
                const float qf = static_cast<float>(q);
                const BiquadCoefficients c =
                    forBand ? DesignForBand(type, fHz, gainDb, qf, fs) : Design(type, fHz, gainDb, qf, fs);
                ASSERT_TRUE(IsFinite(c)) << f << " Hz " << gainDb << " dB Q " << q;
                ASSERT_TRUE(IsStable(c)) << f << " Hz " << gainDb << " dB Q " << q;
                ++checked;
            }
    EXPECT_EQ(checked, 31 * 13 * 7);
}

INSTANTIATE_TEST_SUITE_P(Designs, EverySetting,
                         ::testing::Combine(::testing::Values(44100.0f, 48000.0f, 96000.0f),
                                            ::testing::Range(2, 12), ::testing::Bool()));

} // namespace
