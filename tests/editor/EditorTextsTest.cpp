#include "editor/EditorTexts.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace velmoran::editor
{
namespace
{

BandDisplay band(float hz, int code, float q = 1.0f, float gainDb = 4.0f)
{
    BandDisplay display;
    display.frequencyHz = hz;
    display.typeCode = code;
    display.q = q;
    display.gainDb = gainDb;
    return display;
}

// Each text as it is shown, blanks included. A switch reads on from exactly 0.5; frequencies turn to
// kilohertz at 1000 Hz; shelves and passes show their resonance on the 0.70..1.40 scale and passes
// no gain; a code outside 1..11 shows the placeholder.
TEST(EditorTexts, ReadAsShown)
{
    const std::pair<std::string, std::string> texts[] = {
        {switchStatusText(SwitchKind::Effect, 0.5f), "Effect : In "},
        {switchStatusText(SwitchKind::Effect, 0.4999f), "Effect : Out"},
        {switchStatusText(SwitchKind::SpectrumSlope, 0.2f), "FFT Slope : Flat"},
        {switchStatusText(SwitchKind::SpectrumSource, 0.99f), "FFT Source : Output "},
        {outputGainText(0.0f), "Output Gain +0.0 dB"},
        {filterTypeLabel(12), "[ --- ]"},
        {filterTypeLabel(0), "[ --- ]"},
        {bandInfoLines(band(999.9f, 2)).texts[0], "Freq 999.9 Hz"},
        {bandInfoLines(band(1000.0f, 2)).texts[0], "Freq 1.0 kHz"},
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

} // namespace
} // namespace velmoran::editor
