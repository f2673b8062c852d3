#pragma once

#include "BiquadCoefficients.h"

namespace velmoran::dsp
{

// Linear magnitude at atHz of a band's analogue prototype (the curve a design is matched to).
struct AnalogueResponse
{
    int type;        // filter type code 2..11
    double centreHz; // the band's clamped frequency
    double gain;     // linear peak or shelf gain, >= 1 for a boost, < 1 for a cut (unused by the passes)
    double q;        // the Q the type's design uses (corrected peaking Q, resonance of shelves and passes)

    double Magnitude(double atHz) const noexcept;
};

// Section for a band whose frequency lies at or above the Nyquist frequency (fs in Hz), where no
// second-order design can place its corner. It keeps the part of the analogue curve that the band
// below Nyquist still reaches: first-order sections through the prototype's gains at DC and at
// Nyquist, with their corner where the prototype lies halfway between the two in dB (or 3 dB below
// the Nyquist gain when the prototype has a zero at DC); two equal sections in a row for the
// prototypes that change by 12 dB an octave, one for the band pass. A shelf out of reach becomes the slope of
// its curve that is in reach, a low pass out of reach passes everything up to its resonant rise, a peak out
// of reach becomes its lower skirt. The poles lie strictly inside the unit circle, so the section is stable
// whatever the settings.
BiquadCoefficients DesignBeyondNyquist(double fs, const AnalogueResponse& prototype) noexcept;

} // namespace velmoran::dsp
