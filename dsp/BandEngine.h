#pragma once

#include "GainRamp.h"
#include "SpectrumAnalyser.h"
#include "StereoBandFilter.h"
#include "SwitchRamp.h"

#include <emmintrin.h>

#include <array>
#include <cstddef>

namespace velmoran::dsp
{

// The signal path of the equaliser: input gain, polarity, ten bands on each of two channels,
// output gain, the effect in/out cross-fade, solo listening and the analyser's capture.
// Setters store plain values; updateBlock moves the running settings towards them once per chunk
// and processChunk then filters the chunk's frames. Everything runs on the audio thread; nothing
// allocates after construction.
class BandEngine
{
public:
    static constexpr int kBandCount = 10;
    static constexpr int kMaxChunkLength = 64;

    // All bands unity, effect out and settled, analyser off and sized for 48 kHz.
    BandEngine();

    // Takes a new sample rate in Hz, designs all twenty filters afresh and re-sizes the analyser
    // (not on the audio thread while it processes). Non-finite or non-positive rates are ignored.
    void setSampleRate(float sampleRateHz);

    // Band centre or corner frequency in Hz (band 1..10), kept within 20 .. 20000 Hz.
    void setBandFrequency(int band, float hz);
    // Band gain in dB, kept within -18 .. +18 dB.
    void setBandGain(int band, float db);
    // Band Q, kept within 0.3 .. 5.
    void setBandQ(int band, float q);
    // Band filter type code 0..20 (other codes are ignored).
    void setBandType(int band, int typeCode);
    // Band switch; a band switched off fades out over the cross-fade.
    void setBandEnabled(int band, bool enabled);
    // Band channel mode: 0 both channels, 1 first only, 2 second only (others ignored).
    void setBandMode(int band, int mode);
    // Band to listen to (0 none, else 1..10; others ignored).
    void setSoloBand(int band);
    // Input gain in dB, kept within -24 .. +24 dB.
    void setInputGainDb(float db);
    // Output gain in dB, kept within -24 .. +24 dB.
    void setOutputGainDb(float db);
    // Polarity of both channels; applied with a 20 ms ramp while the effect is in.
    void setPolarityInverted(bool inverted);
    // Effect in (true) or out; either way a 50 ms cross-fade with the dry signal.
    void setEffectOn(bool on);
    // Analyser running or not; switching it on clears its display.
    void setAnalyserOn(bool on);
    // Analyser fed with the output (true) or the input after polarity (false).
    void setAnalyserSourceOutput(bool output);

    // Moves gains and band settings on and redesigns what changed; call before each chunk of
    // 1 .. 64 frames (audio thread).
    void updateBlock(int frameCount) noexcept;

    // Processes frameCount (1 .. 64) stereo frames, exactly as one frame after the other (audio
    // thread). All inputs are read before any output is written, so they may share buffers.
    void processChunk(const float* inL, const float* inR, float* outL, float* outR, int frameCount) noexcept;

    // Clears every filter history and cross-fade and settles all ramps on their targets; the
    // settings are kept (called on deactivation).
    void reset() noexcept;

    // Frequency in Hz that band 1..10 is designed with now (gliding towards the set value); 0 for
    // any other band number.
    float currentBandFrequency(int band) const noexcept
    {
        return IsValidBand(band) ? mBands[static_cast<std::size_t>(band - 1)].current.frequencyHz : 0.0f;
    }
    // Gain in dB that band 1..10 is designed with now; 0 for any other band number.
    float currentBandGain(int band) const noexcept
    {
        return IsValidBand(band) ? mBands[static_cast<std::size_t>(band - 1)].current.gainDb : 0.0f;
    }

    // Rate in Hz the analyser's bins refer to.
    float analyserSampleRate() const noexcept { return mAnalyser.sampleRate(); }
    // Analyser transform size N; bin k lies at k * analyserSampleRate() / N Hz.
    int analyserSize() const noexcept { return mAnalyser.size(); }
    // SpectrumAnalyser::kBinCount smoothed linear magnitudes.
    const float* analyserMagnitudes() const noexcept { return mAnalyser.magnitudes(); }
    // Changes whenever the magnitudes do.
    unsigned analyserVersion() const noexcept { return mAnalyser.shownVersion(); }

