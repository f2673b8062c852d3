#pragma once

namespace velmoran::dsp
{

// One second-order section as the design functions give it: numerator b0..b2 and denominator a0..a2.
// Every design returns a0 = 1, so users may treat the denominator as monic.
struct BiquadCoefficients
{
    double b0 = 1.0;
    double b1 = 0.0;
    double b2 = 0.0;
    double a0 = 1.0;
    double a1 = 0.0;
    double a2 = 0.0;
};

} // namespace velmoran::dsp
