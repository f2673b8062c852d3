#pragma once

#include "FftStepper.h"

#include <array>
#include <vector>

namespace velmoran::dsp
{

// Smoothed magnitude spectrum of a mono feed, for the display behind the response curve. Each
// frame of N/4 windowed samples is transformed four times zero-padded while the next frame is
// captured, and the next smoothed magnitudes are worked out behind the shown ones; both take the
// same small share of work on every sample, so no audio callback ever carries a whole transform
// and the frame boundary only swaps the display over. The frame is real, so its N-point spectrum
// comes from an N/2-point complex transform of its even and odd samples taken as real and
// imaginary parts. Used on the audio thread only; the buffers are allocated once, at the largest
// transform size.
class SpectrumAnalyser
{
public:
    static constexpr int kBinCount = 2048;
    static constexpr int kMaxLog2Size = 14;
    static constexpr int kMaxSize = 1 << kMaxLog2Size;

    // Sized for 48 kHz; allocates every buffer it will ever need.
    SpectrumAnalyser();

    // Chooses the transform size for the rate in Hz (4096 up to ~66 kHz, 8192 up to ~110 kHz,
    // 16384 above), rebuilds the window and clears the display. Does not allocate.
    void setSampleRate(float sampleRateHz) noexcept;

    // Clears the display and the frame being captured (used when the analyser is switched on).
    void reset() noexcept;

    // Takes count mono samples and does their share of the running transform (audio thread).
    void feed(const float* samples, int count) noexcept;

    // The rate in Hz the analyser was sized for.
    float sampleRate() const noexcept { return mSampleRate; }

    // Transform size N; bin k of the magnitudes lies at k * sampleRate() / N Hz.
    int size() const noexcept { return 1 << mLog2Size; }

    // Units of work done per sample: butterfly pairs of the transform, then bins of the next
    // magnitudes.
    int stepBudget() const noexcept { return mStepBudget; }

    // kBinCount smoothed linear magnitudes (a full-scale sine at a bin centre reads about 0.18).
    const float* magnitudes() const noexcept { return mMagnitudes[mShown].data(); }
    // Counts every change of the shown magnitudes (a new frame, a reset), so that a reader copies
    // them only when they changed.
    unsigned shownVersion() const noexcept { return mShownVersion; }

private:
    void finishFrame() noexcept;
    void capture(float sample) noexcept;
    void prepareMagnitudes(int binBudget) noexcept;

    float mSampleRate = 48000.0f;
    int mLog2Size = 12;
    int mFrameLength = 1024;
    int mStepBudget = 7;
    int mWritePosition = 0;
    double mEvenSample = 0.0; // windowed sample at the last even position, waiting for its odd partner
    double mAttack = 0.0;
    double mRelease = 0.0;

    std::vector<double> mFillReal;
    std::vector<double> mFillImag;
    std::vector<double> mTransformReal;
    std::vector<double> mTransformImag;
    std::vector<double> mWindow;
    // The shown magnitudes and, behind them, the next ones, prepared up to mNextBin.
    std::array<std::array<float, kBinCount>, 2> mMagnitudes{};
    int mShown = 0;
    unsigned mShownVersion = 0;
    int mNextBin = kBinCount;
    FftStepper mStepper;
    TwiddlePair mBinTwiddles; // w^k for the next bins to prepare, w = exp(-j*2*pi/N)
};

} // namespace velmoran::dsp
