// The magnitude evaluator against what a biquad actually does to a sine wave.

#include "support/FilterResponse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

namespace
{

using velmoran::dsp::BiquadCoefficients;
using velmoran::dsp::BiquadMagnitude;
using namespace velmoran::test;

constexpr float kSampleRate = 48000.0f;

// Runs one second of a unit sine (or of a constant at 0 Hz) through a direct-form-I biquad to settle
// it, then gives the amplitude of the next second by correlating with sine and cosine.
double MeasuredGain(const BiquadCoefficients& c, int hz)
{
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    double sineSum = 0.0, cosineSum = 0.0, dcSum = 0.0;
    const int length = static_cast<int>(kSampleRate);
    for (int n = 0; n < 2 * length; ++n)
    {
        const double phase = OmegaOf(hz, kSampleRate) * n;
        const double x = hz == 0 ? 1.0 : std::sin(phase);
        const double y = c.b0 * x + c.b1 * x1 + c.b2 * x2 - c.a1 * y1 - c.a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        if (n < length)
            continue;
        sineSum += y * std::sin(phase);
        cosineSum += y * std::cos(phase);
        dcSum += y;
    }
    if (hz == 0)
        return dcSum / length;
    return 2.0 * std::hypot(sineSum, cosineSum) / length;
}

struct Probe
{
    int type;
    float frequencyHz;
    float gainDb;
    float q;
    int probeHz;
};

using BiquadMagnitudeAgainstSignal = ::testing::TestWithParam<Probe>;

TEST_P(BiquadMagnitudeAgainstSignal, AgreesWithFilteredSineWithinATenthousandthOfADecibel)
{
    const Probe p = GetParam();
    const BiquadCoefficients c = Design(p.type, p.frequencyHz, p.gainDb, p.q, kSampleRate);
    const double predicted = BiquadMagnitude(OmegaOf(p.probeHz, kSampleRate), c);
    const double measured = std::fabs(MeasuredGain(c, p.probeHz));
    EXPECT_NEAR(20.0 * std::log10(predicted), 20.0 * std::log10(measured), 1e-4);
}

INSTANTIATE_TEST_SUITE_P(
    Designs, BiquadMagnitudeAgainstSignal,
    ::testing::Values(Probe{2, 1000.0f, 12.0f, 1.0f, 0}, Probe{2, 1000.0f, 12.0f, 1.0f, 1000},
                      Probe{2, 1000.0f, 12.0f, 1.0f, 618}, Probe{2, 5000.0f, -9.0f, 2.0f, 7000},
                      Probe{7, 200.0f, 12.0f, 1.0f, 0}, Probe{7, 200.0f, 12.0f, 1.0f, 150},
                      Probe{8, 8000.0f, -6.0f, 0.5f, 23000}, Probe{9, 2000.0f, 0.0f, 5.0f, 2000},
                      Probe{9, 2000.0f, 0.0f, 1.0f, 0}, Probe{10, 300.0f, 0.0f, 1.0f, 100},
                      Probe{11, 3000.0f, 0.0f, 2.0f, 3000}, Probe{11, 3000.0f, 0.0f, 2.0f, 500}));

TEST(BiquadMagnitude, UnityAndSilenceEverywhere)
{
    for (double omega : {0.0, 0.001, 1.0, 3.141592653589793})
    {
        EXPECT_DOUBLE_EQ(BiquadMagnitude(omega, 0.0, 0.0, 1.0, 0.0, 0.0), 1.0);
        EXPECT_DOUBLE_EQ(BiquadMagnitude(omega, 0.0, 0.0, 0.0, 0.0, 0.0), 0.0);
    }
}

} // namespace
