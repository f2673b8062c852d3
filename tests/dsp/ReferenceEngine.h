#pragma once

// The signal path as it ran before it was vectorised, kept as the yardstick the engine must match:
// each stereo frame on its own through scalar double-precision biquads. Its analyser is a plain
// SpectrumAnalyser (checked on its own against a direct transform) fed with the mono signal the
// engine should give it.

#include "dsp/BandEngine.h"
#include "dsp/BandFilter.h"
#include "dsp/SpectrumAnalyser.h"

#include <array>

namespace velmoran::testing
{

// Follows a dsp::BandEngine's decisions (its designs, ramps and analyser switch) and runs them
// frame by frame on plain scalar filters.
class ReferenceBandEngine
{
public:
    static constexpr int kBandCount = 10;

    // From now on hears of every design the engine makes.
    explicit ReferenceBandEngine(dsp::BandEngine& engine);
    void setSampleRate(float sampleRateHz) { mAnalyser.setSampleRate(sampleRateHz); }
    // Takes over what the engine's updateBlock has just decided.
    void updateBlock();
    void processChunk(const float* inL, const float* inR, float* outL, float* outR, int frameCount);
    void reset();
    const float* analyserMagnitudes() const { return mAnalyser.magnitudes(); }

private:
    static void designed(void* context, int band, const dsp::BiquadSection& first,
                         const dsp::BiquadSection& second, bool crossFade);
    // The frame's output and the sample it gives the analyser.
    float processFrame(float inL, float inR, float& outL, float& outR);

    const dsp::BandEngine& mEngine;
    std::array<std::array<dsp::BandFilter, 2>, kBandCount> mFilters;
    std::array<dsp::GainRamp, 2> mInputGainRamps, mOutputGainRamps, mPolarityRamps;
    std::array<dsp::SwitchRamp, 2> mSwitchRamps;
    bool mAnalyserOn = false;
    dsp::SpectrumAnalyser mAnalyser;
};

} // namespace velmoran::testing
