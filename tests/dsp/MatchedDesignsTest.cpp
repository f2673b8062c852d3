// The fitted peaking, shelf and band-pass designs, measured against their analogue prototypes.

#include "dsp/MatchedDesigns.h"
#include "dsp/AnaloguePrototypes.h"
#include "support/FilterResponse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace
{

using namespace velmoran::dsp;
using namespace velmoran::test;

// Largest difference in dB (by default from 20 Hz to 20 kHz) between a design and an analogue response.
template <typename Analogue>
double LargestDeviationDb(const BiquadCoefficients& c, double sampleRate, Analogue analogueGain,
                          double lowHz = 20.0, double highHz = 20000.0)
{
    double largest = 0.0;
    for (double hz : LogSpaced(lowHz, highHz, 400))
        largest =
            std::fmax(largest, std::fabs(GainDbAt(c, hz, sampleRate) - 20.0 * std::log10(analogueGain(hz))));
    return largest;
}

struct CoreCase
{
    double w0;
    double q;
    double peakGain;
};

using PeakingNyquistCore = ::testing::TestWithParam<CoreCase>;

TEST_P(PeakingNyquistCore, PutsUnityAtDcThePeakAtCentreAndTheAnalogueGainAtNyquist)
{
    const CoreCase p = GetParam();
    const double nyquistGain = AnaloguePeakingMagnitude(p.w0, p.peakGain, p.q, kPi);
    const double edgeGain = std::sqrt(nyquistGain * p.peakGain);
    const BiquadCoefficients c =
        DesignPeakingNyquist(p.w0, p.q, p.peakGain, 1.0, nyquistGain, edgeGain, std::sqrt(p.peakGain));
    EXPECT_EQ(c.a0, 1.0);
    EXPECT_NEAR(BiquadMagnitude(0.0, c), 1.0, 1e-9);
    EXPECT_NEAR(BiquadMagnitude(p.w0, c) / p.peakGain, 1.0, 1e-9);
    EXPECT_NEAR(BiquadMagnitude(kPi, c) / nyquistGain, 1.0, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Gains, PeakingNyquistCore,
                         ::testing::Values(CoreCase{0.13, 1.0, 3.98}, CoreCase{1.3, 2.0, 2.0},
                                           CoreCase{2.1, 0.7, 0.25}, CoreCase{0.01, 5.0, 7.9},
                                           CoreCase{2.8, 0.3, 0.126}));

// Impossible arguments give a finite pass-through.
TEST(PeakingNyquistCore, ImpossibleArgumentsGiveAHarmlessFilter)
{
    const BiquadCoefficients c = DesignPeakingNyquist(std::nan(""), 1.0, 4.0, 1.0, 2.0, 2.8, 2.0);
    EXPECT_TRUE(IsFinite(c));
    EXPECT_EQ(c.b0, 1.0);
    EXPECT_EQ(c.a1, 0.0);
}

// sampleRate, frequencyHz, gainDb, q
using PeakingCase = std::tuple<float, float, float, float>;

using PeakingFit = ::testing::TestWithParam<PeakingCase>;

TEST_P(PeakingFit, MeetsHalfTheGainInDecibelsAtTheLowerBandEdge)
{
    const auto [fs, f, gainDb, q] = GetParam();
    const BiquadCoefficients c = DesignPeaking(fs, f, gainDb, q);
    const double w0 = OmegaOf(f, fs);
    const double lowerEdge = (std::sqrt(4.0 * q * q + 1.0) - 1.0) / (2.0 * q) * w0;
    EXPECT_NEAR(BiquadMagnitude(lowerEdge, c) / std::sqrt(DbToGain(gainDb)), 1.0, 1e-4);
    EXPECT_NEAR(GainDbAt(c, f, fs), gainDb, 0.01);
    EXPECT_NEAR(BiquadMagnitude(0.0, c), 1.0, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Settings, PeakingFit,
                         ::testing::Values(PeakingCase{48000.0f, 1000.0f, 12.0f, 1.0f},
                                           PeakingCase{48000.0f, 1000.0f, -12.0f, 1.0f},
                                           PeakingCase{44100.0f, 100.0f, 18.0f, 5.0f},
                                           PeakingCase{44100.0f, 8000.0f, -18.0f, 0.3f},
                                           PeakingCase{96000.0f, 16000.0f, 12.0f, 2.0f},
                                           PeakingCase{44100.0f, 16000.0f, 12.0f, 1.0f}));

// A bilinear peak at 16 kHz and 44.1 kHz would lose most of its upper skirt; the matched one stays
// within a decibel and a half of the analogue response all the way to 20 kHz.
TEST(Peaking, FollowsTheAnaloguePrototypeUpToNyquist)
{
    const double gain = DbToGain(12.0);
    for (auto [fs, f, toleranceDb] :
         {std::make_tuple(48000.0, 1000.0, 0.03), std::make_tuple(44100.0, 16000.0, 1.5)})
    {
        const BiquadCoefficients c = DesignPeaking(fs, f, 12.0, 1.0);
        EXPECT_LT(
            LargestDeviationDb(c, fs, [&](double hz) { return AnaloguePeakingMagnitude(f, gain, 1.0, hz); }),
            toleranceDb)
            << f;
        if (f > 10000.0)
        {
            EXPECT_GT(20.0 * std::log10(NyquistGain(c)), 6.0);
        }
    }
}

// gainDb, whether a real filter is expected
using DeadBandCase = std::tuple<float, bool>;

using PeakingDeadBand = ::testing::TestWithParam<DeadBandCase>;

TEST_P(PeakingDeadBand, NearUnityGainsGiveExactUnityOnTheCutSideOnly)
{
    const auto [gainDb, filters] = GetParam();
    const BiquadCoefficients c = DesignPeaking(48000.0, 1000.0, gainDb, 1.0);
    EXPECT_EQ(Identical(c, BiquadCoefficients{}), !filters);
    EXPECT_NEAR(GainDbAt(c, 1000.0, 48000.0), filters ? gainDb : 0.0, 0.001);
}

INSTANTIATE_TEST_SUITE_P(Gains, PeakingDeadBand,
                         ::testing::Values(DeadBandCase{0.0f, false}, DeadBandCase{0.05f, false},
                                           DeadBandCase{0.1f, true}, DeadBandCase{-0.1f, false},
                                           DeadBandCase{-0.17f, false}, DeadBandCase{-0.2f, true}));

// sampleRate, frequencyHz, gainDb (boost), q
using ShelfCase = std::tuple<float, float, float, double>;

using Shelf = ::testing::TestWithParam<ShelfCase>;

// A low shelf has the exact gain at DC and the analogue gain at Nyquist; a high shelf is unity at DC
// and the gain over the low shelf's at Nyquist. Every cut is the exact reciprocal of its boost.
TEST_P(Shelf, EdgesMatchTheAnalogueAndCutsMirrorBoosts)
{
    const auto [fs, f, gainDb, q] = GetParam();
    const double gain = DbToGain(gainDb);
    const double lowNyquist = AnalogueLowShelfMagnitude(f, gain, q, fs / 2.0);
    for (bool high : {false, true})
    {
        SCOPED_TRACE(high ? "high" : "low");
        const BiquadCoefficients boost = DesignShelf(fs, f, gainDb, q, high);
        const BiquadCoefficients cut = DesignShelf(fs, f, -gainDb, q, high);
        const double dcGain = high ? 1.0 : gain;
        const double nyquistGain = high ? gain / lowNyquist : lowNyquist;
        EXPECT_TRUE(IsStable(boost) && IsStable(cut));
        EXPECT_NEAR(BiquadMagnitude(0.0, boost) / dcGain, 1.0, 1e-9);
        EXPECT_NEAR(NyquistGain(boost) / nyquistGain, 1.0, 1e-9);
        for (double hz : LogSpaced(10.0, 0.499 * fs, 100))
            EXPECT_NEAR(GainAt(boost, hz, fs) * GainAt(cut, hz, fs), 1.0, 1e-9) << hz;
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, Shelf,
                         ::testing::Values(ShelfCase{48000.0f, 1000.0f, 12.0f, 0.9417},
                                           ShelfCase{44100.0f, 100.0f, 18.0f, 0.7},
                                           ShelfCase{44100.0f, 16000.0f, 12.0f, 1.4},
                                           ShelfCase{96000.0f, 5000.0f, 3.0f, 1.0},
                                           ShelfCase{44100.0f, 20000.0f, 18.0f, 0.7}));

TEST(Shelf, FollowsTheAnaloguePrototypeAndIsUnityAtZeroDecibels)
{
    const double gain = DbToGain(12.0);
    for (bool high : {false, true})
    {
        const auto analogue = [&](double hz)
        {
            const double low = AnalogueLowShelfMagnitude(1000.0, gain, 0.9417, hz);
            return high ? gain / low : low;
        };
        EXPECT_LT(LargestDeviationDb(DesignShelf(48000.0, 1000.0, 12.0, 0.9417, high), 48000.0, analogue),
                  0.01);
        const BiquadCoefficients flat = DesignShelf(48000.0, 1000.0, 0.0, 1.0, high);
        EXPECT_LT(LargestDifferenceDb(flat, BiquadCoefficients{}, 48000.0), 1e-9);
    }
}

// sampleRate, frequencyHz, q
using BandPassCase = std::tuple<float, float, float>;

using BandPass = ::testing::TestWithParam<BandPassCase>;

TEST_P(BandPass, IsSilentAtDcAndPeaksAtTheGainArgumentOnTheCentre)
{
    const auto [fs, f, q] = GetParam();
    const BiquadCoefficients c = DesignBandPass(fs, f, 0.0, q);
    EXPECT_TRUE(IsStable(c));
    EXPECT_LT(BiquadMagnitude(0.0, c), 1e-9);
    EXPECT_NEAR(GainDbAt(c, f, fs), 0.0, 0.01);
    for (double hz : LogSpaced(10.0, 0.499 * fs, 200))
        EXPECT_LT(GainDbAt(c, hz, fs), 0.01) << hz;
    EXPECT_LT(GainDbAt(c, f / 16.0, fs), -12.0);
    EXPECT_NEAR(GainDbAt(DesignBandPass(fs, f, 6.0, q), f, fs), 6.0, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Settings, BandPass,
                         ::testing::Combine(::testing::Values(44100.0f, 96000.0f),
                                            ::testing::Values(20.0f, 1000.0f, 19000.0f),
                                            ::testing::Values(0.3f, 1.0f, 5.0f)));

TEST(BandPass, FollowsTheAnaloguePrototypeClosely)
{
    for (float q : {0.3f, 1.0f, 5.0f})
    {
        const BiquadCoefficients c = DesignBandPass(48000.0, 1000.0, 0.0, q);
        const auto analogue = [&](double hz) { return AnalogueBandPassMagnitude(1000.0, q, hz); };
        // Over the pass band within a few hundredths of a decibel; the upper stop band falls a
        // little faster than the analogue one as it nears Nyquist (about 1 dB lower at 20 kHz).
        EXPECT_LT(LargestDeviationDb(c, 48000.0, analogue, 500.0, 2000.0), 0.02) << q;
        EXPECT_LT(LargestDeviationDb(c, 48000.0, analogue), 1.1) << q;
    }
}

} // namespace
