#include "PlugParameters.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

constexpr int32 kAutomate = ParameterInfo::kCanAutomate;
constexpr float kQMin = 0.3f;
constexpr float kQMax = 5.0f;

constexpr std::array<float, kBandCount> kBandDefaultHz = {31.25f,  62.5f,   125.0f,  250.0f,  500.0f,
                                                          1000.0f, 2000.0f, 4000.0f, 8000.0f, 16000.0f};
// Band 1 is a low shelf, bands 4 and 6 half-gain peaks, band 10 a high shelf; the rest unused.
constexpr std::array<float, kBandCount> kBandDefaultType = {0.35f, 0.0f, 0.0f, 0.1f, 0.0f,
                                                            0.1f,  0.0f, 0.0f, 0.0f, 0.4f};

// A band title such as "03 Gain".
std::string bandTitle(int band, const char* what)
{
    char title[32];
    std::snprintf(title, sizeof(title), "%02d %s", band, what);
    return title;
}

std::vector<ParameterDefinition> makeParameterTable()
{
    std::vector<ParameterDefinition> table;
    table.push_back({kInputGainTag, "Input Gain", 0, 0.495f, kAutomate});
    for (int band = 1; band <= kBandCount; ++band)
    {
        table.push_back(
            {filterTypeTag(band), bandTitle(band, "Filt Type"), 0, kBandDefaultType[band - 1], kAutomate});
    }
    table.push_back({kOutputGainTag, "Output Gain", 0, 0.495f, kAutomate});
    table.push_back({kFftTag, "FFT", 0, 0.0, kAutomate});
    table.push_back({kFftSourceTag, "FFT Src", 0, 0.0, kAutomate});
    table.push_back({kFftSlopeTag, "FFT Slope", 0, 0.99f, kAutomate});
    table.push_back({kPolarityTag, "Polarity", 0, 0.0, kAutomate});
    for (int band = 1; band <= kBandCount; ++band)
    {
        const float normalised = (kBandDefaultHz[band - 1] - 20.0f) / 19980.0f;
        table.push_back({frequencyTag(band), bandTitle(band, "Freq"), 0, normalised, kAutomate});
    }
    for (int band = 1; band <= kBandCount; ++band)
    {
        table.push_back({gainTag(band), bandTitle(band, "Gain"), 0, 0.5, kAutomate});
    }
    for (int band = 1; band <= kBandCount; ++band)
    {
        table.push_back({qTag(band), bandTitle(band, "Q"), 0, normalisedQ(1.0f), kAutomate});
    }
    for (int band = 1; band <= kBandCount; ++band)
    {
        table.push_back({enableTag(band), bandTitle(band, "Enable"), 0, 0.99f, kAutomate});
    }
    for (int band = 1; band <= kBandCount; ++band)
    {
        table.push_back({modeTag(band), bandTitle(band, "Mode"), 0, 0.0, kAutomate});
    }
    table.push_back({kSoloTag, "Solo", 0, 0.0, kAutomate});
    table.push_back({kEqTag, "EQ", 0, 0.99f, kAutomate});
    table.push_back(
        {kPresetTag, "Preset", kPresetStepCount, 0.0, kAutomate | ParameterInfo::kIsProgramChange});
    table.push_back({kHostBypassTag, "Host Bypass", 1, 0.0, kAutomate | ParameterInfo::kIsBypass});
    return table;
}

std::array<float, kTagTableSize> makeDefaultValues()
{
    std::array<float, kTagTableSize> values{};
    for (const ParameterDefinition& parameter : parameterTable())
    {
        values[parameter.tag] = static_cast<float>(parameter.defaultValue);
    }
    return values;
}

} // namespace

const std::vector<ParameterDefinition>& parameterTable()
{
    static const std::vector<ParameterDefinition> table = makeParameterTable();
    return table;
}

float defaultValue(ParamID tag)
{
    static const std::array<float, kTagTableSize> values = makeDefaultValues();
    return tag < kTagTableSize ? values[tag] : 0.0f;
}

float ioGainDb(float value)
{
    return 12.0f * value - 6.0f;
}

float bandFrequencyHz(float value)
{
    return 19980.0f * value + 20.0f;
}

float bandGainDb(float value)
{
    return 36.0f * value - 18.0f;
}

float bandQ(float value)
{
    const float logMin = std::log10(kQMin);
    const float logMax = std::log10(kQMax);
    return std::pow(10.0f, logMin + value * (logMax - logMin));
}

float normalisedQ(float q)
{
    const float logMin = std::log10(kQMin);
    const float logMax = std::log10(kQMax);
    return (std::log10(q) - logMin) / (logMax - logMin);
}

int filterTypeCode(float value)
{
    return roundHalfUp(20.0f * value);
}

int channelMode(float value)
{
    return roundHalfUp(4.0f * value);
}

int soloBand(float value)
{
    return roundHalfUp(12.0f * value);
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
