#include "dsp/SpectrumAnalyser.h"

#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace
{

using velmoran::dsp::SpectrumAnalyser;
using velmoran::testing::DirectDft;
using velmoran::testing::kPi;
using velmoran::testing::MakeSine;

constexpr int kBins = SpectrumAnalyser::kBinCount;

void Feed(SpectrumAnalyser& analyser, const std::vector<float>& signal)
{
    analyser.feed(signal.data(), static_cast<int>(signal.size()));
}

void FeedSilence(SpectrumAnalyser& analyser, std::size_t length)
{
    Feed(analyser, std::vector<float>(length, 0.0f));
}

double Peak(const SpectrumAnalyser& analyser)
{
    return *std::max_element(analyser.magnitudes(), analyser.magnitudes() + kBins);
}

struct Sizing
{
    float sampleRate;
    int size;
    int stepBudget;
};

using AnalyserTransformTest = ::testing::TestWithParam<Sizing>;

// One frame of noise (N/4 samples), windowed and zero-padded to the N-point transform the rate
// calls for, is shown from the start of the frame after next as its direct transform scaled by
// the frame length, one attack step up from the empty display.
TEST_P(AnalyserTransformTest, ShowsTheDirectTransformOfTheWindowedFrame)
{
    const auto [rate, size, stepBudget] = GetParam();
    SpectrumAnalyser analyser;
    analyser.setSampleRate(rate);
    ASSERT_EQ(analyser.size(), size);
    EXPECT_EQ(analyser.stepBudget(), stepBudget);
    const int frameLength = size / 4;
    std::mt19937 random(5);
    std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
    std::vector<float> signal(static_cast<std::size_t>(2 * frameLength + 1), 0.0f);
    std::vector<std::complex<double>> windowed;
    for (int i = 0; i < frameLength; ++i)
    {
        signal[static_cast<std::size_t>(i)] = noise(random);
        const double phase = 2.0 * kPi * i / (frameLength - 1);
        windowed.emplace_back(signal[static_cast<std::size_t>(i)] *
                              (0.35875 - 0.48829 * std::cos(phase) + 0.14128 * std::cos(2.0 * phase) -
                               0.01168 * std::cos(3.0 * phase)));
    }
    Feed(analyser, signal);
    const double attack = std::min(1.0, frameLength / (0.1 * rate));
    // A prime stride keeps the direct transform quick and still reaches bins of every kind.
    for (int bin = 0; bin < kBins; bin += 7)
    {
        const double expected =
            attack *
            std::abs(DirectDft(windowed, static_cast<std::size_t>(size), static_cast<std::size_t>(bin))) /
            frameLength;
        ASSERT_NEAR(analyser.magnitudes()[bin], expected, 1e-6 * expected) << "bin " << bin;
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, AnalyserTransformTest,
                         ::testing::Values(Sizing{22050.0f, 4096, 7}, Sizing{44100.0f, 4096, 7},
                                           Sizing{48000.0f, 4096, 7}, Sizing{88200.0f, 8192, 6},
                                           Sizing{96000.0f, 8192, 6}, Sizing{176400.0f, 16384, 6},
                                           Sizing{192000.0f, 16384, 6}, Sizing{384000.0f, 16384, 6}));

// Seconds from the first change of the bin until it has covered 63 % of the way to `finalLevel`.
double TimeConstantSeconds(SpectrumAnalyser& analyser, const std::vector<float>& signal, int bin,
                           double startLevel, double finalLevel)
{
    long firstChange = -1;
    for (std::size_t i = 0; i < signal.size(); ++i)
    {
        analyser.feed(&signal[i], 1);
        const double level = analyser.magnitudes()[bin];
        if (firstChange < 0 && level != startLevel)
            firstChange = static_cast<long>(i);
        if (std::fabs(level - finalLevel) <= std::fabs(startLevel - finalLevel) * std::exp(-1.0))
            return (static_cast<long>(i) - firstChange) / 48000.0;
    }
    return std::numeric_limits<double>::infinity();
}

// Bin k lies at k * rate / N; a sine of amplitude A there settles at half the window's mean
// (0.35875 A / 2), and forty bins away it is below the window's sidelobes. The display rises with
// the attack, falls with the release and decays to exactly zero in silence.
TEST(SpectrumAnalyserTest, SineAtBinCentreRisesSettlesAndFalls)
{
    SpectrumAnalyser analyser;
    const int bin = 200;
    const double frequency = bin * 48000.0 / 4096.0;
    // Whole frames, so the sine starts and stops at a frame boundary.
    const auto sine = MakeSine(frequency, 48000.0, 1024 * 150, 0.5);
    const double settled = 0.5 * 0.35875 / 2.0;

    const double rise = TimeConstantSeconds(analyser, sine, bin, 0.0, settled);
    EXPECT_GT(rise, 0.06);
    EXPECT_LT(rise, 0.14);

    SpectrumAnalyser settledAnalyser;
    Feed(settledAnalyser, sine);
    ASSERT_NEAR(settledAnalyser.magnitudes()[bin], settled, 1e-4);
    EXPECT_LT(settledAnalyser.magnitudes()[bin + 40], 0.5e-4);
    EXPECT_LT(settledAnalyser.magnitudes()[bin - 40], 0.5e-4);
    const std::vector<float> silence(48000 * 3, 0.0f);
    const double fall =
        TimeConstantSeconds(settledAnalyser, silence, bin, settledAnalyser.magnitudes()[bin], 0.0);
    EXPECT_GT(fall, 0.4);
    EXPECT_LT(fall, 0.6);
    FeedSilence(settledAnalyser, 48000 * 40);
    EXPECT_EQ(Peak(settledAnalyser), 0.0);
}

// Reset clears the display for good (the frame captured before it does not come back); a rate
// change from 48 to 96 kHz clears it too, and its bins then lie at the new rate's spacing.
TEST(SpectrumAnalyserTest, ResetAndRateChangeClearTheDisplay)
{
    SpectrumAnalyser analyser;
    Feed(analyser, MakeSine(3000.0, 48000.0, 24000));
    ASSERT_GT(Peak(analyser), 0.1);
    analyser.reset();
    EXPECT_EQ(Peak(analyser), 0.0);
    FeedSilence(analyser, 4096);
    EXPECT_EQ(Peak(analyser), 0.0);

    Feed(analyser, MakeSine(1000.0, 48000.0, 48000));
    ASSERT_GT(Peak(analyser), 0.1);
    analyser.setSampleRate(96000.0f);
    EXPECT_EQ(Peak(analyser), 0.0);
    // 1 kHz now lands at 96000 / 8192 Hz a bin.
    Feed(analyser, MakeSine(1000.0, 96000.0, 96000));
    const float* levels = analyser.magnitudes();
    const long peakBin = std::max_element(levels, levels + kBins) - levels;
    EXPECT_NEAR(static_cast<double>(peakBin), 1000.0 * 8192.0 / 96000.0, 1.0);
}

TEST(SpectrumAnalyserTest, NonFiniteSamplesLeaveTheDisplayFinite)
{
    SpectrumAnalyser analyser;
    auto signal = MakeSine(1000.0, 48000.0, 48000);
    signal[5000] = std::numeric_limits<float>::quiet_NaN();
    signal[9000] = std::numeric_limits<float>::infinity();
    signal[13000] = -std::numeric_limits<float>::infinity();
    Feed(analyser, signal);
    for (int bin = 0; bin < kBins; ++bin)
        ASSERT_TRUE(std::isfinite(analyser.magnitudes()[bin])) << "bin " << bin;
    EXPECT_GT(Peak(analyser), 0.1);
}

// A new analyser runs at 48 kHz with an empty display; rates that are no rates change nothing.
TEST(SpectrumAnalyserTest, StartsAt48KilohertzAndIgnoresNonsenseRates)
{
    const auto analyser = std::make_unique<SpectrumAnalyser>();
    EXPECT_EQ(analyser->sampleRate(), 48000.0f);
    EXPECT_EQ(analyser->size(), 4096);
    EXPECT_EQ(Peak(*analyser), 0.0);
    analyser->setSampleRate(96000.0f);
    for (float rate :
         {std::numeric_limits<float>::quiet_NaN(), -44100.0f, 0.0f, std::numeric_limits<float>::infinity()})
        analyser->setSampleRate(rate);
    EXPECT_EQ(analyser->sampleRate(), 96000.0f);
    EXPECT_EQ(analyser->size(), 8192);
}

} // namespace
