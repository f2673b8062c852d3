#pragma once

// Helpers for measuring designed biquads the way a listener would: gain in dB at a frequency in Hz.

#include "dsp/BandFilter.h"
#include "dsp/BiquadMagnitude.h"
#include "dsp/FilterDesign.h"

#include <cmath>
#include <vector>

namespace velmoran::test
{

constexpr double kPi = 3.141592653589793;

// Coefficients of one band through the editor's design entry.
inline dsp::BiquadCoefficients Design(int type, float frequencyHz, float gainDb, float q, float sampleRate)
{
    dsp::BiquadCoefficients c;
    dsp::DesignFilter(sampleRate, frequencyHz, gainDb, q, type, c.a0, c.a1, c.a2, c.b0, c.b1, c.b2);
    return c;
}

// Coefficients of one band through the audio thread's design entry (its active set).
inline dsp::BiquadCoefficients DesignForBand(int type, float frequencyHz, float gainDb, float q,
                                             float sampleRate)
{
    dsp::BandFilter record;
    dsp::DesignBandFilter(record, frequencyHz, gainDb, q, sampleRate, type);
    dsp::BiquadCoefficients c;
    c.b0 = record.active.b0;
    c.b1 = record.active.b1;
    c.b2 = record.active.b2;
    c.a1 = -record.active.negA1;
    c.a2 = -record.active.negA2;
    return c;
}

inline double OmegaOf(double hz, double sampleRate)
{
    return 2.0 * kPi * hz / sampleRate;
}

inline double GainAt(const dsp::BiquadCoefficients& c, double hz, double sampleRate)
{
    return dsp::BiquadMagnitude(OmegaOf(hz, sampleRate), c);
}

inline double GainDbAt(const dsp::BiquadCoefficients& c, double hz, double sampleRate)
{
    return 20.0 * std::log10(GainAt(c, hz, sampleRate));
}

inline double NyquistGain(const dsp::BiquadCoefficients& c)
{
    return dsp::BiquadMagnitude(kPi, c);
}

inline double DbToGain(double db)
{
    return std::pow(10.0, db / 20.0);
}

// count frequencies from lowHz to highHz, evenly spaced on a log axis.
inline std::vector<double> LogSpaced(double lowHz, double highHz, int count)
{
    std::vector<double> hz;
    for (int i = 0; i < count; ++i)
        hz.push_back(lowHz * std::pow(highHz / lowHz, i / double(count - 1)));
    return hz;
}

// Largest difference in dB between two biquads' responses over a log sweep up to just below Nyquist.
inline double LargestDifferenceDb(const dsp::BiquadCoefficients& x, const dsp::BiquadCoefficients& y,
                                  double sampleRate)
{
    double largest = 0.0;
    for (double hz : LogSpaced(10.0, 0.499 * sampleRate, 300))
        largest = std::fmax(largest, std::fabs(GainDbAt(x, hz, sampleRate) - GainDbAt(y, hz, sampleRate)));
    return largest;
}

// Poles strictly inside the unit circle (a0 = 1).
inline bool IsStable(const dsp::BiquadCoefficients& c)
{
    return std::fabs(c.a2) < 1.0 && std::fabs(c.a1) < 1.0 + c.a2;
}

inline bool IsFinite(const dsp::BiquadCoefficients& c)
{
    return std::isfinite(c.b0) && std::isfinite(c.b1) && std::isfinite(c.b2) && std::isfinite(c.a0) &&
           std::isfinite(c.a1) && std::isfinite(c.a2);
}

// Bit-for-bit the same six coefficients.
inline bool Identical(const dsp::BiquadCoefficients& x, const dsp::BiquadCoefficients& y)
{
    return x.b0 == y.b0 && x.b1 == y.b1 && x.b2 == y.b2 && x.a0 == y.a0 && x.a1 == y.a1 && x.a2 == y.a2;
}

} // namespace velmoran::test
