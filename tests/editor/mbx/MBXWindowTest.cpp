#include "editor/mbx/MBXWindow.h"
#include "editor/mbx/MBXAboutMessage.h"
#include "editor/mbx/MBXComposer.h"
#include "editor/mbx/MBXDialogue.h"
#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXMessage.h"
#include "platform/window/TestHostWindow.h"
#include "tools/editor_host/WindowCapture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <vector>

using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CanvasBuffer;
using velmoran::platform::CPlatformWindows;

namespace
{

// What the test does while a box is up: one step each time the box's modal loop goes idle, so
// that every step sees what the messages of the one before did.
using Step = std::function<void(HWND box)>;
std::vector<Step> gSteps;
std::size_t gNextStep = 0;

int boxSlot()
{
    const CPlatformWindows* kit = CPlatformWindows::instance(false);
    for (int slot = 0; kit != nullptr && slot < CPlatformWindows::kSlotCount; ++slot)
        if (kit->slot(slot).inUse != 0 && kit->slot(slot).isSplash != 0)
            return slot;
    return -1;
}

bool takeNextStep()
{
    const int slot = boxSlot();
    if (slot >= 0 && gNextStep < gSteps.size())
        gSteps[gNextStep++](CPlatformWindows::instance(false)->windowHandle(slot));
    return gNextStep < gSteps.size();
}

LPARAM at(const MBXRect& rect)
{
    return MAKELPARAM(rect.x + rect.width / 2, rect.y + rect.height / 2);
}

Step click(LPARAM down, LPARAM up)
{
    return [down, up](HWND box)
    {
        PostMessageA(box, WM_LBUTTONDOWN, MK_LBUTTON, down);
        PostMessageA(box, WM_LBUTTONUP, 0, up);
    };
}

Step post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    return [=](HWND box) { PostMessageA(box, message, wParam, lParam); };
}

// How many pixels of the screenshot differ from the canvas by more than a rounding.
int differingPixels(const velmoran::editorhost::Screenshot& shown, const CanvasBuffer& expected)
{
    int differing = 0;
    for (int y = 0; y < shown.height; ++y)
        for (int x = 0; x < shown.width; ++x)
            for (int channel = 0; channel < 3; ++channel)
                if (std::abs(shown.rgba[(static_cast<std::size_t>(y) * shown.width + x) * 4 + channel] -
                             expected.pixel(x, y)[channel]) > 2)
                {
                    ++differing;
                    break;
                }
    return differing;
}

struct ShownEditor : MBXEditorListener
{
    void messageBoxShown(bool shown) override { greyed = shown; }
    float displayScale() const override { return scale; }
    bool greyed = false;
    float scale = 1.0f;
};

class BoxWindow : public ::testing::Test
{
protected:
    void SetUp() override
    {
        kit = CPlatformWindows::instance(true);
        kit->setClassNames(velmoran::test::kTestToken);
        MBXManager::instance().setWindowPresenter(presentInWindow);
        MBXManager::instance().editorOpened(&editor);
    }

    void TearDown() override
    {
        MBXManager::instance().editorClosed(&editor);
        velmoran::test::closeAllWindows();
    }

    // Runs the box with the steps played inside its modal loop; the box's window must be gone
    // and its slot free when it returns.
    int runWith(MBXObject& box, std::vector<Step> steps)
    {
        gSteps = std::move(steps);
        gNextStep = 0;
        HWND seen = nullptr;
        gSteps.insert(gSteps.begin(), [&seen](HWND window) { seen = window; });
        kit->setIdleCallback(takeNextStep);
        const int chosen = box.run();
        kit->setIdleCallback(nullptr);
        EXPECT_EQ(gNextStep, gSteps.size());
        EXPECT_FALSE(IsWindow(seen));
        for (int slot = 0; slot < CPlatformWindows::kSlotCount; ++slot)
            EXPECT_EQ(kit->slot(slot).inUse, 0) << "slot " << slot;
        return chosen;
    }

    CPlatformWindows* kit = nullptr;
    ShownEditor editor;
};

