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
    // Time constants of 0.1 s rising and 0.5 s falling, as steps per frame.
    const double attack = std::min(1.0, frameLength / (0.1 * rate));
    const double release = std::min(1.0, frameLength / (0.5 * rate));
    std::vector<double> expected;
    // A prime stride keeps the direct transform quick and still reaches bins of every kind.
    for (std::size_t bin = 0; bin < kBins; bin += 7)
    {
        expected.push_back(attack * std::abs(DirectDft(windowed, static_cast<std::size_t>(size), bin)) /
                           frameLength);
        ASSERT_NEAR(analyser.magnitudes()[bin], expected.back(), 1e-6 * expected.back()) << "bin " << bin;
    }
    // The silent frame after it takes the display one release step down.
    FeedSilence(analyser, static_cast<std::size_t>(frameLength));
    for (std::size_t bin = 0; bin < kBins; bin += 7)
    {
        const double fallen = (1.0 - release) * expected[bin / 7];
        ASSERT_NEAR(analyser.magnitudes()[bin], fallen, 1e-6 * fallen) << "bin " << bin;
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, AnalyserTransformTest,
                         ::testing::Values(Sizing{22050.0f, 4096, 7}, Sizing{44100.0f, 4096, 7},
                                           Sizing{48000.0f, 4096, 7}, Sizing{88200.0f, 8192, 6},
                                           Sizing{96000.0f, 8192, 6}, Sizing{176400.0f, 16384, 6},
                                           Sizing{192000.0f, 16384, 6}, Sizing{384000.0f, 16384, 6}));

// Silence takes a sine's display down to exactly zero instead of leaving it in denormals.
TEST(SpectrumAnalyserTest, SilenceTakesTheDisplayToExactlyZero)
{
    SpectrumAnalyser analyser;
    Feed(analyser, MakeSine(1000.0, 48000.0, 48000));
    ASSERT_GT(Peak(analyser), 0.1);
    FeedSilence(analyser, 48000 * 40);
    EXPECT_EQ(Peak(analyser), 0.0);
}

// Reset clears the display for good (the frame captured before it does not come back); a rate
// change clears it too.
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
