#include "FftStepper.h"

#include "FftButterflies.h"

#include <algorithm>
#include <cmath>

#include <emmintrin.h>

namespace velmoran::dsp
{

namespace
{

// The stages that PlacePadded has already done.
constexpr int kFirstSpan = 4;

// AVX where the processor has it; the SSE2 kernel gives the same results everywhere else.
bool HasAvx() noexcept
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx");
}

} // namespace

unsigned ReverseBits(unsigned value, int bitCount) noexcept
{
    value = ((value >> 1) & 0x55555555u) | ((value & 0x55555555u) << 1);
    value = ((value >> 2) & 0x33333333u) | ((value & 0x33333333u) << 2);
    value = ((value >> 4) & 0x0F0F0F0Fu) | ((value & 0x0F0F0F0Fu) << 4);
    value = ((value >> 8) & 0x00FF00FFu) | ((value & 0x00FF00FFu) << 8);
    value = (value >> 16) | (value << 16);
    return value >> (32 - bitCount);
}

// Position p < N/4 has its two top bits clear, so its reversed index has the two lowest bits
// clear; the three padding positions sharing the other bits land just after it. The first two
// stages turn such a quadruple (v, 0, 0, 0) into (v, v, v, v).
void PlacePadded(double* real, double* imag, int log2Size, int position, double re, double im) noexcept
{
    const unsigned first =
        log2Size > 2 ? ReverseBits(static_cast<unsigned>(position), log2Size - 2) << 2 : 0u;
    const __m128d realPair = _mm_set1_pd(re);
    const __m128d imagPair = _mm_set1_pd(im);
    _mm_store_pd(real + first, realPair);
    _mm_store_pd(real + first + 2, realPair);
    _mm_store_pd(imag + first, imagPair);
    _mm_store_pd(imag + first + 2, imagPair);
}

TwiddleStep HalveTwiddleStep(TwiddleStep step) noexcept
{
    return {std::sqrt((1.0 + step.cos) / 2.0), -std::sqrt((1.0 - step.cos) / 2.0)};
}

TwiddleStep TwiddleStepForSpan(int span) noexcept
{
    TwiddleStep step;
    for (int halved = 1; halved < span; halved *= 2)
        step = HalveTwiddleStep(step);
    return step;
}

void TwiddlePair::setStep(TwiddleStep stageStep) noexcept
{
    step = stageStep;
    pairStep = {step.cos * step.cos - step.sin * step.sin, 2.0 * step.cos * step.sin};
    restart();
}

void TwiddlePair::restart() noexcept
{
    cosines[0] = 1.0;
    sines[0] = 0.0;
    cosines[1] = step.cos;
    sines[1] = step.sin;
}

void FftStepper::start(double* real, double* imag, int log2Size) noexcept
{
    mReal = real;
    mImag = imag;
    mSize = 1 << log2Size;
    mTwiddles.setStep(TwiddleStepForSpan(kFirstSpan));
    startStage(kFirstSpan);
}

void RunButterflyPairsSse2(double* real, double* imag, int span, int first, int count,
                           TwiddlePair& twiddles) noexcept
{
    ButterflyWalk walk(real, imag, span, first, twiddles);
    for (int i = 0; i < count; ++i)
    {
        walk.runPair();
    }
    walk.store(twiddles);
}

FftStepper::FftStepper() noexcept : mRunPairs(HasAvx() ? RunButterflyPairsAvx : RunButterflyPairsSse2) {}

int FftStepper::run(int pairBudget) noexcept
{
    while (pairBudget > 0 && !mDone)
    {
        const int count = std::min(pairBudget, mSize / 4 - mPair);
        mRunPairs(mReal, mImag, mSpan, mPair, count, mTwiddles);
        pairBudget -= count;
        mPair += count;
        if (mPair == mSize / 4)
        {
            mTwiddles.setStep(HalveTwiddleStep(mTwiddles.step));
            startStage(2 * mSpan);
        }
    }
    return mDone ? pairBudget : 0;
}

void FftStepper::startStage(int span) noexcept
{
    mSpan = span;
    mPair = 0;
    mDone = span >= mSize;
}

} // namespace velmoran::dsp
