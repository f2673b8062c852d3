#pragma once

// What the benchmarks measure against: pink noise, and the textbook loop of twenty
// double-precision direct-form-I biquads holding the ten peaking bands of both channels.

#include "dsp/BandFilter.h"
#include "dsp/FilterDesign.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace velmoran::bench
{

constexpr int kPeakType = 2;
constexpr int kBands = 10;

// Pink noise from white noise through Paul Kellet's three-pole approximation of a -3 dB/octave
// slope, about -14 dBFS RMS.
inline std::vector<float> PinkNoise(int length, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> white(-1.0, 1.0);
    std::vector<float> signal(static_cast<std::size_t>(length));
    double b0 = 0.0;
    double b1 = 0.0;
    double b2 = 0.0;
    for (float& sample : signal)
    {
        const double x = white(generator);
        b0 = 0.99765 * b0 + x * 0.0990460;
        b1 = 0.96300 * b1 + x * 0.2965164;
        b2 = 0.57000 * b2 + x * 1.0526913;
        sample = static_cast<float>((b0 + b1 + b2 + x * 0.1848) * 0.05);
    }
    return signal;
}

// Band 1..10 an octave apart from 31.25 Hz, alternately cut and boosted by 6 dB, Q 1.
inline float BandFrequency(int band)
{
    return 31.25f * std::pow(2.0f, static_cast<float>(band - 1));
}

inline float BandGain(int band)
{
    return band % 2 == 0 ? 6.0f : -6.0f;
}

struct ScalarBiquad
{
    double b0, b1, b2, negA1, negA2;
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;

    double run(double x) noexcept
    {
        const double y = b0 * x + b1 * x1 + b2 * x2 + negA1 * y1 + negA2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

// The textbook loop: per frame, the ten peaking filters of each channel, the two channels
// interleaved band by band; nothing else.
class ScalarTwentyBiquads
{
public:
    explicit ScalarTwentyBiquads(float sampleRate)
    {
        for (int band = 1; band <= kBands; ++band)
        {
            dsp::BandFilter record;
            dsp::DesignBandFilter(record, BandFrequency(band), BandGain(band), 1.0f, sampleRate, kPeakType);
            const auto& c = record.active;
            mFilters[static_cast<std::size_t>(band - 1)].fill(
                ScalarBiquad{c.b0, c.b1, c.b2, c.negA1, c.negA2});
        }
    }

    void run(const float* inLeft, const float* inRight, float* outLeft, float* outRight, int frames) noexcept
    {
        for (int i = 0; i < frames; ++i)
        {
            double left = inLeft[i];
            double right = inRight[i];
            for (auto& band : mFilters)
            {
                left = band[0].run(left);
                right = band[1].run(right);
            }
            outLeft[i] = static_cast<float>(left);
            outRight[i] = static_cast<float>(right);
        }
    }

private:
    std::array<std::array<ScalarBiquad, 2>, kBands> mFilters{};
};

} // namespace velmoran::bench
