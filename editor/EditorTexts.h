#pragma once

#include <array>
#include <string>

namespace velmoran::editor
{

// The title line the status line shows when no message is up.
const std::string& titleLine();

// The filter type's name in the band info box and the status line; "[ --- ]" for a code that
// names no filter.
const char* filterTypeLabel(int code);
// The filter type's entry in the band menu (codes 1..11), null for other codes.
const char* filterMenuLabel(int code);
// The 16 x 16 icon of a band menu entry (codes 1..11, and 0 for "Delete"), 0 for other codes.
int filterMenuIcon(int code);

// The switches whose changes the status line reports.
enum class SwitchKind
{
    Effect,
    Spectrum,
    SpectrumSlope,
    SpectrumSource,
    Polarity,
};

// The status text of a switch at a normalised value (on from 0.5).
const char* switchStatusText(SwitchKind kind, float value);
// The status text of an automatic-lock mode (0 off, 1 armed, 2 frequency, 3 gain).
const char* autoLockText(unsigned mode);

// The status text of a band's channel mode 0..2: "Both Channels", "Left Channel", "Right Channel".
const char* channelModeText(int mode);
// The output gain readout, "Output Gain %+.1f dB".
std::string outputGainText(float gainDb);
// The input gain readout, "Input Gain %+.1f dB".
std::string inputGainText(float gainDb);
// The two lines of the zoom readout.
std::array<std::string, 2> zoomTexts(float zoom);
// The five lines of the hint shown after every filter was cleared.
const std::array<const char*, 5>& settingsClearedHint();

// What the band info box shows of one band.
struct BandDisplay
{
    float frequencyHz = 1000.0f;
    float q = 1.0f;
    float gainDb = 0.0f;
    int typeCode = 0;
    int highlightCode = -1; // 0 highlights the state line, 1 the gain line, 2 the type line
    int soloBand = 0;       // the solo parameter's band number, 0 for none
    int bandIndex = 0;      // 0..9
    bool on = true;
};

// The band info box's five lines; a line the band does not have is empty.
struct BandInfoLines
{
    static constexpr int kLineCount = 5;
    // The last line: "On", "Off" or "Solo", beside the power icon.
    static constexpr int kStateLine = 4;
    std::array<std::string, kLineCount> texts;
    std::array<bool, kLineCount> highlighted{};
};

// The info box lines of a band: frequency, Q (or the shelf and slope value), gain, type, state.
BandInfoLines bandInfoLines(const BandDisplay& band);
// The Q shown for shelves and passes: the control's 0.3..5 range on the 0.7..1.4 scale.
float shownResonance(float q);

} // namespace velmoran::editor
