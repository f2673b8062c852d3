#pragma once

#include <emmintrin.h>

namespace velmoran::dsp
{

// Reverses the lowest bitCount bits of value (bitCount 1..30).
unsigned ReverseBits(unsigned value, int bitCount) noexcept;

// Puts the complex value (re, im) at position 0 .. N/4 - 1 of a frame padded with zeros to
// N = 2^log2Size (log2Size >= 2) values, in the layout an FftStepper starts from: bit-reversed and
// already through the first two radix-2 stages. Three of every four inputs are padding, so those
// stages only copy the value into the four slots that follow its bit-reversed place. The arrays
// must be 16-byte aligned.
void PlacePadded(double* real, double* imag, int log2Size, int position, double re, double im) noexcept;

// A twiddle step w = exp(-j*pi/span) of a transform stage, as its cosine and (negative) sine.
struct TwiddleStep
{
    double cos = -1.0;
    double sin = 0.0;
};

// The step of twice the span, by the half-angle formulas: no trigonometric call.
TwiddleStep HalveTwiddleStep(TwiddleStep step) noexcept;

// The step of a stage of the given span (a power of two), halved down from the span of 1.
TwiddleStep TwiddleStepForSpan(int span) noexcept;

// Twiddle factors by recurrence for two neighbouring indices at once: (w^k, w^(k+1)), moved on by
// w^2 per pair. restart() goes back to k = 0.
struct TwiddlePair
{
    void setStep(TwiddleStep step) noexcept;
    void restart() noexcept;

    alignas(16) double cosines[2] = {1.0, 1.0};
    alignas(16) double sines[2] = {0.0, 0.0};
    TwiddleStep step;
    TwiddleStep pairStep; // w^2
};

// Moves a pair of twiddle factors on by the step (cos, sin) held in both lanes.
inline void AdvanceTwiddles(__m128d& cosines, __m128d& sines, __m128d stepCos, __m128d stepSin) noexcept
{
    const __m128d nextCos = _mm_sub_pd(_mm_mul_pd(cosines, stepCos), _mm_mul_pd(sines, stepSin));
    sines = _mm_add_pd(_mm_mul_pd(cosines, stepSin), _mm_mul_pd(sines, stepCos));
    cosines = nextCos;
}

// The forward transform (kernel exp(-j...)) of a four-times zero-padded frame laid out by
// PlacePadded, in place, by radix-2 decimation in time, run in portions so that it can be spread
// evenly over many audio samples. A portion is a count of butterfly pairs: two neighbouring
// butterflies of a stage done at once in SSE2 registers (two pairs at once in AVX where the
// processor has it, with the same results). Each stage walks its blocks in memory
// order; the twiddle factors come by recurrence, with no table and no trigonometric call.
class FftStepper
{
public:
    // Picks the butterfly kernel for this processor (AVX or SSE2, with identical results).
    FftStepper() noexcept;

    // Starts the transform of 2^log2Size complex values (log2Size 2 .. largestLog2Size) held in
    // real[] and imag[] (16-byte aligned); the result lands in natural order in the same arrays.
    void start(double* real, double* imag, int log2Size) noexcept;

    // Performs up to pairBudget butterfly pairs; returns the part of the budget left once the
    // transform is complete (0 while it is still running, all of it if it already was).
    int run(int pairBudget) noexcept;

    // Marks the transform as complete without touching the arrays.
    void stop() noexcept { mDone = true; }

    // True when no butterfly is left.
    bool finished() const noexcept { return mDone; }

    // Butterfly pairs of a whole transform of 2^log2Size values.
    static int PairCount(int log2Size) noexcept { return (log2Size - 2) << (log2Size - 2); }

private:
    void startStage(int span) noexcept;

    using PairKernel = void (*)(double*, double*, int, int, int, TwiddlePair&) noexcept;

    PairKernel mRunPairs;
    TwiddlePair mTwiddles; // of the next butterfly pair
    double* mReal = nullptr;
    double* mImag = nullptr;
    int mSize = 0;
    int mSpan = 0; // distance between the two inputs of a butterfly in this stage
    int mPair = 0; // next butterfly pair of the stage, counted in memory order
    bool mDone = true;
};

} // namespace velmoran::dsp
