#include "EditorTexts.h"

#include "plugin/Version.h"
#include "resources/ResourceIds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace velmoran::editor
{

namespace
{

constexpr int kFirstFilterCode = 1;
constexpr int kLastFilterCode = 11;

struct FilterTypeEntry
{
    const char* label;
    const char* menuLabel;
    int icon;
};

// Codes 1..11; the info box and the menu differ for the two passes.
constexpr std::array<FilterTypeEntry, 11> kFilterTypes = {{
    {"No Filter", "No Filter", resources::kIconNoFilter},
    {"Peak: dB / 2", "Peak: dB / 2", resources::kIconPeak},
    {"Peak: -3dB", "Peak: -3dB", resources::kIconPeak},
    {"Peak: +3dB", "Peak: +3dB", resources::kIconPeak},
    {"Peak: Asym", "Peak: Asym", resources::kIconPeak},
    {"Peak: Asym Inv", "Peak: Asym Inv", resources::kIconPeak},
    {"LF Shelf", "LF Shelf", resources::kIconLowShelf},
    {"HF Shelf", "HF Shelf", resources::kIconHighShelf},
    {"LowPass", "Low Pass", resources::kIconLowPass},
    {"HighPass", "High Pass", resources::kIconHighPass},
    {"Band Pass", "Band Pass", resources::kIconBandPass},
}};

bool namesFilter(int code)
{
    return code >= kFirstFilterCode && code <= kLastFilterCode;
}

std::string format(const char* pattern, double value)
{
    char text[64];
    std::snprintf(text, sizeof(text), pattern, value);
    return text;
}

bool isShelfOrPass(int code)
{
    return code >= 7 && code <= 10;
}

bool hasNoGain(int code)
{
    return code >= 9 && code <= 11;
}

} // namespace

const std::string& titleLine()
{
    // The blanks around the colons and before the version belong to the look of the line.
    static const std::string line = "Varnholt Ltd  :  Velmoran  V" VELMORAN_VERSION;
    return line;
}

const char* filterTypeLabel(int code)
{
    return namesFilter(code) ? kFilterTypes[static_cast<size_t>(code - 1)].label : "[ --- ]";
}

const char* filterMenuLabel(int code)
{
    return namesFilter(code) ? kFilterTypes[static_cast<size_t>(code - 1)].menuLabel : nullptr;
}

int filterMenuIcon(int code)
{
    if (code == 0)
        return resources::kIconDelete;
    return namesFilter(code) ? kFilterTypes[static_cast<size_t>(code - 1)].icon : 0;
}

const char* switchStatusText(SwitchKind kind, float value)
{
    // The trailing blanks pad each "on" text to the width of its partner.
    const bool on = value >= 0.5f;
    switch (kind)
    {
    case SwitchKind::Effect:
        return on ? "Effect : In " : "Effect : Out";
    case SwitchKind::Spectrum:
        return on ? "FFT : On " : "FFT : Off";
    case SwitchKind::SpectrumSlope:
        return on ? "FFT Slope : 3dB / oct " : "FFT Slope : Flat";
    case SwitchKind::SpectrumSource:
        return on ? "FFT Source : Output " : "FFT Source : Input";
    case SwitchKind::Polarity:
        return on ? "Polarity : Inverted" : "Polarity : Normal";
    }
    return "";
}

const char* autoLockText(unsigned mode)
{
    static constexpr std::array<const char*, 4> kTexts = {"Auto Lock:  Off", "Auto Lock:  ---",
                                                          "Auto Lock:  Freq", "Auto Lock:  Gain"};
    return mode < kTexts.size() ? kTexts[mode] : kTexts[0];
}

const char* channelModeText(int mode)
{
    static constexpr std::array<const char*, 3> kModes = {"Both Channels", "Left Channel", "Right Channel"};
    return kModes[static_cast<size_t>(std::clamp(mode, 0, 2))];
}

std::string outputGainText(float gainDb)
{
    return format("Output Gain %+.1f dB", gainDb);
}

std::string inputGainText(float gainDb)
{
    return format("Input Gain %+.1f dB", gainDb);
}

std::array<std::string, 2> zoomTexts(float zoom)
{
    return {" Zoom ", format(" X %.1f ", zoom)};
}

const std::array<const char*, 5>& settingsClearedHint()
{
    // The blank lines keep the box as wide as its longest line of text would make it.
    static constexpr std::array<const char*, 5> kHint = {"Settings Cleared", "                  ",
                                                         "Click and drag", "to add new filters",
                                                         "                   "};
    return kHint;
}

float shownResonance(float q)
{
    const double x = (std::log10(q) - std::log10(0.3)) / (std::log10(5.0) - std::log10(0.3));
    return static_cast<float>(std::pow(10.0, std::log10(0.7) + x * (std::log10(1.4) - std::log10(0.7))));
}

BandInfoLines bandInfoLines(const BandDisplay& band)
{
    BandInfoLines lines;
    lines.texts[0] = band.frequencyHz < 1000.0f ? format("Freq %.1f Hz", band.frequencyHz)
                                                : format("Freq %.1f kHz", band.frequencyHz / 1000.0f);
    if (band.typeCode >= 2 && band.typeCode <= 11)
        lines.texts[1] = isShelfOrPass(band.typeCode) ? format("Q %.2f", shownResonance(band.q))
                                                      : format("Q %.1f", band.q);
    lines.texts[2] =
        hasNoGain(band.typeCode) ? std::string("Gain 0.0 dB") : format("Gain %.1f dB", band.gainDb);
    lines.texts[3] = filterTypeLabel(band.typeCode);
    const bool soloed = band.soloBand == band.bandIndex + 1;
    lines.texts[BandInfoLines::kStateLine] = soloed ? "Solo" : (band.on ? "On" : "Off");
    lines.highlighted[BandInfoLines::kStateLine] = soloed;
    static constexpr std::array<int, 3> kHighlightedLine = {4, 2, 3};
    if (band.highlightCode >= 0 && band.highlightCode < 3)
        lines.highlighted[static_cast<size_t>(kHighlightedLine[static_cast<size_t>(band.highlightCode)])] =
            true;
    return lines;
}

} // namespace velmoran::editor
