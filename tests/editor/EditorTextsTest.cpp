#include "editor/EditorTexts.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace velmoran::editor
{
namespace
{

struct SwitchCase
{
    SwitchKind kind;
    float value;
    const char* text;
};

class SwitchTexts : public ::testing::TestWithParam<SwitchCase>
{
};

// A switch reads on from exactly 0.5; the "on" texts keep their padding blanks.
TEST_P(SwitchTexts, SayWhatTheSwitchDoes)
{
    EXPECT_STREQ(switchStatusText(GetParam().kind, GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    EveryText, SwitchTexts,
    ::testing::Values(SwitchCase{SwitchKind::Effect, 0.5f, "Effect : In "},
                      SwitchCase{SwitchKind::Effect, 0.4999f, "Effect : Out"},
                      SwitchCase{SwitchKind::Spectrum, 1.0f, "FFT : On "},
                      SwitchCase{SwitchKind::Spectrum, 0.0f, "FFT : Off"},
                      SwitchCase{SwitchKind::SpectrumSlope, 0.5f, "FFT Slope : 3dB / oct "},
                      SwitchCase{SwitchKind::SpectrumSlope, 0.2f, "FFT Slope : Flat"},
                      SwitchCase{SwitchKind::SpectrumSource, 0.99f, "FFT Source : Output "},
                      SwitchCase{SwitchKind::SpectrumSource, 0.0f, "FFT Source : Input"},
                      SwitchCase{SwitchKind::Polarity, 0.5f, "Polarity : Inverted"},
                      SwitchCase{SwitchKind::Polarity, 0.0f, "Polarity : Normal"}));

BandDisplay band(float hz, int code, float q = 1.0f, float gainDb = 4.0f)
{
    BandDisplay display;
    display.frequencyHz = hz;
    display.typeCode = code;
    display.q = q;
    display.gainDb = gainDb;
    return display;
}

// Each text as it is shown, blanks included. Frequencies turn to kilohertz at 1000 Hz; shelves and
// passes show their resonance on the 0.70..1.40 scale and passes no gain; the info box and the menu
// name the passes differently, and a code outside 1..11 shows the placeholder.
TEST(EditorTexts, ReadAsShown)
{
    const std::pair<std::string, std::string> texts[] = {
        {titleLine(), "Varnholt Ltd  :  Velmoran  V3.1.4"},
        {outputGainText(-3.04f), "Output Gain -3.0 dB"},
        {outputGainText(0.0f), "Output Gain +0.0 dB"},
        {zoomTexts(1.5f)[0], " Zoom "},
        {zoomTexts(1.5f)[1], " X 1.5 "},
        {autoLockText(0), "Auto Lock:  Off"},
        {autoLockText(1), "Auto Lock:  ---"},
        {autoLockText(2), "Auto Lock:  Freq"},
        {autoLockText(3), "Auto Lock:  Gain"},
        {settingsClearedHint()[1], std::string(18, ' ')},
        {settingsClearedHint()[4], std::string(19, ' ')},
        {filterTypeLabel(9), "LowPass"},
        {filterMenuLabel(9), "Low Pass"},
        {filterTypeLabel(10), "HighPass"},
        {filterMenuLabel(10), "High Pass"},
        {filterTypeLabel(6), "Peak: Asym Inv"},
        {filterTypeLabel(12), "[ --- ]"},
        {filterTypeLabel(0), "[ --- ]"},
        {bandInfoLines(band(999.9f, 2)).texts[0], "Freq 999.9 Hz"},
        {bandInfoLines(band(1000.0f, 2)).texts[0], "Freq 1.0 kHz"},
        {bandInfoLines(band(16000.0f, 2)).texts[0], "Freq 16.0 kHz"},
        {bandInfoLines(band(500.0f, 9, 0.3f, 12.0f)).texts[1], "Q 0.70"},
        {bandInfoLines(band(500.0f, 9, 5.0f, 12.0f)).texts[1], "Q 1.40"},
        {bandInfoLines(band(500.0f, 9, 1.0f, 12.0f)).texts[2], "Gain 0.0 dB"},
        {bandInfoLines(band(500.0f, 11, 1.0f, -7.0f)).texts[2], "Gain 0.0 dB"},
        {bandInfoLines(band(500.0f, 11, 2.5f)).texts[1], "Q 2.5"},
        {bandInfoLines(band(500.0f, 7, 1.0f, -7.25f)).texts[2], "Gain -7.2 dB"},
        {bandInfoLines(band(500.0f, 1)).texts[1], ""},
        {bandInfoLines(band(500.0f, 12)).texts[3], "[ --- ]"},
    };
    for (const auto& [shown, expected] : texts)
        EXPECT_EQ(shown, expected);
    EXPECT_EQ(filterMenuLabel(12), nullptr);
    EXPECT_EQ(filterMenuIcon(0), 143);
    EXPECT_EQ(filterMenuIcon(7), 138);
}

// Solo 3 names the band at index 2; every other band shows its own state.
TEST(BandInfoBox, SoloMarksOnlyItsBand)
{
    for (int index = 0; index < 10; ++index)
    {
        BandDisplay display = band(500.0f, 2);
        display.bandIndex = index;
        display.soloBand = 3;
        display.on = index != 5;
        const BandInfoLines lines = bandInfoLines(display);
        const char* expected = index == 2 ? "Solo" : index == 5 ? "Off" : "On";
        EXPECT_EQ(lines.texts[4], expected) << "band index " << index;
        EXPECT_EQ(lines.highlighted[4], index == 2);
    }
}

TEST(BandInfoBox, HighlightCodePicksStateGainOrTypeLine)
{
    const int expectedLine[] = {4, 2, 3};
    for (int code = 0; code < 3; ++code)
    {
        BandDisplay display = band(500.0f, 2);
        display.highlightCode = code;
        const BandInfoLines lines = bandInfoLines(display);
        for (int line = 0; line < BandInfoLines::kLineCount; ++line)
            EXPECT_EQ(lines.highlighted[static_cast<size_t>(line)], line == expectedLine[code]);
    }
    BandDisplay none = band(500.0f, 2);
    none.highlightCode = 3;
    for (bool lit : bandInfoLines(none).highlighted)
        EXPECT_FALSE(lit);
}

} // namespace
} // namespace velmoran::editor
