// The Linux editor driven as a user drives it: real pointer input through XTest on the virtual
// display, delivered by the host's run loop, with a host's component handler recording every edit
// in its order.

// GoogleTest comes before the X11 headers, whose macros (None, Bool) would rename its types.
#include <gtest/gtest.h>

#include "X11TestWindow.h"

#include "editor/CPlugEditorView.h"
#include "editor/EditorScreen.h"
#include "editor/HostKeys.h"
#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXObject.h"
#include "editor/mbx/MBXWindow.h"
#include "platform/window/WindowKit.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "tools/editor_host/PollRunLoop.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <string>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editor::EditorScreen;
using velmoran::editorhost::PollRunLoop;
using velmoran::platform::CPlatformWindows;
using velmoran::test::X11TestWindow;

namespace
{

// A host's handler that keeps every edit call as "begin 22", "perform 22", "end 22".
class RecordingHandler : public FObject, public IComponentHandler
{
public:
    tresult PLUGIN_API beginEdit(ParamID id) override { return record("begin", id); }
    tresult PLUGIN_API performEdit(ParamID id, ParamValue) override { return record("perform", id); }
    tresult PLUGIN_API endEdit(ParamID id) override { return record("end", id); }
    tresult PLUGIN_API restartComponent(int32) override { return kResultOk; }

    // The calls for one tag, in order, with the repeated performs folded into one "perform...".
    std::string gestureOf(ParamID id) const
    {
        std::string calls;
        const std::string suffix = " " + std::to_string(id);
        for (const std::string& call : log)
        {
            if (call.size() <= suffix.size() ||
                call.compare(call.size() - suffix.size(), suffix.size(), suffix) != 0)
                continue;
            std::string name = call.substr(0, call.size() - suffix.size());
            if (name == "perform")
            {
                name = "perform...";
                if (calls.size() >= name.size() &&
                    calls.compare(calls.size() - name.size(), name.size(), name) == 0)
                    continue;
            }
            calls += (calls.empty() ? "" : " ") + name;
        }
        return calls;
    }

    bool ended(ParamID id) const
    {
        const std::string gesture = gestureOf(id);
        return gesture.size() >= 3 && gesture.compare(gesture.size() - 3, 3, "end") == 0;
    }

    std::vector<std::string> log;

    OBJ_METHODS(RecordingHandler, FObject)
    DEFINE_INTERFACES
    DEF_INTERFACE(IComponentHandler)
    END_DEFINE_INTERFACES(FObject)
    REFCOUNT_METHODS(FObject)

private:
    tresult record(const char* call, ParamID id)
    {
        log.push_back(std::string(call) + " " + std::to_string(id));
        return kResultOk;
    }
};

int acceptBox(const MBXObject&)
{
    return 0;
}

double value(CPlugController& controller, ParamID tag)
{
    return controller.getParamNormalized(tag);
}

class EditorInputX11 : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        velmoran::test::keepGlDriverLoaded();
        CPlatformWindows::instance(true);
        MBXManager::instance().setPresenter(acceptBox);
    }
    static void TearDownTestSuite()
    {
        MBXManager::instance().setPresenter(nullptr);
        CPlatformWindows::release();
    }

    void SetUp() override
    {
        ASSERT_TRUE(host.valid()) << "no X display";
        controller = static_cast<CPlugController*>(
            static_cast<IEditController*>(CPlugController::createInstance(nullptr)));
        controller->initialize(&hostApplication);
        controller->setComponentHandler(handler);
        view = owned(static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor)));
        view->setFrame(runLoop);
        ASSERT_EQ(view->attached(host.parent(), kPlatformTypeX11EmbedWindowID), kResultOk);
        ASSERT_TRUE(view->isOpen());
        // The first paint has happened once the window shows more than its black background.
        ASSERT_TRUE(runLoop->runUntil(
            [this] {
                return host.distinctColours(
                           CPlatformWindows::instance(false)->windowHandle(view->windowSlot())) > 16;
            }));
    }
    void TearDown() override
    {
        view->removed();
        view->setFrame(nullptr);
        view = nullptr;
        controller->terminate();
        controller->release();
    }

    EditorScreen& screen() { return *view->screen(); }

    // The host window lies at the root's origin, so window pixels are screen pixels.
    void moveTo(int x, int y) { XTestFakeMotionEvent(host.display(), -1, x, y, 0); }
    void button(unsigned number, bool press) { XTestFakeButtonEvent(host.display(), number, press, 0); }
    void click(unsigned number, int x, int y)
    {
        moveTo(x, y);
        button(number, true);
        button(number, false);
    }
    // Sends what was faked and lets the host's loop deliver it until `done` holds.
    bool deliver(const std::function<bool()>& done)
    {
        XSync(host.display(), False);
        return runLoop->runUntil(done);
    }
    void handleOf(int band, int& x, int& y)
    {
        x = static_cast<int>(screen().graph().slot(band).handleX + 0.5f);
        y = static_cast<int>(screen().graph().slot(band).handleY + 0.5f);
    }

    X11TestWindow host;
    IPtr<PollRunLoop> runLoop = owned(new PollRunLoop);
    HostApplication hostApplication;
    IPtr<RecordingHandler> handler = owned(new RecordingHandler());
    CPlugController* controller = nullptr;
    IPtr<CPlugEditorView> view;
};

