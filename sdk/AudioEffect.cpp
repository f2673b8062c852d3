#include "AudioEffect.h"

namespace Steinberg
{
namespace Vst
{

AudioEffect::AudioEffect()
{
    processSetup.maxSamplesPerBlock = 1024;
    processSetup.processMode = kRealtime;
    processSetup.sampleRate = 44100.0;
    processSetup.symbolicSampleSize = kSample32;
}

AudioBus* AudioEffect::addAudioInput(const TChar* name, SpeakerArrangement arrangement, BusType busType,
                                     int32 flags)
{
    auto* bus = new AudioBus(name, busType, flags, arrangement);
    audioInputs.push_back(IPtr<Bus>(bus, false));
    return bus;
}

AudioBus* AudioEffect::addAudioOutput(const TChar* name, SpeakerArrangement arrangement, BusType busType,
                                      int32 flags)
{
    auto* bus = new AudioBus(name, busType, flags, arrangement);
    audioOutputs.push_back(IPtr<Bus>(bus, false));
    return bus;
}

EventBus* AudioEffect::addEventInput(const TChar* name, int32 channels, BusType busType, int32 flags)
{
    auto* bus = new EventBus(name, busType, flags, channels);
    eventInputs.push_back(IPtr<Bus>(bus, false));
    return bus;
}

EventBus* AudioEffect::addEventOutput(const TChar* name, int32 channels, BusType busType, int32 flags)
{
    auto* bus = new EventBus(name, busType, flags, channels);
    eventOutputs.push_back(IPtr<Bus>(bus, false));
    return bus;
}

AudioBus* AudioEffect::getAudioInput(int32 index)
{
    if (index < 0 || index >= static_cast<int32>(audioInputs.size()))
    {
        return nullptr;
    }
    return FCast<AudioBus>(audioInputs[static_cast<size_t>(index)].get());
}

AudioBus* AudioEffect::getAudioOutput(int32 index)
{
    if (index < 0 || index >= static_cast<int32>(audioOutputs.size()))
    {
        return nullptr;
    }
    return FCast<AudioBus>(audioOutputs[static_cast<size_t>(index)].get());
}

tresult PLUGIN_API AudioEffect::setBusArrangements(SpeakerArrangement* inputs, int32 numIns,
                                                   SpeakerArrangement* outputs, int32 numOuts)
{
    // Only the layout the effect already has can be taken: one arrangement per existing bus.
    if (numIns < 0 || numOuts < 0 || numIns > static_cast<int32>(audioInputs.size()) ||
        numOuts > static_cast<int32>(audioOutputs.size()))
    {
        return kResultFalse;
    }
    if ((numIns > 0 && !inputs) || (numOuts > 0 && !outputs))
    {
        return kInvalidArgument;
    }
    for (int32 index = 0; index < numIns; ++index)
    {
        if (auto* bus = getAudioInput(index))
        {
            bus->setArrangement(inputs[index]);
        }
    }
    for (int32 index = 0; index < numOuts; ++index)
    {
        if (auto* bus = getAudioOutput(index))
        {
            bus->setArrangement(outputs[index]);
        }
    }
    return kResultTrue;
}

tresult PLUGIN_API AudioEffect::getBusArrangement(BusDirection dir, int32 index, SpeakerArrangement& arr)
{
    AudioBus* bus = dir == kInput ? getAudioInput(index) : getAudioOutput(index);
    if (!bus)
    {
        return kInvalidArgument;
    }
    arr = bus->getArrangement();
    return kResultTrue;
}

tresult PLUGIN_API AudioEffect::canProcessSampleSize(int32 symbolicSampleSize)
{
    return symbolicSampleSize == kSample32 ? kResultTrue : kResultFalse;
}

tresult PLUGIN_API AudioEffect::setupProcessing(ProcessSetup& newSetup)
{
    if (canProcessSampleSize(newSetup.symbolicSampleSize) != kResultTrue)
    {
        return kResultFalse;
    }
    processSetup = newSetup;
    return kResultOk;
}

tresult PLUGIN_API AudioEffect::setProcessing(TBool /*state*/)
{
    return kNotImplemented;
}

tresult PLUGIN_API AudioEffect::process(ProcessData& /*data*/)
{
    return kNotImplemented;
}

} // namespace Vst
} // namespace Steinberg
