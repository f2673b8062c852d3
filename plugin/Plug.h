#pragma once

#include "PlugParameters.h"
#include "SpectrumFrame.h"
#include "SpectrumSender.h"
#include "sdk/AudioEffect.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>

namespace velmoran::dsp
{
class BandEngine;
}

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// The audio processor: buses, parameter changes, the state stream and the spectrum link around
// a band engine, which does all the signal processing.
class CPlug : public AudioEffect
{
public:
    CPlug();
    ~CPlug() override;

    // Factory function: a new processor as its IAudioProcessor, null if it cannot be made.
    static FUnknown* createInstance(void* context);

    // Takes the host context and adds the stereo buses and the event input (UI thread).
    tresult PLUGIN_API initialize(FUnknown* context) SMTG_OVERRIDE;
    tresult PLUGIN_API terminate() SMTG_OVERRIDE;
    // Connection to the controller, guarded against the sender thread (UI thread).
    tresult PLUGIN_API connect(IConnectionPoint* other) SMTG_OVERRIDE;
    tresult PLUGIN_API disconnect(IConnectionPoint* other) SMTG_OVERRIDE;
    // Takes "EditorOpen" from the controller; ignores the controller's "BinaryMessage" (UI thread).
    tresult PLUGIN_API notify(IMessage* message) SMTG_OVERRIDE;

    // Accepts mono to mono and stereo to stereo only (UI thread).
    tresult PLUGIN_API setBusArrangements(SpeakerArrangement* inputs, int32 numIns,
                                          SpeakerArrangement* outputs, int32 numOuts) SMTG_OVERRIDE;
    // Takes the sample rate in Hz; the engine redesigns only when it changed (UI thread).
    tresult PLUGIN_API setupProcessing(ProcessSetup& setup) SMTG_OVERRIDE;
    // On: tells the controller the sample rate; off: clears the engine's running state (UI thread).
    tresult PLUGIN_API setActive(TBool state) SMTG_OVERRIDE;
    // Applies the block's last parameter values and filters the block in chunks (audio thread).
    tresult PLUGIN_API process(ProcessData& data) SMTG_OVERRIDE;

    // The 69 normalised values as floats; 57 are enough to load (UI thread).
    tresult PLUGIN_API setState(IBStream* state) SMTG_OVERRIDE;
    tresult PLUGIN_API getState(IBStream* state) SMTG_OVERRIDE;

    // Most channels of a bus that are read or written; further channels are left alone.
    static constexpr int32 kMaxChannels = 64;
    // Longest chunk in samples between two block updates of the band engine.
    static constexpr int32 kChunkLength = 64;

private:
    void pushAllToEngine();
    void setParameter(ParamID tag, float value) noexcept;
    void updateEffectSwitch() noexcept;
    bool analyserWanted() const noexcept;
    void applyParameterChanges(IParameterChanges* changes) noexcept;
    void processAudio(AudioBusBuffers& input, AudioBusBuffers& output, int32 sampleCount) noexcept;
    void copyAnalyserFrame() noexcept;
    void replaceAudioBuses(const TChar* inputName, SpeakerArrangement inputArrangement,
                           const TChar* outputName, SpeakerArrangement outputArrangement);
    void sendSampleRate();

    std::unique_ptr<velmoran::dsp::BandEngine> mEngine;
    std::array<float, kTagTableSize> mValues{};
    float mSampleRate = 48000.0f;
    float mEngineSampleRate = 48000.0f;
    std::unique_ptr<SpectrumFrame> mSpectrumFrame;
    // The analyser's magnitudes as last copied into the frame: a new frame comes only every
    // quarter transform, so most blocks have nothing to copy.
    unsigned mCopiedAnalyserVersion = ~0u;
    // Set from the UI thread while an editor is open; the audio thread analyses only then.
    std::atomic<bool> mEditorOpen{false};
    std::recursive_mutex mLinkLock;
    std::unique_ptr<SpectrumSender> mSender;
};

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
