#pragma once

#include "BandFilter.h"
#include "CrossFadeShape.h"

#include <emmintrin.h>

namespace velmoran::dsp
{

// One band's biquad for both channels side by side: lane 0 holds the first channel, lane 1 the
// second, so one SSE2 instruction takes the same double-precision step in both.
struct StereoBiquad
{
    __m128d b0 = _mm_set1_pd(1.0);
    __m128d b1 = _mm_setzero_pd();
    __m128d b2 = _mm_setzero_pd();
    __m128d negA1 = _mm_setzero_pd();
    __m128d negA2 = _mm_setzero_pd();
};

// Direct-form-I history of both channels: the last two inputs and the last two outputs.
struct StereoBiquadState
{
    __m128d x1 = _mm_setzero_pd();
    __m128d x2 = _mm_setzero_pd();
    __m128d y1 = _mm_setzero_pd();
    __m128d y2 = _mm_setzero_pd();
};

// One band of both channels: the running biquads and, while a coefficient change is being hidden,
// the pending biquads with their own history. Both channels are always redesigned together, so
// they share one cross-fade.
struct StereoBandFilter
{
    StereoBiquad active;
    StereoBiquadState activeState;
    StereoBiquad pending;
    StereoBiquadState pendingState;

    int fadeSamplesLeft = 0; // 0 = no cross-fade running
};

// True while the band is fading from its active to its pending biquads.
inline bool IsCrossFading(const StereoBandFilter& filter) noexcept
{
    return filter.fadeSamplesLeft > 0;
}

// Makes `first` and `second` the active biquads of the two channels at once, with empty histories
// and no fade.
void InstallSections(StereoBandFilter& filter, const BiquadSection& first,
                     const BiquadSection& second) noexcept;

// Makes the pending biquads active at once, with empty histories (a cut-short fade lands on the
// latest design).
void InstallPending(StereoBandFilter& filter) noexcept;

// Puts `first` and `second` in as the pending biquads and starts the cross-fade to them. The
// pending biquads start from the running ones' history (the same last inputs and outputs), so the
// new filter takes the signal up where the old one stands instead of ringing up from silence.
void StartCrossFade(StereoBandFilter& filter, const BiquadSection& first,
                    const BiquadSection& second) noexcept;

// The kernels below filter `signal` (one stereo frame per element, 1 .. 64 of them) in place on
// the audio thread. Each lane goes through exactly the double-precision operations of one scalar
// direct-form-I biquad, in the same order, so the results are those of a scalar filter bit for bit.

// `count` bands that are not fading, one after the other.
void RunBands(StereoBandFilter* const* filters, int count, __m128d* signal, int frameCount) noexcept;

// A fading band: old and new biquads mixed while the fade lasts, then the new ones alone if
// `keepsRunning`. A band fading out ends with its fade and forgets its history: it is not run
// while it is out, so when it comes back its filter starts from silence, not from a signal long
// gone.
void RunCrossFade(StereoBandFilter& filter, __m128d* signal, int frameCount, bool keepsRunning) noexcept;

} // namespace velmoran::dsp
