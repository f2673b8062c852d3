// The editor's screen as a host and a user see it: what its clicks, drags, wheel and keys edit, what
// the status line says, and how gestures begin and end: every begin gets its end, whatever takes the
// mouse away, and each gesture leaves behind only what the user asked for.

#include "FakeEditorContext.h"
#include "RecordingPainter.h"

#include "editor/BandSettings.h"
#include "editor/EditorScreen.h"
#include "editor/EditorTexts.h"
#include "resources/ResourceIds.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace velmoran::editor
{
namespace
{

using namespace Steinberg::Vst::Velmoran;
using test::FakeEditorContext;

constexpr Modifiers kNoModifiers{};
constexpr Modifiers kButtonUp{false, true};

// Begins not yet ended, over all tags.
int openEdits(const FakeEditorContext& context)
{
    int count = 0;
    for (const std::string& call : context.log)
    {
        if (call.rfind("begin ", 0) == 0)
            ++count;
        else if (call.rfind("end ", 0) == 0)
            --count;
    }
    return count;
}

class EditorScreenTest : public ::testing::Test
{
protected:
    EditorScreenTest() : screen(std::make_unique<EditorScreen>(context, 48000.0f)) { screen->synchronise(); }

    void tick(int count)
    {
        for (int index = 0; index < count; ++index)
            screen->tick();
    }
    void click(float x, float y, MouseButton button = MouseButton::Left)
    {
        screen->mouseDown(x, y, button, kNoModifiers);
        screen->mouseUp(x, y, button, kNoModifiers);
    }
    void click(const Widget& widget)
    {
        const auto [x, y] = centreOf(widget);
        click(x, y);
    }
    static std::pair<float, float> centreOf(const Widget& widget)
    {
        return {widget.bounds().x + widget.bounds().width / 2.0f,
                widget.bounds().y + widget.bounds().height / 2.0f};
    }
    // Where band (0..9) has its handle, in design pixels.
    std::pair<float, float> handle(int band) const
    {
        return {screen->graph().slot(band).handleX, screen->graph().slot(band).handleY};
    }
    // An empty spot of the plot, away from every handle of the default program.
    std::pair<float, float> emptySpot() const
    {
        return {screen->graph().plotRect().x + 40.0f, screen->graph().yForGain(-12.0f)};
    }
    // Sets a parameter as the host would and tells the screen.
    void hostSets(unsigned tag, double value)
    {
        context.values[tag] = value;
        screen->parameterChanged(tag, value);
    }

    FakeEditorContext context;
    std::unique_ptr<EditorScreen> screen;
};

// A message stays for 62 ticks, then the title returns; the line clears after 562 ticks; a new
// message starts the whole cycle again.
TEST_F(EditorScreenTest, StatusCycleReturnsToTitleThenClears)
{
    screen->postStatus("Effect : Out");
    tick(61);
    EXPECT_EQ(screen->statusText(), "Effect : Out");
    test::RecordingPainter painter;
    screen->draw(painter);
    EXPECT_TRUE(painter.drewText("Effect : Out"));
    tick(1);
    EXPECT_EQ(screen->statusText(), titleLine());
    EXPECT_TRUE(screen->statusLine().visible());
    tick(499);
    EXPECT_TRUE(screen->statusLine().visible());
    tick(1);
    EXPECT_FALSE(screen->statusLine().visible());
    EXPECT_EQ(screen->titleWidget().value(), 0.0f);

    screen->postStatus("FFT : On ");
    tick(300);
    screen->postStatus("FFT : Off");
    EXPECT_EQ(screen->statusCountdown(), EditorScreen::kMessageTicks);
    tick(61);
    EXPECT_EQ(screen->statusText(), "FFT : Off");
}

// The band menu shows which type the band has, and the new one once changed.
TEST_F(EditorScreenTest, BandMenuMarksTheCurrentType)
{
    const auto currentCode = [this]
    {
        const PopupMenu& menu = screen->bandMenu(3);
        return menu.currentEntry() < 0 ? -1 : menu.entries()[static_cast<size_t>(menu.currentEntry())].code;
    };
    const auto [x, y] = handle(3); // band 4: "Pk dB/2" in the defaults
    click(x, y, MouseButton::Right);
    ASSERT_EQ(screen->openMenuBand(), 3);
    EXPECT_EQ(currentCode(), 2);

    hostSets(filterTypeTag(4), 0.4); // "HF Shelf"
    click(x, y);
    const auto [shelfX, shelfY] = handle(3);
    click(shelfX, shelfY, MouseButton::Right);
    EXPECT_EQ(currentCode(), 8);
}

// Entering a switch or a button names it and its state on the status line; moving within it posts
// nothing new, entering it again does.
TEST_F(EditorScreenTest, HoverNamesSwitchesAndButtons)
{
    const auto hover = [this](const Widget& widget)
    {
        screen->mouseMove(widget.bounds().x + 2.0f, widget.bounds().y + 2.0f, kNoModifiers);
        return screen->statusText();
    };
    const std::pair<int, std::string> toggles[] = {
        {EditorScreen::kEffectToggle, "Effect : In "},
        {EditorScreen::kFlatToggle, "EQ Set Flat : every gain to 0 dB"},
        {EditorScreen::kClearToggle, "Clear : remove every filter"},
        {EditorScreen::kSpectrumToggle, "FFT : Off"},
        {EditorScreen::kSourceToggle, "FFT Source : Input"},
        {EditorScreen::kSlopeToggle, "FFT Slope : 3dB / oct "}};
    for (const auto& [index, text] : toggles)
        EXPECT_EQ(hover(screen->toggle(index)), text);
    EXPECT_EQ(hover(screen->imageButton(EditorScreen::kPolarityButton)), "Polarity : Normal");
    EXPECT_EQ(hover(screen->imageButton(EditorScreen::kTitleButtonIndex)), "About Velmoran");
    EXPECT_EQ(hover(screen->lockSelector()), autoLockText(screen->graph().lockMode()));

    screen->postStatus("Band 4 Deleted");
    hover(screen->lockSelector());
    EXPECT_EQ(screen->statusText(), "Band 4 Deleted");
    screen->mouseMove(0.0f, 0.0f, kNoModifiers);
    hostSets(kFftTag, 1.0);
    EXPECT_EQ(hover(screen->toggle(EditorScreen::kSpectrumToggle)), "FFT : On ");

    const GraphSlot& output = screen->graph().slot(ResponseGraph::kOutputGainMarker);
    screen->mouseMove(output.handleX, output.handleY, kNoModifiers);
    EXPECT_EQ(screen->statusText(), "Output Gain -0.1 dB : drag up or down");
    const GraphSlot& input = screen->graph().slot(ResponseGraph::kInputGainMarker);
    screen->mouseMove(input.handleX, input.handleY, kNoModifiers);
    EXPECT_EQ(screen->statusText(), "Input Gain -0.1 dB : drag up or down");
}

TEST_F(EditorScreenTest, PolarityButtonInvertsAndSaysSo)
{
    click(screen->imageButton(EditorScreen::kPolarityButton));
    EXPECT_EQ(context.parameter(kPolarityTag), 1.0);
    EXPECT_EQ(screen->statusText(), "Polarity : Inverted");
}

TEST_F(EditorScreenTest, FineDragMovesATenth)
{
    const auto [x, y] = handle(5);
    screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen->mouseMove(x, y - 50.0f, Modifiers{true});
    screen->mouseUp(x, y - 50.0f, MouseButton::Left, kNoModifiers);
    const float fineDb = bandGainDb(static_cast<float>(context.parameter(gainTag(6))));
    const float coarseDb = screen->graph().gainForY(y - 50.0f) - screen->graph().gainForY(y);
    EXPECT_NEAR(fineDb, coarseDb / 10.0f, 0.05f);
}

TEST_F(EditorScreenTest, ArmedLockHoldsTheOtherAxis)
{
    click(screen->lockSelector());
    EXPECT_EQ(screen->statusText(), "Auto Lock:  ---");
    const auto [x, y] = handle(5);
    screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen->mouseMove(x + 40.0f, y - 4.0f, kNoModifiers);
    screen->mouseMove(x + 60.0f, y - 30.0f, kNoModifiers);
    EXPECT_EQ(screen->statusText(), "Auto Lock:  Freq");
    screen->mouseUp(x + 60.0f, y - 30.0f, MouseButton::Left, kNoModifiers);
    EXPECT_EQ(context.count("perform " + std::to_string(gainTag(6))), 0);
    EXPECT_EQ(screen->graph().lockMode(), 1u);
}

TEST_F(EditorScreenTest, NoBandIsAddedWhenTenAreInUse)
{
    for (int number = 1; number <= kBandCount; ++number)
        hostSets(filterTypeTag(number), normalisedTypeCode(2));
    EXPECT_EQ(screen->graph().firstFreeBand(), -1);
    const size_t editsBefore = context.log.size();
    const Rect plot = screen->graph().plotRect();
    click(plot.x + 5.0f, plot.y + 5.0f);
    EXPECT_EQ(context.log.size(), editsBefore);
}

// The wheel's press on the empty plot zooms and shows the zoom; on a band it changes Q (the wheel
// series below, and the X11 input test through the host's edits).
TEST_F(EditorScreenTest, WheelOnEmptyPlotZoomsAndShowsTheZoom)
{
    const Rect plot = screen->graph().plotRect();
    screen->mouseDown(plot.x + 40.0f, plot.bottom() - 20.0f, MouseButton::WheelUp, kNoModifiers);
    EXPECT_NEAR(screen->graph().zoom(), 1.1f, 1e-5f);
    EXPECT_TRUE(screen->zoomBox().visible());
    EXPECT_EQ(screen->zoomBox().lines()[1].text, " X 1.1 ");
}

TEST_F(EditorScreenTest, KeysNudgeAndDeleteTheSelectedBand)
{
    const auto [x, y] = handle(5);
    click(x, y);
    screen->keyDown(keys::kUp, kNoModifiers);
    EXPECT_NEAR(bandGainDb(static_cast<float>(context.parameter(gainTag(6)))), 0.5f, 1e-4f);
    screen->keyDown(keys::kRight, kNoModifiers);
    EXPECT_GT(bandFrequencyHz(static_cast<float>(context.parameter(frequencyTag(6)))), 1000.0f);
    screen->keyDown(keys::kDelete, kNoModifiers);
    EXPECT_DOUBLE_EQ(context.parameter(filterTypeTag(6)), 0.0);
    EXPECT_EQ(screen->selectedBand(), -1);
}

TEST_F(EditorScreenTest, FlatAndClearButtons)
{
    hostSets(gainTag(2), normalisedGain(9.0f));
    click(screen->toggle(EditorScreen::kFlatToggle));
    EXPECT_EQ(screen->statusText(), "EQ Set Flat");
    EXPECT_DOUBLE_EQ(context.values[gainTag(2)], 0.5);
    EXPECT_EQ(screen->toggle(EditorScreen::kFlatToggle).value(), 0.0f);

    click(screen->toggle(EditorScreen::kClearToggle));
    EXPECT_EQ(screen->statusText(), "Filters Cleared");
    for (int number = 1; number <= kBandCount; ++number)
        EXPECT_DOUBLE_EQ(context.values[filterTypeTag(number)], 0.0);
    ASSERT_TRUE(screen->hintBox().visible());
    EXPECT_EQ(screen->hintBox().lines()[0].text, "Settings Cleared");
    EXPECT_EQ(screen->graph().firstFreeBand(), 0);
}

TEST_F(EditorScreenTest, OutputGainReadoutAndProgramName)
{
    hostSets(kOutputGainTag, 0.25);
    ASSERT_TRUE(screen->outputGainBox().visible());
    EXPECT_EQ(screen->outputGainBox().lines()[0].text, "Output Gain -3.0 dB");
    hostSets(kPresetTag, 3.0 / 6.0);
    EXPECT_EQ(screen->statusText(), "Program 3");
}

// Switch faces show their state; while a message box is up the screen is drawn grey, and clicks and
// keys change nothing.
TEST_F(EditorScreenTest, GreyedScreenIgnoresInput)
{
    hostSets(kEqTag, 1.0);
    test::RecordingPainter painter;
    screen->draw(painter);
    EXPECT_TRUE(painter.drewImage(resources::kEffectSwitch, 1));
    EXPECT_FLOAT_EQ(painter.saturation, 1.0f);
    screen->setGreyedOut(true);
    screen->draw(painter);
    EXPECT_FLOAT_EQ(painter.saturation, 0.0f);
    click(screen->toggle(EditorScreen::kEffectToggle));
    const auto [x, y] = handle(5);
    screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen->mouseMove(x + 30.0f, y, kNoModifiers);
    screen->mouseUp(x + 30.0f, y, MouseButton::Left, kNoModifiers);
    screen->keyDown(keys::kDelete, kNoModifiers);
    EXPECT_TRUE(context.log.empty());
}

enum class Press
{
    BandHandle,
    EmptyPlot,
    Switch
};

enum class Loss
{
    PointerLost,
    MoveWithoutButton,
    ScreenClosed
};

struct LostGesture
{
    Press press;
    Loss loss;
};

class LostGestureTest : public EditorScreenTest, public ::testing::WithParamInterface<LostGesture>
{
};

// The release never arrives: the gesture ends at the loss, the handle stops following the mouse and
// a switch pressed meanwhile does not switch.
TEST_P(LostGestureTest, EndsEveryEditWithoutTheRelease)
{
    const auto [x, y] = GetParam().press == Press::BandHandle ? handle(5)
                        : GetParam().press == Press::EmptyPlot
                            ? emptySpot()
                            : centreOf(screen->toggle(EditorScreen::kEffectToggle));
    screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen->mouseMove(x + 20.0f, y - 20.0f, kNoModifiers);
    switch (GetParam().loss)
    {
    case Loss::PointerLost:
        screen->cancelGesture();
        break;
    case Loss::MoveWithoutButton:
        screen->mouseMove(x + 30.0f, y - 30.0f, kButtonUp);
        break;
    case Loss::ScreenClosed:
        screen.reset();
        EXPECT_EQ(openEdits(context), 0);
        return;
    }
    EXPECT_EQ(openEdits(context), 0);
    const size_t calls = context.log.size();
    screen->mouseMove(x + 60.0f, y - 60.0f, kNoModifiers);
    screen->mouseUp(x, y, MouseButton::Left, kNoModifiers);
    EXPECT_EQ(context.log.size(), calls) << "nothing follows the mouse once the gesture ended";
}

const LostGesture kLostGestures[] = {
    {Press::BandHandle, Loss::PointerLost},      {Press::BandHandle, Loss::MoveWithoutButton},
    {Press::BandHandle, Loss::ScreenClosed},     {Press::EmptyPlot, Loss::PointerLost},
    {Press::EmptyPlot, Loss::MoveWithoutButton}, {Press::EmptyPlot, Loss::ScreenClosed},
    {Press::Switch, Loss::PointerLost},          {Press::Switch, Loss::MoveWithoutButton}};

INSTANTIATE_TEST_SUITE_P(AllPressesAndLosses, LostGestureTest, ::testing::ValuesIn(kLostGestures));

enum class LetGo
{
    DragReleased,
    ClickReleased,
    DeletedWithTheKey,
    WheelTurned,
    MenuDismissed
};

class LetGoTest : public EditorScreenTest, public ::testing::WithParamInterface<LetGo>
{
};

// However a handle is let go, it is no longer held, and once the status cycle has cleared the
// dragged flags every highlight fades back to an eighth of its colour.
TEST_P(LetGoTest, HighlightsFadeOnceTheHandleIsLetGo)
{
    const auto [x, y] = handle(5);
    switch (GetParam())
    {
    case LetGo::DragReleased:
        screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
        screen->mouseMove(x + 20.0f, y - 20.0f, kNoModifiers);
        screen->mouseUp(x + 20.0f, y - 20.0f, MouseButton::Left, kNoModifiers);
        break;
    case LetGo::ClickReleased:
        click(x, y);
        break;
    case LetGo::DeletedWithTheKey:
        click(x, y);
        screen->keyDown(keys::kDelete, kNoModifiers);
        break;
    case LetGo::WheelTurned:
        click(x, y, MouseButton::WheelUp);
        break;
    case LetGo::MenuDismissed:
        click(x, y, MouseButton::Right);
        ASSERT_EQ(screen->openMenuBand(), 5);
        click(x - 200.0f, y);
        break;
    }
    tick(200);
    for (int slot = 0; slot < ResponseGraph::kSlotCount; ++slot)
    {
        const GraphSlot& shown = screen->graph().slot(slot);
        EXPECT_FALSE(shown.selected) << "slot " << slot;
        EXPECT_LE(shown.highlight, shown.curveColour.a / 8u) << "slot " << slot;
    }
}

INSTANTIATE_TEST_SUITE_P(EveryWay, LetGoTest,
                         ::testing::Values(LetGo::DragReleased, LetGo::ClickReleased,
                                           LetGo::DeletedWithTheKey, LetGo::WheelTurned,
                                           LetGo::MenuDismissed));

struct WheelSeries
{
    int turns;
    float steps;   // each turn's, 1 a notch
    float qChange; // normalised, over a band
    float zoom;    // over the empty plot
};

class WheelSeriesTest : public EditorScreenTest, public ::testing::WithParamInterface<WheelSeries>
{
};

// The wheel moves in proportion to its delta, and a fast series of small turns adds up to the
// same as one big one.
TEST_P(WheelSeriesTest, MovesInProportionToTheDelta)
{
    const WheelSeries& series = GetParam();
    const auto [x, y] = handle(5);
    const double qBefore = context.parameter(qTag(6));
    const auto [emptyX, emptyY] = emptySpot();
    for (int turn = 0; turn < series.turns; ++turn)
        screen->wheel(x, y, series.steps, kNoModifiers);
    for (int turn = 0; turn < series.turns; ++turn)
        screen->wheel(emptyX, emptyY, series.steps, kNoModifiers);
    EXPECT_NEAR(context.parameter(qTag(6)) - qBefore, series.qChange, 1e-5);
    EXPECT_NEAR(screen->graph().zoom(), series.zoom, 1e-5f);
}

INSTANTIATE_TEST_SUITE_P(
    Deltas, WheelSeriesTest,
    ::testing::Values(WheelSeries{1, 1.0f, 0.025f, 1.1f}, WheelSeries{4, 0.25f, 0.025f, 1.1f},
                      WheelSeries{12, 1.0f / 12.0f, 0.025f, 1.1f}, WheelSeries{1, 0.5f, 0.0125f, 1.05f},
                      WheelSeries{3, -1.0f / 3.0f, -0.025f, 1.0f}, WheelSeries{1, 3.0f, 0.075f, 1.3f}));

enum class KeyState
{
    NothingSelected,
    BandSelected,
    MenuOpen,
    Dragging
};

struct KeyUse
{
    KeyState state;
    int key;
    bool used;
};

class KeyUseTest : public EditorScreenTest, public ::testing::WithParamInterface<KeyUse>
{
};

// The editor uses the arrows and Delete only on a selected band, and the menu's keys only while a
// menu is open; every other key, and its release, is left to the host.
TEST_P(KeyUseTest, UsesOnlyItsOwnKeys)
{
    const auto [x, y] = handle(5);
    switch (GetParam().state)
    {
    case KeyState::NothingSelected:
        break;
    case KeyState::BandSelected:
        click(x, y);
        break;
    case KeyState::MenuOpen:
        click(x, y, MouseButton::Right);
        break;
    case KeyState::Dragging:
        screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
        break;
    }
    const size_t calls = context.log.size();
    EXPECT_EQ(screen->keyDown(GetParam().key, kNoModifiers), GetParam().used);
    EXPECT_EQ(screen->keyUp(GetParam().key), GetParam().used);
    if (!GetParam().used)
    {
        EXPECT_EQ(context.log.size(), calls) << "a key left to the host changes nothing";
    }
}

constexpr int kSpace = 0x20;

const KeyUse kKeyUses[] = {
    {KeyState::NothingSelected, keys::kDelete, false}, {KeyState::NothingSelected, keys::kLeft, false},
    {KeyState::NothingSelected, kSpace, false},        {KeyState::BandSelected, keys::kDelete, true},
    {KeyState::BandSelected, keys::kLeft, true},       {KeyState::BandSelected, kSpace, false},
    {KeyState::BandSelected, keys::kEscape, false},    {KeyState::MenuOpen, keys::kDown, true},
    {KeyState::MenuOpen, keys::kEscape, true},         {KeyState::MenuOpen, kSpace, false},
    {KeyState::Dragging, keys::kDelete, false},        {KeyState::Dragging, kSpace, false}};

INSTANTIATE_TEST_SUITE_P(States, KeyUseTest, ::testing::ValuesIn(kKeyUses));

// A context whose about box stays up while the host closes the editor.
class ClosingContext : public FakeEditorContext
{
public:
    void showAbout() override
    {
        FakeEditorContext::showAbout();
        whileTheBoxIsUp();
    }

    std::function<void()> whileTheBoxIsUp;
};

// The about box opens from the title's click inside the mouse-up; the host closes the editor while
// it is up, and nothing of the closed screen is touched when the box returns (AddressSanitizer
// sees to that in its build).
TEST(EditorAboutBox, AnEditorClosedWhileTheBoxIsUpIsNotTouchedAfterIt)
{
    ClosingContext context;
    auto screen = std::make_unique<EditorScreen>(context, 48000.0f);
    screen->synchronise();
    context.whileTheBoxIsUp = [&screen] { screen.reset(); };
    const Rect title = screen->titleWidget().bounds();
    EditorScreen* const shown = screen.get();
    shown->mouseDown(title.x + title.width / 2.0f, title.y + title.height / 2.0f, MouseButton::Left,
                     kNoModifiers);
    shown->mouseUp(title.x + title.width / 2.0f, title.y + title.height / 2.0f, MouseButton::Left,
                   kNoModifiers);
    EXPECT_EQ(context.aboutBoxes, 1);
    EXPECT_EQ(screen, nullptr);
}

} // namespace
} // namespace velmoran::editor
