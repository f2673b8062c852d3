#pragma once

#include "BiquadCoefficients.h"

namespace velmoran::dsp
{

// Linear magnitude of a biquad with a0 = 1 at omega radians per sample.
double BiquadMagnitude(double omega, double a1, double a2, double b0, double b1, double b2) noexcept;

// Linear magnitude of a designed section (a0 taken as 1) at omega radians per sample.
inline double BiquadMagnitude(double omega, const BiquadCoefficients& c) noexcept
{
    return BiquadMagnitude(omega, c.a1, c.a2, c.b0, c.b1, c.b2);
}

} // namespace velmoran::dsp
