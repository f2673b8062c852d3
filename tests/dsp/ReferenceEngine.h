#pragma once

// The signal path as it ran before it was vectorised, kept as the yardstick the engine must match:
// each stereo frame on its own, scalar double-precision biquads, and an analyser that runs one
// butterfly of a full 4N-padded radix-2 transform per call with rotation-recurrence twiddles.

#include "dsp/BandEngine.h"
#include "dsp/BandFilter.h"

#include <array>
#include <vector>

namespace velmoran::testing
{

class ReferenceAnalyser
{
public:
    static constexpr int kBinCount = 2048;

    ReferenceAnalyser();
    void setSampleRate(float sampleRateHz);
    void reset();
    void feed(float sample);
    const float* magnitudes() const { return mMagnitudes.data(); }

private:
    void finishFrame();
    void runSteps();
    bool step();
    void advanceGroup();

    int mLog2Size = 12;
    int mFrameLength = 1024;
    int mStepBudget = 6;
    int mWritePosition = 0;
    double mAttack = 0.0;
    double mRelease = 0.0;
    std::vector<double> mFillReal, mFillImag, mTransformReal, mTransformImag, mWindow;
    std::array<float, kBinCount> mMagnitudes{};

    // The stepper.
    double* mReal = nullptr;
    double* mImag = nullptr;
    int mSize = 0, mSpan = 1, mGroup = 0, mPosition = 0;
    double mTwiddleCos = 1.0, mTwiddleSin = 0.0, mStepCos = -1.0, mStepSin = 0.0;
    bool mDone = true;
};

// Follows a dsp::BandEngine's decisions (its designs, ramps and analyser switch) and runs them
// frame by frame on plain scalar filters and its own analyser.
class ReferenceBandEngine
{
public:
    static constexpr int kBandCount = 10;

    // From now on hears of every design the engine makes.
    explicit ReferenceBandEngine(dsp::BandEngine& engine);
    void setSampleRate(float sampleRateHz) { mAnalyser.setSampleRate(sampleRateHz); }
    // Takes over what the engine's updateBlock has just decided.
    void updateBlock();
    void processFrame(float inL, float inR, float& outL, float& outR);
    void reset();
    const float* analyserMagnitudes() const { return mAnalyser.magnitudes(); }

private:
    static void designed(void* context, int band, const dsp::BiquadSection& first,
                         const dsp::BiquadSection& second, bool crossFade);

    const dsp::BandEngine& mEngine;
    std::array<std::array<dsp::BandFilter, 2>, kBandCount> mFilters;
    std::array<dsp::GainRamp, 2> mInputGainRamps, mOutputGainRamps, mPolarityRamps;
    std::array<dsp::SwitchRamp, 2> mSwitchRamps;
    bool mAnalyserOn = false;
    ReferenceAnalyser mAnalyser;
};

} // namespace velmoran::testing
