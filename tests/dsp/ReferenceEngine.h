#pragma once

// The signal path as it ran before it was vectorised, kept as the yardstick the engine must match:
// each stereo frame on its own, scalar double-precision biquads, and an analyser that runs one
// butterfly of a full 4N-padded radix-2 transform per call with rotation-recurrence twiddles.
// Same setters and block update as dsp::BandEngine.

#include "dsp/BandFilter.h"
#include "dsp/GainRamp.h"
#include "dsp/SwitchRamp.h"

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

class ReferenceBandEngine
{
public:
    static constexpr int kBandCount = 10;

    void setSampleRate(float sampleRateHz);
    void setBandFrequency(int band, float hz);
    void setBandGain(int band, float db);
    void setBandQ(int band, float q);
    void setBandType(int band, int typeCode);
    void setBandEnabled(int band, bool enabled);
    void setBandMode(int band, int mode);
    void setSoloBand(int band);
    void setInputGainDb(float db);
    void setOutputGainDb(float db);
    void setPolarityInverted(bool inverted);
    void setEffectOn(bool on);
    void setAnalyserOn(bool on);
    void setAnalyserSourceOutput(bool output);
    void updateBlock(int frameCount);
    void processFrame(float inL, float inR, float& outL, float& outR);
    void reset();
    const float* analyserMagnitudes() const { return mAnalyser.magnitudes(); }

private:
    struct BandSettings
    {
        float frequencyHz = 1000.0f;
        float gainDb = 0.0f;
        float q = 1.0f;
        int type = 0;
        bool enabled = true;
        int mode = 0;
    };
    struct Band
    {
        BandSettings target;
        BandSettings current;
        std::array<dsp::BandFilter, 2> filters;
    };

    static bool IsValidBand(int band) { return band >= 1 && band <= kBandCount; }
    Band& bandAt(int band) { return mBands[static_cast<std::size_t>(band - 1)]; }
    dsp::BiquadSection designChannel(int bandIndex, int channel) const;
    void designBand(int bandIndex, bool crossFade);
    bool isBandFading(const Band& band) const;
    bool isAnyBandFading() const;
    void updateGain(float& currentDb, float targetDb, std::array<dsp::GainRamp, 2>& ramps, int frameCount);
    void updateBandSwitches();
    void updateSolo();
    void glideBands();
    void updateEffectSwitch();
    void updatePolarity();
    void takeOverAllSettings();

    float mSampleRate = 48000.0f;
    std::array<Band, kBandCount> mBands;
    int mSoloSet = 0, mSoloApplied = 0;
    float mInputGainTargetDb = 0.0f, mInputGainDb = 0.0f, mOutputGainTargetDb = 0.0f, mOutputGainDb = 0.0f;
    std::array<dsp::GainRamp, 2> mInputGainRamps, mOutputGainRamps, mPolarityRamps;
    bool mPolaritySet = false, mPolarityApplied = false, mEffectSet = false, mEffectApplied = false;
    std::array<dsp::SwitchRamp, 2> mSwitchRamps;
    bool mAnalyserSet = false, mAnalyserOn = false, mAnalyserSourceSet = false, mAnalyserSourceOutput = false;
    ReferenceAnalyser mAnalyser;
};

} // namespace velmoran::testing
