// The Linux editor driven as a user drives it: real pointer input through XTest on the virtual
// display, delivered by the host's run loop, with a host's component handler recording every edit
// in its order and collecting them for the processor.

#include "X11EditorFixture.h"

#include "editor/EditorScreen.h"
#include "editor/HostKeys.h"
#include "plugin/Plug.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ProcessBlock.h"
#include "support/EditGestures.h"
#include "support/FilterResponse.h"
#include "support/Signals.h"

#include "pluginterfaces/vst/vstspeaker.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editor::EditorScreen;

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

// The view open and drawn in the host's window; the host's handler collects its edits.
class EditorInputX11 : public velmoran::test::X11EditorFixture
{
protected:
    void SetUp() override
    {
        X11EditorFixture::SetUp();
        ASSERT_EQ(open(*view), kResultOk);
        ASSERT_TRUE(drawn(*view));
    }
    void TearDown() override { close(*view); }

    EditorScreen& screen() { return *view->screen(); }
    std::string gestureOf(ParamID tag) const { return velmoran::test::gestureOf(handler().editLog(), tag); }
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

    // Clicks the title button and waits for the box's window, transient for the host's.
    Window openAboutBox()
    {
        const auto& bounds = screen().imageButton(EditorScreen::kTitleButtonIndex).bounds();
        click(1, static_cast<int>(bounds.x + bounds.width / 2),
              static_cast<int>(bounds.y + bounds.height / 2));
        return deliver([this] { return host.transients().size() == 1; }) ? host.transients()[0] : 0;
    }
    double value(ParamID tag) const { return instance.controller->getParamNormalized(tag); }
    ComponentHandler& handler() const { return *instance.handler; }
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
    const float hz = bandFrequencyHz(static_cast<float>(value(frequencyTag(6))));
    const float db = bandGainDb(static_cast<float>(value(gainTag(6))));
    EXPECT_GT(hz, 1200.0f);
    EXPECT_GT(db, 2.0f);
    // Band 6 is a half-gain peak ("Pk dB/2") in the default program.
    const float q = bandQ(static_cast<float>(value(qTag(6))));
    const double lift =
        velmoran::test::GainDbAt(velmoran::test::DesignForBand(2, hz, db, q, 48000.0f), hz, 48000.0);
    const double before = processor.gainDbAt(hz, nullptr);
    EXPECT_NEAR(processor.gainDbAt(hz, &handler().pendingChanges()) - before, lift, 0.2);
}

// One wheel step is one Windows notch: button 4 widens Q, button 5 narrows it, one gesture a step.
TEST_F(EditorInputX11, WheelStepOnBandChangesQ)
{
    const auto [x, y] = handleOf(5);
    for (const auto& [button, raisesQ] : {std::pair{4u, true}, std::pair{5u, false}})
    {
        SCOPED_TRACE(button);
        handler().clearEditLog();
        const double before = value(qTag(6));
        click(button, x, y);
        ASSERT_TRUE(deliver([this] { return oneGesture(qTag(6)); }));
        EXPECT_EQ(value(qTag(6)) > before, raisesQ);
    }
}

TEST_F(EditorInputX11, RightClickOpensTheBandMenu)
{
    const auto [x, y] = handleOf(5);
    click(3, x, y);
    EXPECT_TRUE(deliver([this] { return screen().openMenuBand() == 5; }));
}

// Two quick presses on a handle are a double-click, which puts the band back to 0 dB and Q 1.
TEST_F(EditorInputX11, DoubleClickOnHandleResetsTheBand)
{
    const double defaultQ = value(qTag(6));
    instance.controller->setParamNormalized(gainTag(6), 0.75);
    instance.controller->setParamNormalized(qTag(6), 0.9);
    ASSERT_TRUE(deliver([] { return true; }));
    const auto [x, y] = handleOf(5);
    click(1, x, y);
    click(1, x, y);
    EXPECT_TRUE(
        deliver([&] { return value(gainTag(6)) == 0.5 && std::abs(value(qTag(6)) - defaultQ) < 1e-6; }));
}

// Keys come from the host through the view: with band 6 clicked, Right moves it up a twelfth of an
// octave as one gesture; a key the editor has no use for (the space bar) goes back to the host.
TEST_F(EditorInputX11, KeysFromTheHostNudgeTheSelectedBand)
{
    const auto [x, y] = handleOf(5);
    click(1, x, y);
    ASSERT_TRUE(deliver([this] { return screen().selectedBand() == 5; }));
    const double before = value(frequencyTag(6));
    EXPECT_EQ(view->onKeyDown(0, velmoran::editor::hostkeys::kRight, 0), kResultTrue);
    EXPECT_EQ(view->onKeyUp(0, velmoran::editor::hostkeys::kRight, 0), kResultTrue);
    EXPECT_GT(value(frequencyTag(6)), before);
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

// The about box from the title button: a top-level window of its own, transient for the host's
// window, drawn while the editor goes on; the host's loop is never held.
TEST_F(EditorInputX11, AboutBoxIsATransientWindowThatEscapeCloses)
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

TEST_F(EditorInputX11, BoxGoesWithTheLastEditor)
{
    ASSERT_NE(openAboutBox(), 0u);
    view->removed();
    EXPECT_EQ(kit().openWindowCount(), 0);
    ASSERT_EQ(view->attached(host.parent(), kPlatformTypeX11EmbedWindowID), kResultOk);
}

} // namespace
