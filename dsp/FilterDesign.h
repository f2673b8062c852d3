#pragma once

#include "BandFilter.h"
#include "BiquadCoefficients.h"

namespace velmoran::dsp
{

// Filter type codes of a band. Codes 12..20 design nothing; the audio side uses kTypeSilence for a
// band that must output nothing.
enum FilterTypeCode : int
{
    kTypeNone = 0,
    kTypeNoFilter = 1,       // "No Filter"
    kTypePeakHalfGain = 2,   // "Pk dB/2"
    kTypePeakMinus3Db = 3,   // "Peak -3dB"
    kTypePeakPlus3Db = 4,    // "Peak +3dB"
    kTypePeakAsymmetric = 5, // "Peak Asym"
    kTypePeakInverse = 6,    // "Peak Inv"
    kTypeLowShelf = 7,       // "LF Shelf"
    kTypeHighShelf = 8,      // "HF Shelf"
    kTypeLowPass = 9,        // "Low Pass"
    kTypeHighPass = 10,      // "High Pass"
    kTypeBandPass = 11,      // "Band Pass"
    kTypeSilence = 100,
};

// Biquad of one band for the editor's curves: writes a0, a1, a2, b0, b1, b2 for type codes 0..11
// (frequency in Hz, gain in dB, sample rate in Hz) and leaves them untouched for any other code.
void DesignFilter(const float& sampleRate, float frequencyHz, float gainDb, float q, int type, double& a0,
                  double& a1, double& a2, double& b0, double& b1, double& b2) noexcept;

// Biquad of one band for the audio thread, written as b0, b1, b2, -a1, -a2 into both coefficient
// sets of the record (frequency in Hz, gain in dB, sample rate in Hz). Codes 0 and 1 give unity,
// 100 silence, 12..99 silence with every coefficient and history value cleared.
void DesignBandFilter(BandFilter& record, float frequencyHz, float gainDb, float q, const float& sampleRate,
                      int type) noexcept;

// Resonance of a shelf or pass filter for the band's Q control: 0.3 .. 5 maps to 0.7 .. 1.4 along a
// power law, values outside extrapolate along it.
double MapResonantQ(float q) noexcept;

// Q handed to the peaking design for the peaking codes 2..6 at gainDb: beyond ±6 dB the variants
// move the band edges to 3 dB from the peak or 3 dB from the unity line.
double CorrectPeakingQ(int type, float gainDb, float q) noexcept;

// Closed-form low pass at f Hz (fs in Hz) of resonance q, matched to the analogue response at Nyquist.
BiquadCoefficients DesignMatchedLowPass(double fs, double f, double q) noexcept;

// Closed-form high pass at f Hz (fs in Hz) of resonance q, matched to the analogue response at Nyquist.
BiquadCoefficients DesignMatchedHighPass(double fs, double f, double q) noexcept;

} // namespace velmoran::dsp
