#include "FftStepper.h"

#include <cmath>

namespace velmoran::dsp
{

unsigned ReverseBits(unsigned value, int bitCount) noexcept
{
    value = ((value >> 1) & 0x55555555u) | ((value & 0x55555555u) << 1);
    value = ((value >> 2) & 0x33333333u) | ((value & 0x33333333u) << 2);
    value = ((value >> 4) & 0x0F0F0F0Fu) | ((value & 0x0F0F0F0Fu) << 4);
    value = ((value >> 8) & 0x00FF00FFu) | ((value & 0x00FF00FFu) << 8);
    value = (value >> 16) | (value << 16);
    return value >> (32 - bitCount);
}

void FftStepper::start(double* real, double* imag, int log2Size, FftDirection direction) noexcept
{
    mReal = real;
    mImag = imag;
    mSize = 1 << log2Size;
    mSpan = 1;
    mGroup = 0;
    mPosition = 0;
    mTwiddleCos = 1.0;
    mTwiddleSin = 0.0;
    // The first stage's rotation is by half a turn; only its first twiddle (1) is ever used.
    mStepCos = -1.0;
    mStepSin = 0.0;
    mDirectionSign = direction == FftDirection::Forward ? -1.0 : 1.0;
    mDone = mSize < 2;
}

void FftStepper::advanceGroup() noexcept
{
    ++mGroup;
    if (mGroup < mSpan)
    {
        const double previousCos = mTwiddleCos;
        mTwiddleCos = previousCos * mStepCos - mTwiddleSin * mStepSin;
        mTwiddleSin = previousCos * mStepSin + mTwiddleSin * mStepCos;
        mPosition = mGroup;
        return;
    }
    mSpan *= 2;
    if (mSpan >= mSize)
    {
        mDone = true;
        return;
    }
    mGroup = 0;
    mPosition = 0;
    mTwiddleCos = 1.0;
    mTwiddleSin = 0.0;
    // Halve the rotation angle for the next stage, which has twice as many twiddle factors.
    const double previousStepCos = mStepCos;
    mStepCos = std::sqrt((1.0 + previousStepCos) * 0.5);
    mStepSin = mDirectionSign * std::sqrt((1.0 - previousStepCos) * 0.5);
}

} // namespace velmoran::dsp
