#pragma once

namespace velmoran::dsp
{

enum class FftDirection
{
    Forward, // exp(-j...) kernel, as the analyser uses it
    Inverse  // exp(+j...) kernel, unscaled
};

// Reverses the lowest bitCount bits of value (bitCount 1..30).
unsigned ReverseBits(unsigned value, int bitCount) noexcept;

// An in-place radix-2 decimation-in-time FFT over bit-reversed input that advances one butterfly
// per call, so a transform can be spread evenly over many audio samples. Twiddle factors come
// from a rotation recurrence; each stage's rotation is derived from the previous one by half-angle
// formulas, so no table and no trigonometric call is needed.
class FftStepper
{
public:
    // Starts a transform of 2^log2Size complex values held in real[] and imag[], which must
    // already be in bit-reversed order; the result lands in natural order in the same arrays.
    void start(double* real, double* imag, int log2Size, FftDirection direction) noexcept;

    // Performs one butterfly; true once the transform is complete (at once if it already was).
    bool step() noexcept
    {
        if (mDone)
        {
            return true;
        }
        const int first = mPosition;
        const int second = first + mSpan;
        const double rotatedReal = mTwiddleCos * mReal[second] - mTwiddleSin * mImag[second];
        const double rotatedImag = mTwiddleCos * mImag[second] + mTwiddleSin * mReal[second];
        mReal[second] = mReal[first] - rotatedReal;
        mImag[second] = mImag[first] - rotatedImag;
        mReal[first] += rotatedReal;
        mImag[first] += rotatedImag;
        mPosition += 2 * mSpan;
        if (mPosition >= mSize)
        {
            advanceGroup();
        }
        return mDone;
    }

    // Marks the transform as complete without touching the arrays.
    void stop() noexcept { mDone = true; }

    // True when no butterfly is left.
    bool finished() const noexcept { return mDone; }

private:
    void advanceGroup() noexcept;

    double* mReal = nullptr;
    double* mImag = nullptr;
    int mSize = 0;
    int mSpan = 1;     // distance between the two inputs of a butterfly in this stage
    int mGroup = 0;    // index of the twiddle factor within the stage
    int mPosition = 0; // first input of the next butterfly
    double mTwiddleCos = 1.0;
    double mTwiddleSin = 0.0;
    double mStepCos = -1.0;
    double mStepSin = 0.0;
    double mDirectionSign = -1.0;
    bool mDone = true;
};

} // namespace velmoran::dsp
