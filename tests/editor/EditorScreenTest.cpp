#include "FakeEditorContext.h"
#include "RecordingPainter.h"

#include "editor/BandSettings.h"
#include "editor/EditorScreen.h"
#include "editor/EditorTexts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace velmoran::editor
{
namespace
{

using namespace Steinberg::Vst::Velmoran;
using test::FakeEditorContext;

constexpr Modifiers kNoModifiers{};

class EditorScreenTest : public ::testing::Test
{
protected:
    EditorScreenTest() : screen(context, 48000.0f) { screen.synchronise(); }

    void tick(int count)
    {
        for (int index = 0; index < count; ++index)
            screen.tick();
    }
    void click(const Widget& widget)
    {
        const float x = widget.bounds().x + widget.bounds().width / 2.0f;
        const float y = widget.bounds().y + widget.bounds().height / 2.0f;
        screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
        screen.mouseUp(x, y, MouseButton::Left, kNoModifiers);
    }
    // Where band (0..9) has its handle, in design pixels.
    std::pair<float, float> handle(int band) const
    {
        return {screen.graph().slot(band).handleX, screen.graph().slot(band).handleY};
    }
    // Sets a parameter as the host would and tells the screen.
    void hostSets(unsigned tag, double value)
    {
        context.values[tag] = value;
        screen.parameterChanged(tag, value);
    }

    FakeEditorContext context;
    EditorScreen screen;
};

// A message stays for 62 ticks, then the title returns; the line clears after 562 ticks; a new
// message starts the whole cycle again.
TEST_F(EditorScreenTest, StatusCycleReturnsToTitleThenClears)
{
    screen.postStatus("Effect : Out");
    tick(61);
    EXPECT_EQ(screen.statusText(), "Effect : Out");
    tick(1);
    EXPECT_EQ(screen.statusText(), titleLine());
    EXPECT_TRUE(screen.statusLine().visible());
    tick(499);
    EXPECT_TRUE(screen.statusLine().visible());
    tick(1);
    EXPECT_FALSE(screen.statusLine().visible());
    EXPECT_EQ(screen.titleWidget().value(), 0.0f);

    screen.postStatus("FFT : On ");
    tick(300);
    screen.postStatus("FFT : Off");
    EXPECT_EQ(screen.statusCountdown(), EditorScreen::kMessageTicks);
    tick(61);
    EXPECT_EQ(screen.statusText(), "FFT : Off");
}

struct SwitchClick
{
    int toggle;
    unsigned tag;
    const char* offText;
    const char* onText;
};

class SwitchClicks : public EditorScreenTest, public ::testing::WithParamInterface<SwitchClick>
{
};

// Each switch writes its parameter as one edit and says what it did, both ways.
TEST_P(SwitchClicks, ToggleTheirParameterAndSaySo)
{
    const SwitchClick& sw = GetParam();
    hostSets(sw.tag, 0.0);
    click(screen.toggle(sw.toggle));
    EXPECT_EQ(context.lastPerformed(sw.tag), 1.0);
    EXPECT_EQ(screen.statusText(), sw.onText);
    click(screen.toggle(sw.toggle));
    EXPECT_EQ(context.lastPerformed(sw.tag), 0.0);
    EXPECT_EQ(screen.statusText(), sw.offText);
    EXPECT_EQ(context.count("begin " + std::to_string(sw.tag)), 2);
    EXPECT_EQ(context.count("end " + std::to_string(sw.tag)), 2);
}

INSTANTIATE_TEST_SUITE_P(
    EverySwitch, SwitchClicks,
    ::testing::Values(
        SwitchClick{EditorScreen::kEffectToggle, kEqTag, "Effect : Out", "Effect : In "},
        SwitchClick{EditorScreen::kSpectrumToggle, kFftTag, "FFT : Off", "FFT : On "},
        SwitchClick{EditorScreen::kSourceToggle, kFftSourceTag, "FFT Source : Input", "FFT Source : Output "},
        SwitchClick{EditorScreen::kSlopeToggle, kFftSlopeTag, "FFT Slope : Flat", "FFT Slope : 3dB / oct "}));

TEST_F(EditorScreenTest, PolarityButtonAndLockSelector)
{
    click(screen.imageButton(EditorScreen::kPolarityButton));
    EXPECT_EQ(context.lastPerformed(kPolarityTag), 1.0);
    EXPECT_EQ(screen.statusText(), "Polarity : Inverted");
    click(screen.lockSelector());
    EXPECT_EQ(screen.statusText(), "Auto Lock:  ---");
    EXPECT_EQ(screen.graph().lockMode(), 1u);
}

// A drag of a handle is one gesture: begin at the press, values while moving, end at release.
TEST_F(EditorScreenTest, HandleDragIsOneEditPerTag)
{
    const int band = 5; // "06": a peaking band of the default program at 1 kHz
    const auto [x, y] = handle(band);
    screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
    for (int step = 1; step <= 5; ++step)
        screen.mouseMove(x + 10.0f * step, y - 8.0f * step, kNoModifiers);
    screen.mouseUp(x + 50.0f, y - 40.0f, MouseButton::Left, kNoModifiers);

    const std::string freq = std::to_string(frequencyTag(6));
    const std::string gain = std::to_string(gainTag(6));
    EXPECT_EQ(context.count("begin " + freq), 1);
    EXPECT_EQ(context.count("end " + freq), 1);
    EXPECT_EQ(context.count("begin " + gain), 1);
    EXPECT_EQ(context.count("end " + gain), 1);
    EXPECT_GE(context.count("perform " + freq), 5);
    EXPECT_EQ(context.log.front(), "begin " + freq);
    EXPECT_EQ(context.log.back(), "end " + gain);
    EXPECT_GT(bandFrequencyHz(static_cast<float>(context.lastPerformed(frequencyTag(6)))), 1100.0f);
    EXPECT_GT(bandGainDb(static_cast<float>(context.lastPerformed(gainTag(6)))), 1.0f);
    EXPECT_TRUE(screen.bandInfoBox(band).visible());
}

TEST_F(EditorScreenTest, FineDragMovesATenth)
{
    const auto [x, y] = handle(5);
    screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen.mouseMove(x, y - 50.0f, Modifiers{true});
    screen.mouseUp(x, y - 50.0f, MouseButton::Left, kNoModifiers);
    const float fineDb = bandGainDb(static_cast<float>(context.lastPerformed(gainTag(6))));
    const float coarseDb = screen.graph().gainForY(y - 50.0f) - screen.graph().gainForY(y);
    EXPECT_NEAR(fineDb, coarseDb / 10.0f, 0.05f);
}

TEST_F(EditorScreenTest, ArmedLockHoldsTheOtherAxis)
{
    click(screen.lockSelector()); // armed
    const auto [x, y] = handle(5);
    screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen.mouseMove(x + 40.0f, y - 4.0f, kNoModifiers);
    screen.mouseMove(x + 60.0f, y - 30.0f, kNoModifiers);
    EXPECT_EQ(screen.statusText(), "Auto Lock:  Freq");
    screen.mouseUp(x + 60.0f, y - 30.0f, MouseButton::Left, kNoModifiers);
    EXPECT_EQ(context.count("perform " + std::to_string(gainTag(6))), 0);
    EXPECT_EQ(screen.graph().lockMode(), 1u);
}

// Choosing "High Pass" in band 3's menu writes code 10; "Delete" frees the band, and the next
// click and drag on an empty spot takes it again.
TEST_F(EditorScreenTest, BandMenuChoosesTypeAndDeletes)
{
    hostSets(filterTypeTag(3), normalisedTypeCode(2));
    const auto [x, y] = handle(2);
    screen.mouseDown(x, y, MouseButton::Right, kNoModifiers);
    screen.mouseUp(x, y, MouseButton::Right, kNoModifiers);
    ASSERT_EQ(screen.openMenuBand(), 2);
    const PopupMenu& menu = screen.bandMenu(2);
    EXPECT_EQ(menu.title(), "Filter Function:");
    ASSERT_EQ(menu.entries().size(), 13u);
    EXPECT_TRUE(menu.entries()[11].separator);
    EXPECT_EQ(menu.entries()[12].label, "Delete");

    const auto entryCentre = [&](int code)
    {
        const float left = menu.bounds().x + menu.bounds().width / 2.0f;
        for (float top = menu.bounds().y; top < menu.bounds().bottom(); top += 1.0f)
            if (menu.entryAt(left, top) >= 0 &&
                menu.entries()[static_cast<size_t>(menu.entryAt(left, top))].code == code)
                return std::make_pair(left, top + 5.0f);
        return std::make_pair(-1.0f, -1.0f);
    };
    const auto [hx, hy] = entryCentre(10);
    screen.mouseMove(hx, hy, kNoModifiers);
    screen.mouseDown(hx, hy, MouseButton::Left, kNoModifiers);
    screen.mouseUp(hx, hy, MouseButton::Left, kNoModifiers);
    EXPECT_DOUBLE_EQ(context.lastPerformed(filterTypeTag(3)), 0.5);
    EXPECT_EQ(screen.openMenuBand(), -1);
    EXPECT_EQ(screen.bandInfoBox(2).lines()[3].text, "HighPass");

    screen.mouseDown(x, y, MouseButton::Right, kNoModifiers);
    const auto [dx, dy] = entryCentre(0);
    screen.mouseUp(dx, dy, MouseButton::Left, kNoModifiers);
    EXPECT_DOUBLE_EQ(context.lastPerformed(filterTypeTag(3)), 0.0);
    EXPECT_FALSE(screen.graph().slot(2).visible);

    const int free = screen.graph().firstFreeBand();
    ASSERT_GE(free, 0);
    const Rect plot = screen.graph().plotRect();
    screen.mouseDown(plot.x + plot.width * 0.8f, plot.y + plot.height * 0.3f, MouseButton::Left,
                     kNoModifiers);
    screen.mouseUp(plot.x + plot.width * 0.8f, plot.y + plot.height * 0.3f, MouseButton::Left, kNoModifiers);
    EXPECT_TRUE(screen.graph().slot(free).visible);
    EXPECT_EQ(BandSettings{static_cast<float>(context.values[filterTypeTag(free + 1)])}.typeCode(), 2);
}

TEST_F(EditorScreenTest, NoBandIsAddedWhenTenAreInUse)
{
    for (int number = 1; number <= kBandCount; ++number)
        hostSets(filterTypeTag(number), normalisedTypeCode(2));
    EXPECT_EQ(screen.graph().firstFreeBand(), -1);
    const size_t editsBefore = context.log.size();
    const Rect plot = screen.graph().plotRect();
    screen.mouseDown(plot.x + 5.0f, plot.y + 5.0f, MouseButton::Left, kNoModifiers);
    screen.mouseUp(plot.x + 5.0f, plot.y + 5.0f, MouseButton::Left, kNoModifiers);
    EXPECT_EQ(context.log.size(), editsBefore);
}

TEST_F(EditorScreenTest, WheelOnBandChangesQAndOnEmptyPlotZooms)
{
    const auto [x, y] = handle(5);
    const double before = context.parameter(qTag(6));
    screen.mouseDown(x, y, MouseButton::WheelUp, kNoModifiers);
    screen.mouseUp(x, y, MouseButton::WheelUp, kNoModifiers);
    EXPECT_GT(context.lastPerformed(qTag(6)), before);
    EXPECT_EQ(context.count("begin " + std::to_string(qTag(6))), 1);

    const Rect plot = screen.graph().plotRect();
    screen.mouseDown(plot.x + 40.0f, plot.bottom() - 20.0f, MouseButton::WheelUp, kNoModifiers);
    EXPECT_NEAR(screen.graph().zoom(), 1.1f, 1e-5f);
    EXPECT_TRUE(screen.zoomBox().visible());
    EXPECT_EQ(screen.zoomBox().lines()[1].text, " X 1.1 ");
}

TEST_F(EditorScreenTest, KeysNudgeAndDeleteTheSelectedBand)
{
    const auto [x, y] = handle(5);
    screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen.mouseUp(x, y, MouseButton::Left, kNoModifiers);
    screen.keyDown(keys::kUp, kNoModifiers);
    EXPECT_NEAR(bandGainDb(static_cast<float>(context.lastPerformed(gainTag(6)))), 0.5f, 1e-4f);
    screen.keyDown(keys::kRight, kNoModifiers);
    EXPECT_GT(bandFrequencyHz(static_cast<float>(context.lastPerformed(frequencyTag(6)))), 1000.0f);
    screen.keyDown(keys::kDelete, kNoModifiers);
    EXPECT_DOUBLE_EQ(context.lastPerformed(filterTypeTag(6)), 0.0);
    EXPECT_EQ(screen.selectedBand(), -1);
}

// Host automation moves the handle and shows the band's new values.
TEST_F(EditorScreenTest, HostChangeMovesHandleAndUpdatesInfoBox)
{
    hostSets(frequencyTag(6), normalisedFrequency(4000.0f));
    EXPECT_NEAR(handle(5).first, screen.graph().xForFrequency(4000.0f), 0.5f);
    EXPECT_TRUE(screen.bandInfoBox(5).visible());
    EXPECT_EQ(screen.bandInfoBox(5).lines()[0].text, "Freq 4.0 kHz");
    hostSets(gainTag(6), normalisedGain(-6.0f));
    EXPECT_NEAR(handle(5).second, screen.graph().yForGain(-6.0f), 0.5f);
    EXPECT_EQ(screen.bandInfoBox(5).lines()[2].text, "Gain -6.0 dB");
}

TEST_F(EditorScreenTest, FlatAndClearButtons)
{
    hostSets(gainTag(2), normalisedGain(9.0f));
    click(screen.toggle(EditorScreen::kFlatToggle));
    EXPECT_EQ(screen.statusText(), "EQ Set Flat");
    EXPECT_DOUBLE_EQ(context.values[gainTag(2)], 0.5);
    EXPECT_EQ(screen.toggle(EditorScreen::kFlatToggle).value(), 0.0f);

    click(screen.toggle(EditorScreen::kClearToggle));
    EXPECT_EQ(screen.statusText(), "Filters Cleared");
    for (int number = 1; number <= kBandCount; ++number)
        EXPECT_DOUBLE_EQ(context.values[filterTypeTag(number)], 0.0);
    ASSERT_TRUE(screen.hintBox().visible());
    EXPECT_EQ(screen.hintBox().lines()[0].text, "Settings Cleared");
    EXPECT_EQ(screen.hintBox().lines()[3].text, "to add new filters");
    EXPECT_EQ(screen.graph().firstFreeBand(), 0);
}

TEST_F(EditorScreenTest, OutputGainReadoutAndProgramName)
{
    hostSets(kOutputGainTag, 0.25);
    ASSERT_TRUE(screen.outputGainBox().visible());
    EXPECT_EQ(screen.outputGainBox().lines()[0].text, "Output Gain -3.0 dB");
    EXPECT_NEAR(screen.outputGainBox().bounds().x, 24.0f, 0.01f);
    hostSets(kPresetTag, 3.0 / 6.0);
    EXPECT_EQ(screen.statusText(), "Program 3");
}

// Everything the screen shows is drawn: frame images, switch faces in their state, the status line.
TEST_F(EditorScreenTest, DrawsFrameWidgetsAndStatus)
{
    hostSets(kEqTag, 1.0);
    test::RecordingPainter painter;
    screen.draw(painter);
    EXPECT_TRUE(painter.drewImage(153));
    EXPECT_TRUE(painter.drewImage(157));
    EXPECT_TRUE(painter.drewImage(129, 1));
    EXPECT_TRUE(painter.drewText("Effect : In "));
    EXPECT_FLOAT_EQ(painter.saturation, 1.0f);
    screen.setGreyedOut(true);
    screen.draw(painter);
    EXPECT_FLOAT_EQ(painter.saturation, 0.0f);
}

// While a message box is up, clicks and keys change nothing.
TEST_F(EditorScreenTest, GreyedScreenIgnoresInput)
{
    screen.setGreyedOut(true);
    click(screen.toggle(EditorScreen::kEffectToggle));
    const auto [x, y] = handle(5);
    screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen.mouseMove(x + 30.0f, y, kNoModifiers);
    screen.mouseUp(x + 30.0f, y, MouseButton::Left, kNoModifiers);
    screen.keyDown(keys::kDelete, kNoModifiers);
    EXPECT_TRUE(context.log.empty());
}

} // namespace
} // namespace velmoran::editor
