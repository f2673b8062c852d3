#pragma once

#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "public.sdk/source/vst/vstcomponent.h"
#include "sdk/ReferenceCount.h"

namespace Steinberg
{
namespace Vst
{

// Base class of an audio effect: a component that is also its own audio processor. Keeps the
// process setup and offers helpers that append buses to the component's bus lists.
class AudioEffect : public Component, public IAudioProcessor, public IProcessContextRequirements
{
public:
    AudioEffect();

    // Appends an audio input bus and gives it back (owned by the bus list).
    AudioBus* addAudioInput(const TChar* name, SpeakerArrangement arrangement, BusType busType = kMain,
                            int32 flags = BusInfo::kDefaultActive);
    // Appends an audio output bus and gives it back (owned by the bus list).
    AudioBus* addAudioOutput(const TChar* name, SpeakerArrangement arrangement, BusType busType = kMain,
                             int32 flags = BusInfo::kDefaultActive);
    // Appends an event input bus with the given channel count and gives it back.
    EventBus* addEventInput(const TChar* name, int32 channels = 16, BusType busType = kMain,
                            int32 flags = BusInfo::kDefaultActive);
    // Appends an event output bus with the given channel count and gives it back.
    EventBus* addEventOutput(const TChar* name, int32 channels = 16, BusType busType = kMain,
                             int32 flags = BusInfo::kDefaultActive);

    // The audio input bus at index, or null.
    AudioBus* getAudioInput(int32 index);
    // The audio output bus at index, or null.
    AudioBus* getAudioOutput(int32 index);

    tresult PLUGIN_API setBusArrangements(SpeakerArrangement* inputs, int32 numIns,
                                          SpeakerArrangement* outputs, int32 numOuts) SMTG_OVERRIDE;
    tresult PLUGIN_API getBusArrangement(BusDirection dir, int32 index,
                                         SpeakerArrangement& arr) SMTG_OVERRIDE;
    tresult PLUGIN_API canProcessSampleSize(int32 symbolicSampleSize) SMTG_OVERRIDE;
    uint32 PLUGIN_API getLatencySamples() SMTG_OVERRIDE { return 0; }
    tresult PLUGIN_API setupProcessing(ProcessSetup& newSetup) SMTG_OVERRIDE;
    tresult PLUGIN_API setProcessing(TBool state) SMTG_OVERRIDE;
    tresult PLUGIN_API process(ProcessData& data) SMTG_OVERRIDE;
    uint32 PLUGIN_API getTailSamples() SMTG_OVERRIDE { return kNoTail; }

    uint32 PLUGIN_API getProcessContextRequirements() SMTG_OVERRIDE { return processContextRequirements; }

    OBJ_METHODS(AudioEffect, Component)
    DEFINE_INTERFACES
    DEF_INTERFACE(IAudioProcessor)
    DEF_INTERFACE(IProcessContextRequirements)
    END_DEFINE_INTERFACES(Component)
    VELMORAN_REFCOUNT_METHODS(Component)

protected:
    ProcessSetup processSetup;
    uint32 processContextRequirements = 0;
};

} // namespace Vst
} // namespace Steinberg
