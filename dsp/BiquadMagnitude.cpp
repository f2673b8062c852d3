#include "BiquadMagnitude.h"

#include <cmath>

namespace velmoran::dsp
{

double BiquadMagnitude(double omega, double a1, double a2, double b0, double b1, double b2) noexcept
{
    // Written in s = sin^2(omega/2) rather than cos(omega) so that low frequencies, where
    // 1 - cos(omega) would cancel, keep their precision.
    const double sine = std::sin(omega / 2.0);
    const double s = sine * sine;
    const double c = 1.0 - s;
    const double numeratorSum = b0 + b1 + b2;
    const double numeratorAlternating = b0 - b1 + b2;
    const double denominatorSum = 1.0 + a1 + a2;
    const double denominatorAlternating = 1.0 - a1 + a2;
    const double numerator = numeratorAlternating * numeratorAlternating * s +
                             numeratorSum * numeratorSum * c - 16.0 * b0 * b2 * s * c;
    const double denominator = denominatorSum * denominatorSum * c +
                               denominatorAlternating * denominatorAlternating * s - 16.0 * a2 * s * c;
    return std::sqrt(numerator / denominator);
}

} // namespace velmoran::dsp
