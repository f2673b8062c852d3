#include "SampleQuantiser.h"

#include <algorithm>
#include <cmath>

namespace velmoran::render
{

SampleQuantiser::SampleQuantiser(int bits, Dither dither)
    : mStepsPerUnit(std::ldexp(1.0, bits - 1)), mShift(32 - bits), mDither(dither == Dither::tpdf)
{
}

double SampleQuantiser::nextUniform() noexcept
{
    // xorshift32: fast, and far longer than any file.
    mNoise ^= mNoise << 13;
    mNoise ^= mNoise >> 17;
    mNoise ^= mNoise << 5;
    return static_cast<double>(mNoise) / 4294967296.0;
}

int32_t SampleQuantiser::operator()(float sample) noexcept
{
    if (std::isnan(sample))
    {
        return 0;
    }
    // The sum of two uniform numbers is triangular over -1..1 step: it decorrelates the rounding
    // error from the signal, which truncation or plain rounding leave as distortion at low levels.
    const double noise = mDither ? nextUniform() - nextUniform() : 0.0;
    const double step = std::floor(static_cast<double>(sample) * mStepsPerUnit + noise + 0.5);
    const double clipped = std::clamp(step, -mStepsPerUnit, mStepsPerUnit - 1.0);
    return static_cast<int32_t>(static_cast<int64_t>(clipped) * (int64_t{1} << mShift));
}

} // namespace velmoran::render
