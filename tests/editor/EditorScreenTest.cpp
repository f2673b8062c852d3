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
        click(x, y);
    }
    void click(float x, float y)
    {
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

// The band menu shows which type the band has: a dot on that entry, and on the new one once changed.
TEST_F(EditorScreenTest, BandMenuMarksTheCurrentType)
{
    const auto currentCode = [this]
    {
        const PopupMenu& menu = screen.bandMenu(3);
        return menu.currentEntry() < 0 ? -1 : menu.entries()[static_cast<size_t>(menu.currentEntry())].code;
    };
    const auto [x, y] = handle(3); // band 4: "Pk dB/2" in the defaults
    screen.mouseDown(x, y, MouseButton::Right, kNoModifiers);
    screen.mouseUp(x, y, MouseButton::Right, kNoModifiers);
    ASSERT_EQ(screen.openMenuBand(), 3);
    EXPECT_EQ(currentCode(), 2);
    test::RecordingPainter painter;
    screen.draw(painter);
    const Rect menu = screen.bandMenu(3).bounds();
    int dots = 0;
    for (size_t index = 0; index < painter.rects.size(); ++index)
    {
        const Rect& r = painter.rects[index];
        dots += r.width == 6.0f && r.x > menu.x && r.right() <= menu.right() &&
                painter.rectColours[index].g == 176;
    }
    EXPECT_EQ(dots, 1);

    hostSets(filterTypeTag(4), 0.4); // "HF Shelf"
    screen.mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen.mouseUp(x, y, MouseButton::Left, kNoModifiers);
    const auto [shelfX, shelfY] = handle(3);
    screen.mouseDown(shelfX, shelfY, MouseButton::Right, kNoModifiers);
    screen.mouseUp(shelfX, shelfY, MouseButton::Right, kNoModifiers);
    EXPECT_EQ(currentCode(), 8);
}

// Entering a switch or a button names it and its state on the status line; moving within it posts
// nothing new, entering it again does.
TEST_F(EditorScreenTest, HoverNamesSwitchesAndButtons)
{
    const auto hover = [this](const Widget& widget)
    {
        screen.mouseMove(widget.bounds().x + 2.0f, widget.bounds().y + 2.0f, kNoModifiers);
        return screen.statusText();
    };
    const std::pair<int, std::string> toggles[] = {
        {EditorScreen::kEffectToggle, "Effect : In "},
        {EditorScreen::kFlatToggle, "EQ Set Flat : every gain to 0 dB"},
        {EditorScreen::kClearToggle, "Clear : remove every filter"},
        {EditorScreen::kSpectrumToggle, "FFT : Off"},
        {EditorScreen::kSourceToggle, "FFT Source : Input"},
        {EditorScreen::kSlopeToggle, "FFT Slope : 3dB / oct "}};
    for (const auto& [index, text] : toggles)
        EXPECT_EQ(hover(screen.toggle(index)), text);
    EXPECT_EQ(hover(screen.imageButton(EditorScreen::kPolarityButton)), "Polarity : Normal");
    EXPECT_EQ(hover(screen.imageButton(EditorScreen::kTitleButtonIndex)), "About Velmoran");
    EXPECT_EQ(hover(screen.lockSelector()), autoLockText(screen.graph().lockMode()));

    screen.postStatus("Band 4 Deleted");
    hover(screen.lockSelector());
    EXPECT_EQ(screen.statusText(), "Band 4 Deleted");
    screen.mouseMove(0.0f, 0.0f, kNoModifiers);
    hostSets(kFftTag, 1.0);
    EXPECT_EQ(hover(screen.toggle(EditorScreen::kSpectrumToggle)), "FFT : On ");

    const GraphSlot& output = screen.graph().slot(ResponseGraph::kOutputGainMarker);
    screen.mouseMove(output.handleX, output.handleY, kNoModifiers);
    EXPECT_EQ(screen.statusText(), "Output Gain -0.1 dB : drag up or down");
    const GraphSlot& input = screen.graph().slot(ResponseGraph::kInputGainMarker);
    screen.mouseMove(input.handleX, input.handleY, kNoModifiers);
    EXPECT_EQ(screen.statusText(), "Input Gain -0.1 dB : drag up or down");
}

TEST_F(EditorScreenTest, PolarityButtonAndLockSelector)
{
    click(screen.imageButton(EditorScreen::kPolarityButton));
    EXPECT_EQ(context.lastPerformed(kPolarityTag), 1.0);
    EXPECT_EQ(screen.statusText(), "Polarity : Inverted");
    click(screen.lockSelector());
    EXPECT_EQ(screen.statusText(), "Auto Lock:  ---");
    EXPECT_EQ(screen.graph().lockMode(), 1u);
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
