#include "SpectrumAnalyser.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include <emmintrin.h>

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

// Bins k and k + 1 of the N-point spectrum of the real frame from the N/2-point transform Z of
// its even (real part) and odd (imaginary part) samples: with Z' = conj(Z[N/2 - k]), the even
// samples' spectrum is (Z[k] + Z')/2, the odd samples' one is (Z[k] - Z')/2j, and the odd one is
// shifted by w^k = exp(-j*2*pi*k/N), given for k and k + 1. Returns the magnitudes twice over.
__m128d TwiceMagnitudes(const double* re, const double* im, int halfSize, int k, __m128d cosines,
                        __m128d sines) noexcept
{
    const int mask = halfSize - 1;
    const __m128d zRe = _mm_loadu_pd(re + k);
    const __m128d zIm = _mm_loadu_pd(im + k);
    const __m128d mirrorRe = _mm_set_pd(re[(halfSize - k - 1) & mask], re[(halfSize - k) & mask]);
    const __m128d mirrorIm = _mm_set_pd(im[(halfSize - k - 1) & mask], im[(halfSize - k) & mask]);
    const __m128d evenRe = _mm_add_pd(zRe, mirrorRe);
    const __m128d evenIm = _mm_sub_pd(zIm, mirrorIm);
    // -j*(Z[k] - Z'), twice the odd samples' spectrum.
    const __m128d oddRe = _mm_add_pd(zIm, mirrorIm);
    const __m128d oddIm = _mm_sub_pd(mirrorRe, zRe);
    const __m128d binRe =
        _mm_add_pd(evenRe, _mm_sub_pd(_mm_mul_pd(cosines, oddRe), _mm_mul_pd(sines, oddIm)));
    const __m128d binIm =
        _mm_add_pd(evenIm, _mm_add_pd(_mm_mul_pd(cosines, oddIm), _mm_mul_pd(sines, oddRe)));
    return _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(binRe, binRe), _mm_mul_pd(binIm, binIm)));
}

} // namespace

SpectrumAnalyser::SpectrumAnalyser()
    : mFillReal(kMaxSize / 2), mFillImag(kMaxSize / 2), mTransformReal(kMaxSize / 2),
      mTransformImag(kMaxSize / 2), mWindow(kMaxSize / 4)
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
    // The whole frame's work over its samples, rounded up so that it is done before the next one.
    const int units = FftStepper::PairCount(mLog2Size - 1) + kBinCount;
    mStepBudget = (units + mFrameLength - 1) / mFrameLength;
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
    // The cleared buffers transform to nothing, so the next magnitudes are zero as well.
    for (auto& magnitudes : mMagnitudes)
    {
        magnitudes.fill(0.0f);
    }
    ++mShownVersion;
    mNextBin = kBinCount;
    const int halfSize = 1 << (mLog2Size - 1);
    // Both pairs, so neither a finished transform nor a half-captured frame from before comes back.
    for (std::vector<double>* buffer : {&mFillReal, &mFillImag, &mTransformReal, &mTransformImag})
    {
        std::fill(buffer->begin(), buffer->begin() + halfSize, 0.0);
    }
    mStepper.stop();
    mWritePosition = 0;
}

void SpectrumAnalyser::feed(const float* samples, int count) noexcept
{
    while (count > 0)
    {
        if (mWritePosition == 0)
        {
            finishFrame();
        }
        // Capture and transform work on different buffers, so within a frame each may go first.
        const int segment = std::min(count, mFrameLength - mWritePosition);
        for (int i = 0; i < segment; ++i)
        {
            capture(samples[i]);
        }
        const int left = mStepper.run(segment * mStepBudget);
        if (left > 0)
        {
            prepareMagnitudes(left);
        }
        samples += segment;
        count -= segment;
        if (mWritePosition == mFrameLength)
        {
            mWritePosition = 0;
        }
    }
}

// Windows the sample into the frame being filled: even positions as real parts, odd ones as the
// imaginary parts of the same values.
void SpectrumAnalyser::capture(float sample) noexcept
{
    // An overflowing output must not leave the display stuck at infinity or NaN.
    const double value = std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
    const double windowed = value * mWindow[static_cast<std::size_t>(mWritePosition)];
    if (mWritePosition % 2 == 0)
    {
        mEvenSample = windowed;
    }
    else
    {
        PlacePadded(mFillReal.data(), mFillImag.data(), mLog2Size - 1, mWritePosition / 2, mEvenSample,
                    windowed);
    }
    ++mWritePosition;
}

// The frame just captured goes to the transform, and the magnitudes prepared from the last one
// are shown.
void SpectrumAnalyser::finishFrame() noexcept
{
    mShown = 1 - mShown;
    ++mShownVersion;
    mNextBin = 0;
    mFillReal.swap(mTransformReal);
    mFillImag.swap(mTransformImag);
    mStepper.start(mTransformReal.data(), mTransformImag.data(), mLog2Size - 1);
    mBinTwiddles.setStep(TwiddleStepForSpan(1 << (mLog2Size - 1)));
}

// Moves the shown magnitudes towards the finished transform's levels, attack or release per bin,
// into the array behind them, two bins at a time.
void SpectrumAnalyser::prepareMagnitudes(int binBudget) noexcept
{
    const int halfSize = 1 << (mLog2Size - 1);
    const int end = std::min(kBinCount, mNextBin + binBudget + binBudget % 2);
    __m128d cosines = _mm_load_pd(mBinTwiddles.cosines);
    __m128d sines = _mm_load_pd(mBinTwiddles.sines);
    const __m128d stepCos = _mm_set1_pd(mBinTwiddles.pairStep.cos);
    const __m128d stepSin = _mm_set1_pd(mBinTwiddles.pairStep.sin);
    const float* shown = mMagnitudes[static_cast<std::size_t>(mShown)].data();
    float* next = mMagnitudes[static_cast<std::size_t>(1 - mShown)].data();
    // The magnitudes come out twice over; a frame of M samples reads M times its mean.
    const __m128d scale = _mm_set1_pd(0.5 / mFrameLength);
    const __m128d attack = _mm_set1_pd(mAttack);
    const __m128d release = _mm_set1_pd(mRelease);
    for (int bin = mNextBin; bin < end; bin += 2)
    {
        const __m128d level = _mm_mul_pd(
            TwiceMagnitudes(mTransformReal.data(), mTransformImag.data(), halfSize, bin, cosines, sines),
            scale);
        const __m128d smoothed =
            _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(shown + bin))));
        const __m128d difference = _mm_sub_pd(level, smoothed);
        const __m128d rising = _mm_cmpgt_pd(difference, _mm_setzero_pd());
        const __m128d rate = _mm_or_pd(_mm_and_pd(rising, attack), _mm_andnot_pd(rising, release));
        const __m128d moved = _mm_add_pd(smoothed, _mm_mul_pd(rate, difference));
        const __m128d tiny = _mm_cmplt_pd(_mm_andnot_pd(_mm_set1_pd(-0.0), moved), _mm_set1_pd(kFlushLevel));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(next + bin),
                         _mm_castps_si128(_mm_cvtpd_ps(_mm_andnot_pd(tiny, moved))));
        AdvanceTwiddles(cosines, sines, stepCos, stepSin);
    }
    _mm_store_pd(mBinTwiddles.cosines, cosines);
    _mm_store_pd(mBinTwiddles.sines, sines);
    mNextBin = end;
}

} // namespace velmoran::dsp
