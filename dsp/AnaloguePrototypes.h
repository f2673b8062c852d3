#pragma once

#include <cmath>

namespace velmoran::dsp
{

// Linear magnitude at atHz of the analogue peaking filter (s^2 + (A w0/q)s + w0^2) / (s^2 + (w0/(A q))s +
// w0^2) with A = sqrt(gain), centred on centreHz: the response the peaking designs are matched to.
inline double AnaloguePeakingMagnitude(double centreHz, double gain, double q, double atHz) noexcept
{
    const double a = std::sqrt(gain);
    const double w0 = centreHz;
    const double w = atHz;
    const double detune = (w0 * w0 - w * w) * (w0 * w0 - w * w);
    const double numeratorDamping = a * w0 * w / q;
    const double denominatorDamping = w0 * w / (a * q);
    return std::sqrt((detune + numeratorDamping * numeratorDamping) /
                     (detune + denominatorDamping * denominatorDamping));
}

// Linear magnitude at atHz of the analogue low shelf with the gain at DC, unity at high frequencies
// and sqrt(gain) at centreHz, of resonance q: the response both shelf designs are matched to (the
// high shelf is gain over it).
inline double AnalogueLowShelfMagnitude(double centreHz, double gain, double q, double atHz) noexcept
{
    const double w0 = centreHz / std::sqrt(std::sqrt(gain));
    const double w = atHz;
    const double numeratorDetune = gain * w0 * w0 - w * w;
    const double numeratorDamping = std::sqrt(gain) * w0 * w / q;
    const double denominatorDetune = w0 * w0 - w * w;
    const double denominatorDamping = w0 * w / q;
    return std::sqrt((numeratorDetune * numeratorDetune + numeratorDamping * numeratorDamping) /
                     (denominatorDetune * denominatorDetune + denominatorDamping * denominatorDamping));
}

// Linear magnitude at atHz of the analogue band pass (w0/q)s / (s^2 + (w0/q)s + w0^2) centred on
// centreHz: unity at the centre, the response the band-pass design is matched to.
inline double AnalogueBandPassMagnitude(double centreHz, double q, double atHz) noexcept
{
    const double w0 = centreHz;
    const double w = atHz;
    const double detune = (w0 * w0 - w * w) * (w0 * w0 - w * w);
    const double damping = w0 * w / q;
    return std::sqrt(damping * damping / (detune + damping * damping));
}

} // namespace velmoran::dsp
