#include "PlugValueText.h"

#include "PlugParameters.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

const char* const kUnusedText = "[ --- ]";
const std::array<const char*, 12> kFilterTypeNames = {kUnusedText, "No Filter", "Pk dB/2",   "Peak -3dB",
                                                      "Peak +3dB", "Peak Asym", "Peak Inv",  "LF Shelf",
                                                      "HF Shelf",  "Low Pass",  "High Pass", "Band Pass"};
const std::array<const char*, 3> kModeNames = {"Stereo", "Left", "Right"};

enum class Kind
{
    none,
    effectSwitch,
    ioGain,
    filterType,
    onOff,
    frequency,
    bandGain,
    q,
    polarity,
    mode,
    solo,
};

Kind kindOf(ParamID tag)
{
    if (tag == kEqTag)
    {
        return Kind::effectSwitch;
    }
    if (tag == kInputGainTag || tag == kOutputGainTag)
    {
        return Kind::ioGain;
    }
    if (tag >= filterTypeTag(1) && tag <= filterTypeTag(kBandCount))
    {
        return Kind::filterType;
    }
    if ((tag >= kUnusedTag && tag <= kFftSlopeTag) || (tag >= enableTag(1) && tag <= enableTag(kBandCount)) ||
        tag == kHostBypassTag)
    {
        return Kind::onOff;
    }
    if (tag >= frequencyTag(1) && tag <= frequencyTag(kBandCount))
    {
        return Kind::frequency;
    }
    if (tag >= gainTag(1) && tag <= gainTag(kBandCount))
    {
        return Kind::bandGain;
    }
    if (tag >= qTag(1) && tag <= qTag(kBandCount))
    {
        return Kind::q;
    }
    if (tag == kPolarityTag)
    {
        return Kind::polarity;
    }
    if (tag >= modeTag(1) && tag <= modeTag(kBandCount))
    {
        return Kind::mode;
    }
    if (tag == kSoloTag)
    {
        return Kind::solo;
    }
    return Kind::none;
}

std::string formatted(const char* format, double number)
{
    char text[128];
    std::snprintf(text, sizeof(text), format, number);
    return text;
}

std::string trimmed(const std::string& text)
{
    const auto isBlank = [](unsigned char character) { return std::isspace(character) != 0; };
    auto begin = std::find_if_not(text.begin(), text.end(), isBlank);
    auto end = std::find_if_not(text.rbegin(), text.rend(), isBlank).base();
    return begin < end ? std::string(begin, end) : std::string();
}

bool sameText(const std::string& a, const char* b)
{
    const std::string other = trimmed(b);
    return a.size() == other.size() &&
           std::equal(a.begin(), a.end(), other.begin(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

// The number at the start of text, followed by nothing or by unit; false otherwise.
bool readNumber(const std::string& text, const char* unit, double& number)
{
    const char* start = text.c_str();
    char* end = nullptr;
    number = std::strtod(start, &end);
    if (end == start || !std::isfinite(number))
    {
        return false;
    }
    const std::string rest = trimmed(end);
    return rest.empty() || sameText(rest, unit);
}

// The index of a name in a list of names, or -1.
template <size_t count> int nameIndex(const std::string& text, const std::array<const char*, count>& names)
{
    for (size_t index = 0; index < count; ++index)
    {
        if (sameText(text, names[index]))
        {
            return static_cast<int>(index);
        }
    }
    return -1;
}

ParamValue clamped(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

} // namespace

bool valueText(ParamID tag, float value, std::string& text)
{
    switch (kindOf(tag))
    {
    case Kind::effectSwitch:
        text = isOn(value) ? "In " : "Out";
        return true;
    case Kind::ioGain:
        text = formatted("%.2f dB", ioGainDb(value));
        return true;
    case Kind::filterType:
    {
        const int code = filterTypeCode(value);
        text = code >= 1 && code <= 11 ? kFilterTypeNames[static_cast<size_t>(code)] : kUnusedText;
        return true;
    }
    case Kind::onOff:
        text = isOn(value) ? "On " : "Off";
        return true;
    case Kind::frequency:
        text = formatted("%.2f Hz", bandFrequencyHz(value));
        return true;
    case Kind::bandGain:
        text = formatted("%.2f dB", bandGainDb(value));
        return true;
    case Kind::q:
        text = formatted("%.2f", bandQ(value));
        return true;
    case Kind::polarity:
        text = isOn(value) ? "Inverted" : "Normal ";
        return true;
    case Kind::mode:
    {
        const int mode = channelMode(value);
        text = mode >= 0 && mode <= 2 ? kModeNames[static_cast<size_t>(mode)] : kUnusedText;
        return true;
    }
    case Kind::solo:
    {
        const int band = soloBand(value);
        // The solo text keeps its trailing newline: the editor's band label relies on it.
        char digits[16];
        std::snprintf(digits, sizeof(digits), "%02d\n", band);
        text = band == 0 ? std::string("None") : std::string(digits);
        return true;
    }
    case Kind::none:
        break;
    }
    return false;
}

bool valueFromText(ParamID tag, const std::string& rawText, ParamValue& value)
{
    const std::string text = trimmed(rawText);
    double number = 0.0;
    switch (kindOf(tag))
    {
    case Kind::effectSwitch:
        if (sameText(text, "In") || sameText(text, "Out"))
        {
            value = sameText(text, "In") ? 1.0 : 0.0;
            return true;
        }
        return false;
    case Kind::onOff:
        if (sameText(text, "On") || sameText(text, "Off"))
        {
            value = sameText(text, "On") ? 1.0 : 0.0;
            return true;
        }
        return false;
    case Kind::polarity:
        if (sameText(text, "Normal") || sameText(text, "Inverted"))
        {
            value = sameText(text, "Inverted") ? 1.0 : 0.0;
            return true;
        }
        return false;
    case Kind::ioGain:
        if (!readNumber(text, "dB", number))
        {
            return false;
        }
        value = clamped((number + 6.0) / 12.0);
        return true;
    case Kind::frequency:
        if (!readNumber(text, "Hz", number))
        {
            return false;
        }
        value = clamped((number - 20.0) / 19980.0);
        return true;
    case Kind::bandGain:
        if (!readNumber(text, "dB", number))
        {
            return false;
        }
        value = clamped((number + 18.0) / 36.0);
        return true;
    case Kind::q:
        if (!readNumber(text, "", number))
        {
            return false;
        }
        value = clamped(normalisedQ(static_cast<float>(std::clamp(number, 0.3, 5.0))));
        return true;
    case Kind::filterType:
    {
        const int code = nameIndex(text, kFilterTypeNames);
        if (code < 0)
        {
            return false;
        }
        value = code / 20.0;
        return true;
    }
    case Kind::mode:
    {
        const int mode = nameIndex(text, kModeNames);
        if (mode < 0)
        {
            return false;
        }
        value = mode / 4.0;
        return true;
    }
    case Kind::solo:
        if (sameText(text, "None"))
        {
            value = 0.0;
            return true;
        }
        if (!readNumber(text, "", number) || number < 0.0 || number > 12.0)
        {
            return false;
        }
        value = std::floor(number + 0.5) / 12.0;
        return true;
    case Kind::none:
        break;
    }
    return false;
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
