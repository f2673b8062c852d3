#pragma once

#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "pluginterfaces/vst/vsttypes.h"

#include <string>
#include <vector>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

constexpr int kBandCount = 10;

// Tags of the global parameters; band parameters are found with the functions below.
enum PlugTag : ParamID
{
    kEqTag = 0,
    kInputGainTag = 1,
    kOutputGainTag = 12,
    kUnusedTag = 13,
    kFftTag = 14,
    kFftSourceTag = 15,
    kFftSlopeTag = 16,
    kPolarityTag = 57,
    kSoloTag = 68,
    kPresetTag = 69,
    kHostBypassTag = 97,
};

// One past the highest tag: the size of a table indexed by tag.
constexpr ParamID kTagTableSize = 98;
// Tags 0..68 are the ones a program holds.
constexpr int kProgramValueCount = 69;
// The step count of "Preset": six programs, the seventh step loads the last one again.
constexpr int32 kPresetStepCount = 6;

// Tags of band n (1..10).
constexpr ParamID filterTypeTag(int band)
{
    return static_cast<ParamID>(1 + band);
}
constexpr ParamID frequencyTag(int band)
{
    return static_cast<ParamID>(16 + band);
}
constexpr ParamID gainTag(int band)
{
    return static_cast<ParamID>(26 + band);
}
constexpr ParamID qTag(int band)
{
    return static_cast<ParamID>(36 + band);
}
constexpr ParamID enableTag(int band)
{
    return static_cast<ParamID>(46 + band);
}
constexpr ParamID modeTag(int band)
{
    return static_cast<ParamID>(57 + band);
}

// One host-visible parameter as it is registered.
struct ParameterDefinition
{
    ParamID tag;
    std::string title;
    int32 stepCount;
    ParamValue defaultValue;
    int32 flags;
};

// Every host-visible parameter in the order of registration (the host's index order).
const std::vector<ParameterDefinition>& parameterTable();
// The default normalised value of a tag as the processor keeps it; 0 for an unregistered tag.
float defaultValue(ParamID tag);

// x + 0.5 truncated toward zero: how normalised values become codes and counts.
inline int roundHalfUp(float x)
{
    return static_cast<int>(x + 0.5f);
}
// True when a switch-like normalised value is on (0.5 and above).
inline bool isOn(float value)
{
    return value >= 0.5f;
}

// Input and output gain in dB (-6..+6) of a normalised value.
float ioGainDb(float value);
// Band frequency in Hz (20..20000, linear) of a normalised value.
float bandFrequencyHz(float value);
// Band gain in dB (-18..+18) of a normalised value.
float bandGainDb(float value);
// Band Q (0.3..5, logarithmic) of a normalised value.
float bandQ(float value);
// The normalised value of a band Q (inverse of bandQ).
float normalisedQ(float q);
// Filter type code (0..20) of a normalised value, in steps of 0.05.
int filterTypeCode(float value);
// Channel mode (0 stereo, 1 left, 2 right, others unused) of a normalised value.
int channelMode(float value);
// Solo band (0 none, else the band number) of a normalised value.
int soloBand(float value);

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
