#pragma once

#include "plugin/PlugParameters.h"

namespace velmoran::editor
{

// One band's parameters as normalised values (0..1), as the host holds them, and what they mean.
struct BandSettings
{
    float type = 0.0f;
    float frequency = 0.0f;
    float gain = 0.5f;
    float q = 0.0f;
    float enable = 1.0f;
    float mode = 0.0f;

    int typeCode() const { return Steinberg::Vst::Velmoran::filterTypeCode(type); }
    float frequencyHz() const { return Steinberg::Vst::Velmoran::bandFrequencyHz(frequency); }
    float gainDb() const { return Steinberg::Vst::Velmoran::bandGainDb(gain); }
    float qValue() const { return Steinberg::Vst::Velmoran::bandQ(q); }
    bool on() const { return Steinberg::Vst::Velmoran::isOn(enable); }
    int channelMode() const { return Steinberg::Vst::Velmoran::channelMode(mode); }
    // A band exists on the graph for every code but 0.
    bool inUse() const { return typeCode() != 0; }
    // Low pass, high pass and band pass have no gain: their handles stay on the 0 dB line.
    bool hasGain() const { return typeCode() < 9 || typeCode() > 11; }
};

// Normalised values of engineering units, the inverses of the parameter conversions.
inline float normalisedFrequency(float hz)
{
    return (hz - 20.0f) / 19980.0f;
}
inline float normalisedGain(float db)
{
    return (db + 18.0f) / 36.0f;
}
inline float normalisedIoGain(float db)
{
    return (db + 6.0f) / 12.0f;
}
inline float normalisedTypeCode(int code)
{
    return static_cast<float>(code) / 20.0f;
}
inline float normalisedChannelMode(int mode)
{
    return static_cast<float>(mode) / 4.0f;
}
inline float normalisedSoloBand(int band)
{
    return static_cast<float>(band) / 12.0f;
}

} // namespace velmoran::editor
