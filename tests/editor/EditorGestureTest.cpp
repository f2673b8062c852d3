// How the screen's gestures begin and end as a host sees them: every begin gets its end, whatever
// takes the mouse away, and each gesture leaves behind only what the user asked for.

#include "FakeEditorContext.h"

#include "editor/BandSettings.h"
#include "editor/EditorScreen.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

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

class EditorGestureTest : public ::testing::Test
{
protected:
    EditorGestureTest() : screen(std::make_unique<EditorScreen>(context, 48000.0f)) { screen->synchronise(); }

    std::pair<float, float> handle(int band) const
    {
        return {screen->graph().slot(band).handleX, screen->graph().slot(band).handleY};
    }
    std::pair<float, float> centreOf(const Widget& widget) const
    {
        return {widget.bounds().x + widget.bounds().width / 2.0f,
                widget.bounds().y + widget.bounds().height / 2.0f};
    }
    // An empty spot of the plot, away from every handle of the default program.
    std::pair<float, float> emptySpot() const
    {
        return {screen->graph().plotRect().x + 40.0f, screen->graph().yForGain(-12.0f)};
    }

    int bandsInUse() const
    {
        int count = 0;
        for (int band = 0; band < kBandCount; ++band)
            count += screen->band(band).inUse() ? 1 : 0;
        return count;
    }

    FakeEditorContext context;
    std::unique_ptr<EditorScreen> screen;
};

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

class LostGestureTest : public EditorGestureTest, public ::testing::WithParamInterface<LostGesture>
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

INSTANTIATE_TEST_SUITE_P(AllPressesAndLosses, LostGestureTest,
                         ::testing::Values(LostGesture{Press::BandHandle, Loss::PointerLost},
                                           LostGesture{Press::BandHandle, Loss::MoveWithoutButton},
                                           LostGesture{Press::BandHandle, Loss::ScreenClosed},
                                           LostGesture{Press::EmptyPlot, Loss::PointerLost},
                                           LostGesture{Press::EmptyPlot, Loss::MoveWithoutButton},
                                           LostGesture{Press::EmptyPlot, Loss::ScreenClosed},
                                           LostGesture{Press::Switch, Loss::PointerLost},
                                           LostGesture{Press::Switch, Loss::MoveWithoutButton}));

// A double-click on a band that was there before resets it to 0 dB and Q 1.
TEST_F(EditorGestureTest, DoubleClickOnAnExistingBandResetsIt)
{
    const auto [x, y] = handle(5);
    screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
    screen->mouseMove(x, y - 40.0f, kNoModifiers);
    screen->mouseUp(x, y - 40.0f, MouseButton::Left, kNoModifiers);
    ASSERT_GT(screen->band(5).gainDb(), 1.0f);
    const auto [movedX, movedY] = handle(5);
    screen->mouseDown(movedX, movedY, MouseButton::Left, kNoModifiers);
    screen->mouseUp(movedX, movedY, MouseButton::Left, kNoModifiers);
    screen->doubleClick(movedX, movedY, kNoModifiers);
    screen->mouseUp(movedX, movedY, MouseButton::Left, kNoModifiers);
    EXPECT_NEAR(screen->band(5).gainDb(), 0.0f, 1e-3f);
    EXPECT_NEAR(screen->band(5).qValue(), 1.0f, 1e-3f);
}

enum class LetGo
{
    DragReleased,
    ClickReleased,
    DeletedWithTheKey,
    WheelTurned,
    MenuDismissed
};

class LetGoTest : public EditorGestureTest, public ::testing::WithParamInterface<LetGo>
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
        screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
        screen->mouseUp(x, y, MouseButton::Left, kNoModifiers);
        break;
    case LetGo::DeletedWithTheKey:
        screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
        screen->mouseUp(x, y, MouseButton::Left, kNoModifiers);
        screen->keyDown(keys::kDelete, kNoModifiers);
        break;
    case LetGo::WheelTurned:
        screen->mouseDown(x, y, MouseButton::WheelUp, kNoModifiers);
        screen->mouseUp(x, y, MouseButton::WheelUp, kNoModifiers);
        break;
    case LetGo::MenuDismissed:
        screen->mouseDown(x, y, MouseButton::Right, kNoModifiers);
        screen->mouseUp(x, y, MouseButton::Right, kNoModifiers);
        ASSERT_EQ(screen->openMenuBand(), 5);
        screen->mouseDown(x - 200.0f, y, MouseButton::Left, kNoModifiers);
        screen->mouseUp(x - 200.0f, y, MouseButton::Left, kNoModifiers);
        break;
    }
    for (int tick = 0; tick < 200; ++tick)
        screen->tick();
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

class WheelSeriesTest : public EditorGestureTest, public ::testing::WithParamInterface<WheelSeries>
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

class KeyUseTest : public EditorGestureTest, public ::testing::WithParamInterface<KeyUse>
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
        screen->mouseDown(x, y, MouseButton::Left, kNoModifiers);
        screen->mouseUp(x, y, MouseButton::Left, kNoModifiers);
        break;
    case KeyState::MenuOpen:
        screen->mouseDown(x, y, MouseButton::Right, kNoModifiers);
        screen->mouseUp(x, y, MouseButton::Right, kNoModifiers);
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
constexpr int kLetterS = 'S';

INSTANTIATE_TEST_SUITE_P(
    States, KeyUseTest,
    ::testing::Values(
        KeyUse{KeyState::NothingSelected, keys::kDelete, false},
        KeyUse{KeyState::NothingSelected, keys::kLeft, false},
        KeyUse{KeyState::NothingSelected, kSpace, false}, KeyUse{KeyState::BandSelected, keys::kDelete, true},
        KeyUse{KeyState::BandSelected, keys::kLeft, true}, KeyUse{KeyState::BandSelected, keys::kUp, true},
        KeyUse{KeyState::BandSelected, kSpace, false}, KeyUse{KeyState::BandSelected, kLetterS, false},
        KeyUse{KeyState::BandSelected, keys::kEscape, false}, KeyUse{KeyState::MenuOpen, keys::kDown, true},
        KeyUse{KeyState::MenuOpen, keys::kEscape, true}, KeyUse{KeyState::MenuOpen, kSpace, false},
        KeyUse{KeyState::Dragging, keys::kDelete, false}, KeyUse{KeyState::Dragging, kSpace, false}));

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