    // A yardstick for the signal path follows the engine's decisions instead of repeating them:
    // the hook hears of every band design as it is made (band 1..10, the two channels' sections,
    // whether they fade in or replace the running ones at once), and the getters below show what
    // updateBlock left for the next chunk. None by default.
    using DesignHook = void (*)(void* context, int band, const BiquadSection& first,
                                const BiquadSection& second, bool crossFade);
    void setDesignHook(DesignHook hook, void* context) noexcept
    {
        mDesignHook = hook;
        mDesignHookContext = context;
    }
    // Whether band 1..10 filters when it is not fading.
    bool bandFilters(int band) const noexcept;
    const std::array<GainRamp, 2>& inputGainRamps() const noexcept { return mInputGainRamps; }
    const std::array<GainRamp, 2>& outputGainRamps() const noexcept { return mOutputGainRamps; }
    const std::array<GainRamp, 2>& polarityRamps() const noexcept { return mPolarityRamps; }
    const std::array<SwitchRamp, 2>& switchRamps() const noexcept { return mSwitchRamps; }
    bool analyserOn() const noexcept { return mAnalyserOn; }
    bool analyserSourceOutput() const noexcept { return mAnalyserSourceOutput; }

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
        BandSettings target;  // as last set
        BandSettings current; // as designed into the filters
        StereoBandFilter filter;
    };

    enum class DesignMode
    {
        CrossFade,
        Direct
    };

    static bool IsValidBand(int band) noexcept { return band >= 1 && band <= kBandCount; }
    Band& bandAt(int band) noexcept { return mBands[static_cast<std::size_t>(band - 1)]; }

    BiquadSection designChannel(int bandIndex, int channel) const noexcept;
    void designBand(int bandIndex, DesignMode mode) noexcept;
    bool isAnyBandFading() const noexcept;
    void updateGain(float& currentDb, float targetDb, std::array<GainRamp, 2>& ramps,
                    int frameCount) noexcept;
    void updateBandSwitches() noexcept;
    void updateSolo() noexcept;
    void glideBands() noexcept;
    void updateEffectSwitch() noexcept;
    void updateAnalyser() noexcept;
    void updatePolarity() noexcept;
    void takeOverAllSettings() noexcept;
    int advanceSwitchRamps(__m128d* mix, int frameCount) noexcept;
    void runBands(__m128d* signal, int frameCount) noexcept;
    void feedAnalyser(const __m128d* input, const __m128d* output, int effectFrames, int frameCount) noexcept;

    float mSampleRate = 48000.0f;
    std::array<Band, kBandCount> mBands;
    // At most this many glide redesigns a chunk; ten bands gliding need one and a quarter a chunk
    // on average, as each redesigns once per 512-sample cross-fade.
    static constexpr int kGlideRedesignsPerChunk = 2;
    int mGlideCursor = 0; // the band the next chunk's glides start from
    int mSoloSet = 0;
    int mSoloApplied = 0;

    float mInputGainTargetDb = 0.0f;
    float mInputGainDb = 0.0f;
    float mOutputGainTargetDb = 0.0f;
    float mOutputGainDb = 0.0f;
    std::array<GainRamp, 2> mInputGainRamps;
    std::array<GainRamp, 2> mOutputGainRamps;

    bool mPolaritySet = false;
    bool mPolarityApplied = false;
    std::array<GainRamp, 2> mPolarityRamps;

    bool mEffectSet = false;
    bool mEffectApplied = false;
    std::array<SwitchRamp, 2> mSwitchRamps;

    bool mAnalyserSet = false;
    bool mAnalyserOn = false;
    bool mAnalyserSourceSet = false;
    bool mAnalyserSourceOutput = false;
    SpectrumAnalyser mAnalyser;

    DesignHook mDesignHook = nullptr;
    void* mDesignHookContext = nullptr;
};

} // namespace velmoran::dsp