// Dragging band 6's handle writes "06 Freq" and "06 Gain" as one gesture each.
TEST_F(EditorInputX11, DragOfHandleIsOneGesturePerParameter)
{
    int x = 0;
    int y = 0;
    handleOf(5, x, y);
    moveTo(x, y);
    button(1, true);
    for (int step = 1; step <= 6; ++step)
        moveTo(x + 12 * step, y - 9 * step);
    button(1, false);
    ASSERT_TRUE(deliver([this] { return handler->ended(gainTag(6)) && handler->ended(frequencyTag(6)); }));
    EXPECT_EQ(handler->gestureOf(frequencyTag(6)), "begin perform... end");
    EXPECT_EQ(handler->gestureOf(gainTag(6)), "begin perform... end");
    EXPECT_GT(bandFrequencyHz(static_cast<float>(value(*controller, frequencyTag(6)))), 1200.0f);
    EXPECT_GT(bandGainDb(static_cast<float>(value(*controller, gainTag(6)))), 2.0f);
}

struct WheelCase
{
    unsigned button;
    bool raisesQ;
};

class EditorInputX11Wheel : public EditorInputX11, public ::testing::WithParamInterface<WheelCase>
{
};

// One wheel step is one Windows notch: button 4 widens Q, button 5 narrows it, one gesture a step.
TEST_P(EditorInputX11Wheel, StepOnBandChangesQ)
{
    const double before = value(*controller, qTag(6));
    int x = 0;
    int y = 0;
    handleOf(5, x, y);
    click(GetParam().button, x, y);
    ASSERT_TRUE(deliver([this] { return handler->ended(qTag(6)); }));
    EXPECT_EQ(value(*controller, qTag(6)) > before, GetParam().raisesQ);
    EXPECT_EQ(handler->gestureOf(qTag(6)), "begin perform... end");
}

INSTANTIATE_TEST_SUITE_P(Buttons, EditorInputX11Wheel,
                         ::testing::Values(WheelCase{4, true}, WheelCase{5, false}));

TEST_F(EditorInputX11, RightClickOpensTheBandMenu)
{
    int x = 0;
    int y = 0;
    handleOf(5, x, y);
    click(3, x, y);
    EXPECT_TRUE(deliver([this] { return screen().openMenuBand() == 5; }));
}

// Two quick presses on a handle are a double-click, which puts the band's gain back to 0 dB.
TEST_F(EditorInputX11, DoubleClickOnHandleResetsTheBand)
{
    controller->setParamNormalized(gainTag(6), 0.75);
    ASSERT_TRUE(deliver([] { return true; }));
    int x = 0;
    int y = 0;
    handleOf(5, x, y);
    click(1, x, y);
    click(1, x, y);
    EXPECT_TRUE(deliver([this] { return value(*controller, gainTag(6)) == 0.5; }));
}

