#include "BeyondNyquistDesign.h"

#include "AnaloguePrototypes.h"
#include "FilterDesign.h"

#include <cmath>

namespace velmoran::dsp
{
namespace
{

constexpr double kPi = 3.141592653589793;
// Enough halvings to place the corner far below a hundredth of a hertz at any rate.
constexpr int kCornerSearchSteps = 48;
// Prototypes whose in-reach part changes by less than this (in natural log of gain) are flat.
constexpr double kFlatLogGain = 1e-9;

double PassResonanceTerm(double x, double q) noexcept
{
    return std::sqrt((1.0 - x * x) * (1.0 - x * x) + (x / q) * (x / q));
}

// The band pass rises and falls by 6 dB an octave, every other prototype by 12 dB: one first-order
// section, or two equal ones in a row.
int FirstOrderSections(const AnalogueResponse& prototype) noexcept
{
    return prototype.type == kTypeBandPass ? 1 : 2;
}

// The curve each of the equal first-order sections follows, whose product stands in for the prototype.
double RootMagnitude(const AnalogueResponse& prototype, double atHz) noexcept
{
    const double magnitude = prototype.Magnitude(atHz);
    return FirstOrderSections(prototype) == 1 ? magnitude : std::sqrt(magnitude);
}

// Frequency in Hz below Nyquist where the root curve crosses level, searched between DC and
// Nyquist where it lies on either side of it.
double CrossingHz(const AnalogueResponse& prototype, double nyquistHz, double level,
                  bool risesToNyquist) noexcept
{
    double below = 0.0;
    double above = nyquistHz;
    for (int step = 0; step < kCornerSearchSteps; ++step)
    {
        const double middle = 0.5 * (below + above);
        const bool pastLevel = (RootMagnitude(prototype, middle) > level) == risesToNyquist;
        (pastLevel ? above : below) = middle;
    }
    return 0.5 * (below + above);
}

// First-order section (b0, b1, a1) with the gains dcGain at DC and nyquistGain at Nyquist that
// passes through level at phi = sin^2(w/2) of the corner.
BiquadCoefficients FirstOrderThrough(double dcGain, double nyquistGain, double level, double phi) noexcept
{
    // With rho = ((1 - a1) / (1 + a1))^2 the section's squared gain at phi is
    // (dc^2 (1 - phi) + nyq^2 rho phi) / ((1 - phi) + rho phi). The level lies strictly between
    // the two gains, so rho > 0 and |a1| < 1.
    const double rho =
        (1.0 - phi) * (level * level - dcGain * dcGain) / (phi * (nyquistGain * nyquistGain - level * level));
    const double root = std::sqrt(rho);
    BiquadCoefficients c;
    c.a1 = (1.0 - root) / (1.0 + root);
    c.b0 = 0.5 * (dcGain * (1.0 + c.a1) + nyquistGain * (1.0 - c.a1));
    c.b1 = 0.5 * (dcGain * (1.0 + c.a1) - nyquistGain * (1.0 - c.a1));
    return c;
}

BiquadCoefficients Squared(const BiquadCoefficients& firstOrder) noexcept
{
    BiquadCoefficients c;
    c.b0 = firstOrder.b0 * firstOrder.b0;
    c.b1 = 2.0 * firstOrder.b0 * firstOrder.b1;
    c.b2 = firstOrder.b1 * firstOrder.b1;
    c.a1 = 2.0 * firstOrder.a1;
    c.a2 = firstOrder.a1 * firstOrder.a1;
    return c;
}

} // namespace

double AnalogueResponse::Magnitude(double atHz) const noexcept
{
    const double x = atHz / centreHz;
    switch (type)
    {
    case kTypeLowShelf:
        return gain >= 1.0 ? AnalogueLowShelfMagnitude(centreHz, gain, q, atHz)
                           : 1.0 / AnalogueLowShelfMagnitude(centreHz, 1.0 / gain, q, atHz);
    case kTypeHighShelf:
        return gain >= 1.0 ? gain / AnalogueLowShelfMagnitude(centreHz, gain, q, atHz)
                           : gain * AnalogueLowShelfMagnitude(centreHz, 1.0 / gain, q, atHz);
    case kTypeLowPass:
        return 1.0 / PassResonanceTerm(x, q);
    case kTypeHighPass:
        return x * x / PassResonanceTerm(x, q);
    case kTypeBandPass:
        return AnalogueBandPassMagnitude(centreHz, q, atHz);
    default:
        return AnaloguePeakingMagnitude(centreHz, gain, q, atHz);
    }
}

BiquadCoefficients DesignBeyondNyquist(double fs, const AnalogueResponse& prototype) noexcept
{
    const double nyquistHz = 0.5 * fs;
    const double dcGain = RootMagnitude(prototype, 0.0);
    const double nyquistGain = RootMagnitude(prototype, nyquistHz);
    const bool zeroAtDc = !(dcGain > 0.0);
    const bool single = FirstOrderSections(prototype) == 1;
    if (!zeroAtDc && std::fabs(std::log(nyquistGain / dcGain)) < kFlatLogGain)
    {
        BiquadCoefficients flat;
        flat.b0 = single ? nyquistGain : nyquistGain * nyquistGain;
        return flat;
    }

    // Halfway in dB for a shelf-like slope; a prototype with a zero at DC gets the corner of a
    // high pass, 3 dB below its Nyquist gain in each section.
    const double level = zeroAtDc ? nyquistGain / std::sqrt(2.0) : std::sqrt(dcGain * nyquistGain);
    const double cornerHz = CrossingHz(prototype, nyquistHz, level, nyquistGain > dcGain);
    const double sine = std::sin(kPi * cornerHz / fs);
    const BiquadCoefficients section = FirstOrderThrough(dcGain, nyquistGain, level, sine * sine);
    return single ? section : Squared(section);
}

} // namespace velmoran::dsp
