// The Linux editor driven as a user drives it: real pointer input through XTest on the virtual
// display, delivered by the host's run loop, with a host's component handler recording every edit
// in its order and collecting them for the processor.

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
#include "plugin/Plug.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ProcessBlock.h"
#include "support/EditGestures.h"
#include "support/FilterResponse.h"
#include "support/Signals.h"
#include "tools/editor_host/PollRunLoop.h"

#include "pluginterfaces/vst/vstspeaker.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <string>
#include <utility>
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

// The processor as a host plays it: 48 kHz stereo, a quarter of a second a block.
class PlayingProcessor
{
public:
    PlayingProcessor()
    {
        mComponent->initialize(&mHost);
        SpeakerArrangement stereo = SpeakerArr::kStereo;
        ProcessSetup setup{kRealtime, kSample32, kFrames, kSampleRate};
        mProcessor->setBusArrangements(&stereo, 1, &stereo, 1);
        mProcessor->setupProcessing(setup);
        mComponent->setActive(true);
        mProcessor->setProcessing(true);
    }
    ~PlayingProcessor()
    {
        mProcessor->setProcessing(false);
        mComponent->setActive(false);
        mComponent->terminate();
    }

    // The gain in dB that a sine of hz gets once the processor has settled on these changes.
    double gainDbAt(double hz, IParameterChanges* changes)
    {
        std::vector<std::vector<float>> in(2, velmoran::testing::MakeSine(hz, kSampleRate, kFrames, 0.25));
        std::vector<std::vector<float>> out(2, std::vector<float>(kFrames));
        processBlock(mProcessor, in, out, kFrames, changes);
        processBlock(mProcessor, in, out, kFrames);
        return velmoran::testing::GainDb(in[0], out[0], kFrames / 2, kFrames);
    }

private:
    static constexpr int32 kFrames = 12000;
    static constexpr double kSampleRate = 48000.0;
    HostApplication mHost;
    IPtr<FUnknown> mPlug = owned(CPlug::createInstance(nullptr));
    FUnknownPtr<IComponent> mComponent{mPlug};
    FUnknownPtr<IAudioProcessor> mProcessor{mPlug};
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
    std::string gestureOf(ParamID tag) const { return velmoran::test::gestureOf(handler->editLog(), tag); }
    bool oneGesture(ParamID tag) const { return gestureOf(tag) == "begin perform... end"; }

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
    std::pair<int, int> handleOf(int band)
    {
        return {static_cast<int>(screen().graph().slot(band).handleX + 0.5f),
                static_cast<int>(screen().graph().slot(band).handleY + 0.5f)};
    }

    X11TestWindow host;
    IPtr<PollRunLoop> runLoop = owned(new PollRunLoop);
    HostApplication hostApplication;
    IPtr<ComponentHandler> handler = owned(new ComponentHandler());
    CPlugController* controller = nullptr;
    IPtr<CPlugEditorView> view;
};

// Dragging band 6's handle writes "06 Freq" and "06 Gain" as one gesture each; the processor, handed
// the host's edits, lifts the band's new frequency as the band's filter does.
TEST_F(EditorInputX11, DragOfHandleIsOneGesturePerParameterAndChangesTheSound)
{
    PlayingProcessor processor;
    const auto [x, y] = handleOf(5);
    moveTo(x, y);
    button(1, true);
    for (int step = 1; step <= 6; ++step)
        moveTo(x + 12 * step, y - 9 * step);
    button(1, false);
    ASSERT_TRUE(deliver([this] { return oneGesture(gainTag(6)) && oneGesture(frequencyTag(6)); }));
    const float hz = bandFrequencyHz(static_cast<float>(value(*controller, frequencyTag(6))));
    const float db = bandGainDb(static_cast<float>(value(*controller, gainTag(6))));
    EXPECT_GT(hz, 1200.0f);
    EXPECT_GT(db, 2.0f);
    // Band 6 is a half-gain peak ("Pk dB/2") in the default program.
    const float q = bandQ(static_cast<float>(value(*controller, qTag(6))));
    const double lift =
        velmoran::test::GainDbAt(velmoran::test::DesignForBand(2, hz, db, q, 48000.0f), hz, 48000.0);
    const double before = processor.gainDbAt(hz, nullptr);
    EXPECT_NEAR(processor.gainDbAt(hz, &handler->pendingChanges()) - before, lift, 0.2);
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
    const auto [x, y] = handleOf(5);
    click(GetParam().button, x, y);
    ASSERT_TRUE(deliver([this] { return oneGesture(qTag(6)); }));
    EXPECT_EQ(value(*controller, qTag(6)) > before, GetParam().raisesQ);
}

