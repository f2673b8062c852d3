#include "SpectrumAnalyser.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace velmoran::dsp
{

namespace
{

constexpr double kPi = 3.14159265358979323846;
constexpr double kFlushLevel = 1e-32;
constexpr double kAttackSeconds = 0.1;
constexpr double kReleaseSeconds = 0.5;

int Log2SizeForRate(float sampleRateHz) noexcept
{
    const int rateMultiple = static_cast<int>(sampleRateHz / 44100.0f + 0.5f);
    if (rateMultiple < 2)
    {
        return 12;
    }
    return rateMultiple < 3 ? 13 : 14;
}

// Smoothing coefficient per frame for the given time constant; capped at 1 so that very low
// rates jump straight to the new value instead of overshooting.
double FrameCoefficient(int frameLength, double seconds, float sampleRateHz) noexcept
{
    return std::min(1.0, frameLength / (seconds * sampleRateHz));
}

} // namespace

SpectrumAnalyser::SpectrumAnalyser()
    : mFillReal(kMaxSize), mFillImag(kMaxSize), mTransformReal(kMaxSize), mTransformImag(kMaxSize),
      mWindow(kMaxSize / 4)
{
    setSampleRate(48000.0f);
}

void SpectrumAnalyser::setSampleRate(float sampleRateHz) noexcept
{
    if (!(sampleRateHz > 0.0f) || !std::isfinite(sampleRateHz))
    {
        return;
    }
    mSampleRate = sampleRateHz;
    mLog2Size = Log2SizeForRate(sampleRateHz);
    const int size = 1 << mLog2Size;
    mFrameLength = size / 4;
    // Butterflies of the whole transform per sample of the padded frame, rounded.
    mStepBudget = static_cast<int>(static_cast<double>(size / 2 * mLog2Size) / size + 0.5);
    mAttack = FrameCoefficient(mFrameLength, kAttackSeconds, sampleRateHz);
    mRelease = FrameCoefficient(mFrameLength, kReleaseSeconds, sampleRateHz);
    // Four-term Blackman-Harris: sidelobes below -92 dB keep a loud bass from masking the treble.
    const double span = mFrameLength - 1;
    for (int i = 0; i < mFrameLength; ++i)
    {
        const double phase = 2.0 * kPi * i / span;
        mWindow[i] = 0.35875 - 0.48829 * std::cos(phase) + 0.14128 * std::cos(2.0 * phase) -
                     0.01168 * std::cos(3.0 * phase);
    }
    reset();
}

void SpectrumAnalyser::reset() noexcept
{
    mMagnitudes.fill(0.0f);
    const int size = 1 << mLog2Size;
    // Both pairs, so neither a finished transform nor a half-captured frame from before comes back.
    for (std::vector<double>* buffer : {&mFillReal, &mFillImag, &mTransformReal, &mTransformImag})
    {
        std::fill(buffer->begin(), buffer->begin() + size, 0.0);
    }
    mStepper.stop();
    mWritePosition = 0;
}

void SpectrumAnalyser::feed(float sample) noexcept
{
    // An overflowing output must not leave the display stuck at infinity or NaN.
    const double value = std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
    if (mWritePosition == 0)
    {
        finishFrame();
    }
    const unsigned reversed = ReverseBits(static_cast<unsigned>(mWritePosition), mLog2Size);
    mFillReal[reversed] = value * mWindow[mWritePosition];
    mFillImag[reversed] = 0.0;
    runSteps();
    // Positions pos + M, pos + 2M and pos + 3M differ from pos only in the two top bits, so their
    // reversed indices differ from pos's only in the two lowest bits: 2, 1 and 3.
    static constexpr std::array<unsigned, 3> kPaddingLowBits{2u, 1u, 3u};
    for (const unsigned lowBits : kPaddingLowBits)
    {
        mFillReal[reversed | lowBits] = 0.0;
        mFillImag[reversed | lowBits] = 0.0;
        runSteps();
    }
    ++mWritePosition;
    if (mWritePosition == mFrameLength)
    {
        mWritePosition = 0;
    }
}

void SpectrumAnalyser::finishFrame() noexcept
{
    const double scale = 1.0 / mFrameLength;
    for (int bin = 0; bin < kBinCount; ++bin)
    {
        const double level =
            std::sqrt(mTransformReal[bin] * mTransformReal[bin] + mTransformImag[bin] * mTransformImag[bin]) *
            scale;
        const double smoothed = mMagnitudes[bin];
        const double difference = level - smoothed;
        double next = smoothed + (difference > 0.0 ? mAttack : mRelease) * difference;
        if (std::fabs(next) < kFlushLevel)
        {
            next = 0.0;
        }
        mMagnitudes[bin] = static_cast<float>(next);
    }
    mFillReal.swap(mTransformReal);
    mFillImag.swap(mTransformImag);
    mStepper.start(mTransformReal.data(), mTransformImag.data(), mLog2Size, FftDirection::Forward);
}

void SpectrumAnalyser::runSteps() noexcept
{
    for (int i = 0; i < mStepBudget; ++i)
    {
        if (mStepper.step())
        {
            return;
        }
    }
}

} // namespace velmoran::dsp
