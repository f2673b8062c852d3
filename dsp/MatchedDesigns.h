#pragma once

#include "BiquadCoefficients.h"

namespace velmoran::dsp
{

// Peaking-type section with a prescribed gain at the Nyquist frequency (all gains linear, w0 in
// radians per sample): peak gain, gain far from the centre, gain at Nyquist, gain at the band edge
// and the gain that converts q into a bandwidth. Gives unity for peak gains 0.98 .. 1.01.
BiquadCoefficients DesignPeakingNyquist(double w0, double q, double peakGain, double referenceGain,
                                        double nyquistGain, double edgeGain, double bandwidthGain) noexcept;

// Peaking filter (fs and f in Hz, gain in dB, the 0.05 dB step taken in single precision) whose
// lower band edge of q meets the analogue prototype at half the gain in dB.
BiquadCoefficients DesignPeaking(double fs, double f, double gainDb, double q) noexcept;

// The same peaking fit for a peak gain already given as a linear factor.
BiquadCoefficients DesignPeakingForGain(double fs, double f, double peakGain, double q) noexcept;

// Band pass of unity-order peak at f Hz (fs in Hz), fitted to the analogue band pass of q; the
// numerator is scaled by the gain in dB, a quarter at 0 dB.
BiquadCoefficients DesignBandPass(double fs, double f, double gainDb, double q) noexcept;

// Low shelf (high = false) or high shelf (high = true) of gainDb at f Hz (fs in Hz) with the
// resonance q, fitted to the analogue shelf; DC and Nyquist gains are exact.
BiquadCoefficients DesignShelf(double fs, double f, double gainDb, double q, bool high) noexcept;

} // namespace velmoran::dsp