INSTANTIATE_TEST_SUITE_P(Buttons, EditorInputX11Wheel,
                         ::testing::Values(WheelCase{4, true}, WheelCase{5, false}));

TEST_F(EditorInputX11, RightClickOpensTheBandMenu)
{
    const auto [x, y] = handleOf(5);
    click(3, x, y);
    EXPECT_TRUE(deliver([this] { return screen().openMenuBand() == 5; }));
}

// Two quick presses on a handle are a double-click, which puts the band's gain back to 0 dB.
TEST_F(EditorInputX11, DoubleClickOnHandleResetsTheBand)
{
    controller->setParamNormalized(gainTag(6), 0.75);
    ASSERT_TRUE(deliver([] { return true; }));
    const auto [x, y] = handleOf(5);
    click(1, x, y);
    click(1, x, y);
    EXPECT_TRUE(deliver([this] { return value(*controller, gainTag(6)) == 0.5; }));
}

// Keys come from the host through the view: with band 6 clicked, Right moves it up a twelfth of an
// octave as one gesture; a key the editor has no use for (the space bar) goes back to the host.
TEST_F(EditorInputX11, KeysFromTheHostNudgeTheSelectedBand)
{
    const auto [x, y] = handleOf(5);
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
    const auto [x, y] = handleOf(5);
    moveTo(x, y);
    button(1, true);
    moveTo(x + 20, y - 10);
    ASSERT_TRUE(deliver([this] { return gestureOf(gainTag(6)) == "begin perform..."; }));
    XUnmapWindow(host.display(), host.window());
    EXPECT_TRUE(deliver([this] { return oneGesture(gainTag(6)) && oneGesture(frequencyTag(6)); }));
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

    // Clicks the title button and waits for the box's window, transient for the host's.
    Window openAboutBox()
    {
        const auto& bounds = screen().imageButton(EditorScreen::kTitleButtonIndex).bounds();
        click(1, static_cast<int>(bounds.x + bounds.width / 2),
              static_cast<int>(bounds.y + bounds.height / 2));
        return deliver([this] { return host.transients().size() == 1; }) ? host.transients()[0] : 0;
    }
};

TEST_F(EditorInputX11Box, AboutBoxIsATransientWindowThatEscapeCloses)
{
    const Window box = openAboutBox();
    ASSERT_NE(box, 0u);
    EXPECT_TRUE(screen().greyedOut()) << "the editor waits, grey, while its box is up";
    EXPECT_TRUE(deliver([&] { return host.distinctColours(box) > 4; }));
    const int ticks = runLoop->ticks();
    EXPECT_TRUE(deliver([&] { return runLoop->ticks() > ticks + 2; }));

    const XWindowAttributes where = host.attributes(box);
    moveTo(where.x + where.width / 2, where.y + 4);
    const KeyCode escape = XKeysymToKeycode(host.display(), XK_Escape);
    XTestFakeKeyEvent(host.display(), escape, True, 0);
    XTestFakeKeyEvent(host.display(), escape, False, 0);
    EXPECT_TRUE(deliver([this] { return kit().openWindowCount() == 1; }));
    EXPECT_FALSE(screen().greyedOut());
}

TEST_F(EditorInputX11Box, BoxGoesWithTheLastEditor)
{
    ASSERT_NE(openAboutBox(), 0u);
    view->removed();
    EXPECT_EQ(kit().openWindowCount(), 0);
    ASSERT_EQ(view->attached(host.parent(), kPlatformTypeX11EmbedWindowID), kResultOk);
}

} // namespace