// A click on a button chooses it; Return answers with the default button, Escape and closing with
// the cancel button.
TEST_F(BoxWindow, ClicksKeysAndClosingChooseAButton)
{
    MBXMessage message("Saved", "The preset was saved.");
    MBXDialogue okCancel("Reset?", "Every band goes back to its factory setting.");
    MBXDialogue yesNo("Reset?", "Every band goes back to its factory setting.", MBXDialogueButtons::kYesNo);
    const auto button = [](const MBXObject& box, int index) { return at(layoutBox(box).buttons[index]); };
    const auto clickOn = [&](const MBXObject& box, int index)
    { return click(button(box, index), button(box, index)); };
    const struct
    {
        MBXObject* box;
        std::vector<Step> steps;
        int chosen;
    } cases[] = {
        {&message, {clickOn(message, 0)}, 0},
        {&okCancel, {clickOn(okCancel, 1)}, 1},
        {&yesNo, {clickOn(yesNo, 1)}, 1},
        {&yesNo, {post(WM_KEYDOWN, VK_RETURN)}, 0},
        {&yesNo, {post(WM_KEYDOWN, VK_ESCAPE)}, 1},
        {&yesNo, {post(WM_CLOSE)}, 1},
        // Pressed on Yes but released off it, so only the Escape that follows answers.
        {&yesNo, {click(button(yesNo, 0), MAKELPARAM(2, 2)), post(WM_KEYDOWN, VK_ESCAPE)}, 1},
    };
    for (const auto& sample : cases)
        EXPECT_EQ(runWith(*sample.box, sample.steps), sample.chosen) << "case " << &sample - cases;
}

// With an editor drawn at 1.5 the box grows with it: its window is half as large again and a click
// lands on the button drawn under it.
TEST_F(BoxWindow, FollowsTheEditorsScale)
{
    editor.scale = 1.5f;
    MBXDialogue okCancel("Reset?", "Every band goes back to its factory setting.");
    const MBXBoxLayout layout = layoutBox(okCancel);
    const MBXRect cancel = layout.buttons[1];
    const LPARAM onCancel = MAKELPARAM(static_cast<int>((cancel.x + cancel.width / 2) * 1.5f),
                                       static_cast<int>((cancel.y + cancel.height / 2) * 1.5f));
    velmoran::editorhost::Screenshot shown;
    const int chosen = runWith(okCancel, {[&shown](HWND box)
                                          {
                                              UpdateWindow(box);
                                              shown = velmoran::editorhost::captureWindow(box);
                                          },
                                          click(onCancel, onCancel)});
    EXPECT_EQ(shown.width, static_cast<int>(layout.width * 1.5f + 0.5f));
    EXPECT_EQ(shown.height, static_cast<int>(layout.height * 1.5f + 0.5f));
    EXPECT_EQ(chosen, 1);
    editor.scale = 1.0f;
}

// Several moves over the link, as a real pointer makes, and the arrow still comes back off it,
// also for a thread that had no cursor before. The moves are sent, not posted, so that no move
// Wine makes for the real pointer comes between them and the look at the cursor.
TEST_F(BoxWindow, HandCursorOverTheLinkOnly)
{
    MBXAboutMessage box;
    const MBXBoxLayout layout = layoutBox(box);
    HCURSOR hand = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_HAND));
    const LPARAM onLink = at(layout.links.front());
    runWith(box, {[&](HWND window)
                  {
                      SetCursor(nullptr);
                      SendMessageA(window, WM_MOUSEMOVE, 0, onLink);
                      SendMessageA(window, WM_MOUSEMOVE, 0, onLink + 1);
                      EXPECT_EQ(GetCursor(), hand);
                      SendMessageA(window, WM_MOUSEMOVE, 0, at(layout.buttons.front()));
                      EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)));
                      PostMessageA(window, WM_KEYDOWN, VK_RETURN, 0);
                  }});
}

// A box is a borderless window of its own size, centred in the work area, while the editors are
// greyed; what the screen shows of it is the composed box, saved next to the test for a person to
// look at.
TEST_F(BoxWindow, ScreenShowsTheComposedAboutAndErrorBoxesCentred)
{
    MBXAboutMessage about;
    MBXErrorMessage error("Plug-In Editor Failed to Open", "Failed to create compatible OpenGL context.");
    const struct
    {
        MBXObject* box;
        const char* file;
    } cases[] = {{&about, "mbx-about.png"}, {&error, "mbx-error.png"}};
    RECT workArea{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &workArea, 0);
    for (const auto& sample : cases)
    {
        const MBXBoxLayout layout = layoutBox(*sample.box);
        const CanvasBuffer composed = composeBox(*sample.box, layout);
        const Step look = [&](HWND window)
        {
            RECT frame{};
            GetWindowRect(window, &frame);
            EXPECT_EQ(frame.left, (workArea.right - layout.width - workArea.left) / 2);
            EXPECT_EQ(frame.bottom - frame.top, layout.height);
            EXPECT_TRUE(IsWindowVisible(window) && editor.greyed);
            UpdateWindow(window);
            const velmoran::editorhost::Screenshot shown = velmoran::editorhost::captureWindow(window);
            ASSERT_EQ(shown.width, layout.width);
            EXPECT_EQ(differingPixels(shown, composed), 0);
            EXPECT_TRUE(saveScreenshot(shown, sample.file));
        };
        EXPECT_EQ(runWith(*sample.box, {look, post(WM_KEYDOWN, VK_RETURN)}), 0);
        EXPECT_FALSE(editor.greyed);
    }
}

} // namespace
