#pragma once

#include <cstddef>
#include <vector>

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

// The forward transform (kernel exp(-j...)) of a four-times zero-padded frame laid out by
// PlacePadded, in place, by radix-2 decimation in time, run in portions so that it can be spread
// evenly over many audio samples. A portion is a count of butterfly pairs: two neighbouring
// butterflies of a stage done at once in SSE2 registers. Each stage walks its blocks in memory
// order with its twiddle factors from a table made once, so no butterfly waits for a rotation or
// a trigonometric call.
class FftStepper
{
public:
    // Makes the twiddle table for transforms of up to 2^largestLog2Size values (allocates).
    explicit FftStepper(int largestLog2Size);

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

    // Twiddle factors cos(pi*k/span) and -sin(pi*k/span) for k < span, a power of two from 4 to
    // 2^(largestLog2Size - 1): the rotations exp(-j*2*pi*k/(2*span)).
    const double* twiddleCosines(int span) const noexcept
    {
        return &mTwiddleCos[static_cast<std::size_t>(span - 4)];
    }
    const double* twiddleSines(int span) const noexcept
    {
        return &mTwiddleSin[static_cast<std::size_t>(span - 4)];
    }

    // Butterfly pairs of a whole transform of 2^log2Size values.
    static int PairCount(int log2Size) noexcept { return (log2Size - 2) << (log2Size - 2); }

private:
    void startStage(int span) noexcept;

    // Twiddle factors of the stage of span h at offset h - 4: cos and -sin of pi*k/h, k < h.
    std::vector<double> mTwiddleCos;
    std::vector<double> mTwiddleSin;
    double* mReal = nullptr;
    double* mImag = nullptr;
    int mSize = 0;
    int mSpan = 0; // distance between the two inputs of a butterfly in this stage
    int mPair = 0; // next butterfly pair of the stage, counted in memory order
    bool mDone = true;
};

} // namespace velmoran::dsp