// Keys come from the host through the view: with band 6 clicked, Right moves it up a twelfth of an
// octave as one gesture; a key the editor has no use for (the space bar) goes back to the host.
TEST_F(EditorInputX11, KeysFromTheHostNudgeTheSelectedBand)
{
    int x = 0;
    int y = 0;
    handleOf(5, x, y);
    click(1, x, y);
    ASSERT_TRUE(deliver([this] { return screen().selectedBand() == 5; }));
    const double before = value(*controller, frequencyTag(6));
    EXPECT_EQ(view->onKeyDown(0, velmoran::editor::hostkeys::kRight, 0), kResultTrue);
    EXPECT_EQ(view->onKeyUp(0, velmoran::editor::hostkeys::kRight, 0), kResultTrue);
    EXPECT_GT(value(*controller, frequencyTag(6)), before);
    EXPECT_EQ(view->onKeyDown(u' ', 0, 0), kResultFalse);
}

// The host hiding its window mid-drag ends the pointer grab: every gesture is closed.
TEST_F(EditorInputX11, LostGrabEndsTheDrag)
{
    int x = 0;
    int y = 0;
    handleOf(5, x, y);
    moveTo(x, y);
    button(1, true);
    moveTo(x + 20, y - 10);
    ASSERT_TRUE(deliver([this] { return handler->gestureOf(gainTag(6)) == "begin perform..."; }));
    XUnmapWindow(host.display(), host.window());
    EXPECT_TRUE(deliver([this] { return handler->ended(gainTag(6)) && handler->ended(frequencyTag(6)); }));
    button(1, false);
    XMapWindow(host.display(), host.window());
    XSync(host.display(), False);
}

// The about box from the title button: a top-level window of its own, transient for the
// host's window, drawn while the editor goes on; the host's loop is never held.
class EditorInputX11Box : public EditorInputX11
{
protected:
    void SetUp() override
    {
        EditorInputX11::SetUp();
        MBXManager::instance().setPresenter(nullptr);
        MBXManager::instance().setWindowPresenter(presentInWindow);
    }
    void TearDown() override
    {
        EditorInputX11::TearDown();
        MBXManager::instance().setWindowPresenter(nullptr);
        MBXManager::instance().setPresenter(acceptBox);
    }

    CPlatformWindows& kit() { return *CPlatformWindows::instance(false); }

    // Clicks the title button and waits for the box's window.
    Window openAboutBox()
    {
        const auto& bounds = screen().imageButton(EditorScreen::kTitleButtonIndex).bounds();
        click(1, static_cast<int>(bounds.x + bounds.width / 2),
              static_cast<int>(bounds.y + bounds.height / 2));
        if (!deliver([this] { return kit().openWindowCount() == 2; }))
            return 0;
        for (int slot = 0; slot < CPlatformWindows::kSlotCount; ++slot)
            if (kit().slot(slot).inUse != 0 && kit().slot(slot).isBox != 0)
                return kit().windowHandle(slot);
        return 0;
    }
};

TEST_F(EditorInputX11Box, AboutBoxIsATransientWindowThatEscapeCloses)
{
    const Window box = openAboutBox();
    ASSERT_NE(box, 0u);
    Window owner = 0;
    EXPECT_NE(XGetTransientForHint(host.display(), box, &owner), 0);
    EXPECT_EQ(owner, host.window());
    EXPECT_TRUE(deliver([&] { return host.distinctColours(box) > 4; }));
    const int ticks = runLoop->ticks();
    EXPECT_TRUE(deliver([&] { return runLoop->ticks() > ticks + 2; }));

    const XWindowAttributes where = host.attributes(box);
    moveTo(where.x + where.width / 2, where.y + 4);
    const KeyCode escape = XKeysymToKeycode(host.display(), XK_Escape);
    XTestFakeKeyEvent(host.display(), escape, True, 0);
    XTestFakeKeyEvent(host.display(), escape, False, 0);
    EXPECT_TRUE(deliver([this] { return kit().openWindowCount() == 1; }));
}

TEST_F(EditorInputX11Box, BoxGoesWithTheLastEditor)
{
    ASSERT_NE(openAboutBox(), 0u);
    view->removed();
    EXPECT_EQ(kit().openWindowCount(), 0);
    ASSERT_EQ(view->attached(host.parent(), kPlatformTypeX11EmbedWindowID), kResultOk);
}

} // namespace
