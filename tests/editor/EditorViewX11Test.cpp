// The editor view on Linux inside this test program: embedded by XEmbed into a host window on the
// virtual display, drawn with GLX and driven by a host's run loop. Sizes, what the host sees, the
// run loop's registrations, teardown and hosts that break the rules.

#include "X11EditorFixture.h"

#include "platform/render/CGLRenderer.h"
#include "platform/render/ErrorBox.h"
#include "platform/window/X11Display.h"

#include <string>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CGLRenderer;
using velmoran::test::shownBoxes;
using velmoran::test::X11Instance;
using velmoran::test::X11TestWindow;

namespace
{

template <int kResult>
int failWith(CGLRenderer&, velmoran::platform::NativeWindow, double, double, double, double)
{
    return kResult;
}

// A driver that refuses a program: the renderer's own box with the driver's log comes first.
int refuseShaders(CGLRenderer&, velmoran::platform::NativeWindow, double, double, double, double)
{
    velmoran::platform::showErrorBox("Velmoran: OpenGL Error",
                                     "Velmoran:Error: GFX-VXSHDR-03 failed to compile");
    return CGLRenderer::kShaderFailure;
}

class EditorViewX11 : public velmoran::test::X11EditorFixture
{
protected:
    void expectNothingLeft()
    {
        EXPECT_EQ(runLoop->timerCount(), 0);
        EXPECT_EQ(runLoop->eventHandlerCount(), 0);
        EXPECT_EQ(kit().openWindowCount(), 0);
        EXPECT_EQ(CGLRenderer::sharedContextUsers(), 0);
        EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);
        EXPECT_EQ(velmoran::platform::displayUsers(), 0);
        EXPECT_TRUE(host.children().empty());
    }
};

struct SizeCase
{
    int width; // the host's rectangle, none when 0, or the design size
    int height;
};

class EditorViewX11Size : public EditorViewX11, public ::testing::WithParamInterface<SizeCase>
{
};

// A mapped child window of the view's size, drawn, with one timer at 40 ms and one event handler
// registered with the host's loop while the view has its frame; losing the frame unregisters both.
TEST_P(EditorViewX11Size, EmbedsAMappedDrawnChildAndRegistersWithTheRunLoop)
{
    ViewRect rect(0, 0, GetParam().width, GetParam().height);
    view = instance.createView(GetParam().width != 998 ? &rect : nullptr);
    ASSERT_EQ(open(*view), kResultOk);
    ASSERT_TRUE(view->isOpen());

    const std::vector<Window> children = host.children();
    ASSERT_EQ(children.size(), 1u);
    EXPECT_EQ(children[0], editorWindow(*view));
    const XWindowAttributes attributes = host.attributes(children[0]);
    EXPECT_EQ(attributes.width, GetParam().width);
    EXPECT_EQ(attributes.height, GetParam().height);
    EXPECT_EQ(attributes.map_state, IsViewable);
    EXPECT_EQ(host.xembedFlags(children[0]), 1); // XEMBED_MAPPED
    EXPECT_TRUE(drawn(*view));
    EXPECT_TRUE(shownBoxes().empty());
    ASSERT_EQ(runLoop->timerCount(), 1);
    EXPECT_EQ(runLoop->timerPeriod(0).count(), 40);
    EXPECT_EQ(runLoop->eventHandlerCount(), 1);
    EXPECT_TRUE(runLoop->runUntil([&] { return runLoop->ticks() >= 3; }));

    view->setFrame(nullptr);
    EXPECT_EQ(runLoop->timerCount(), 0);
    EXPECT_EQ(runLoop->eventHandlerCount(), 0);
    view->removed();
    expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(Sizes, EditorViewX11Size,
                         ::testing::Values(SizeCase{998, 634}, SizeCase{1497, 951}, SizeCase{1996, 1268}));

// Another platform's window (or none named) is refused, and so is a host that offers no run loop.
TEST_F(EditorViewX11, RefusesOtherPlatformsAndAHostWithoutRunLoop)
{
    for (const FIDString type : {kPlatformTypeHWND, kPlatformTypeNSView, FIDString{nullptr}})
        EXPECT_EQ(view->isPlatformTypeSupported(type), kResultFalse) << (type != nullptr ? type : "null");
    EXPECT_EQ(view->attached(host.parent(), kPlatformTypeX11EmbedWindowID), kResultFalse);
    EXPECT_FALSE(view->isOpen());
    view->removed();
    expectNothingLeft();
}

struct FailureCase
{
    const char* name;
    CPlugEditorView::RendererStart start;
    const char* text;
    const char* rendererBox; // the renderer's own box before the editor's, if any
};

class EditorViewX11Failure : public EditorViewX11, public ::testing::WithParamInterface<FailureCase>
{
};

// A driver the editor cannot draw with: the Windows texts in boxes of their own, transient for the
// host's window and drawn while its loop runs on; they close at the desktop's close button, the
// view stays empty until removed() and opens at the next attach.
TEST_P(EditorViewX11Failure, BoxesSayWhyWhileTheHostRunsOn)
{
    const CPlugEditorView::RendererStart previous = CPlugEditorView::setRendererStart(GetParam().start);
    open(*view);
    CPlugEditorView::setRendererStart(previous);
    EXPECT_FALSE(view->isOpen());
    std::vector<std::string> expected{std::string("Plug-In Editor Failed to Open|") + GetParam().text};
    if (GetParam().rendererBox != nullptr)
        expected.insert(expected.begin(), GetParam().rendererBox);
    EXPECT_EQ(shownBoxes(), expected);
    // One box at a time, the next once the user has closed the one before.
    for (size_t shown = 0; shown < expected.size(); ++shown)
    {
        ASSERT_TRUE(runLoop->runUntil([&] { return host.transients().size() == 1; })) << "box " << shown;
        const Window box = host.transients()[0];
        const int ticks = runLoop->ticks();
        EXPECT_TRUE(
            runLoop->runUntil([&] { return host.distinctColours(box) > 4 && runLoop->ticks() > ticks; }));
        host.askToClose(box);
        EXPECT_TRUE(
            runLoop->runUntil([&] { return host.transients().empty() || host.transients()[0] != box; }));
    }
    EXPECT_TRUE(runLoop->runUntil([&] { return host.transients().empty(); }));
    close(*view);
    expectNothingLeft();

    ASSERT_EQ(open(*view), kResultOk);
    EXPECT_TRUE(view->isOpen());
    close(*view);
}

INSTANTIATE_TEST_SUITE_P(
    Results, EditorViewX11Failure,
    ::testing::Values(
        FailureCase{"MissingEntryPoints", failWith<1>, "Missing required OpenGL extensions.", nullptr},
        FailureCase{"Shaders", refuseShaders, "Failed to compile OpenGL shaders.",
                    "Velmoran: OpenGL Error|Velmoran:Error: GFX-VXSHDR-03 failed to compile"},
        FailureCase{"NoContext", failWith<3>, "Failed to create compatible OpenGL context.", nullptr},
        FailureCase{"Other", failWith<7>, "Failed to initialise OpenGL renderer.", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(EditorViewX11, ParentDestroyedBeforeRemoved)
{
    ASSERT_EQ(open(*view), kResultOk);
    ASSERT_TRUE(drawn(*view));
    host.destroy();
    EXPECT_TRUE(runLoop->runUntil([&] { return !view->isOpen(); }));
    close(*view);
    expectNothingLeft();
}

TEST_F(EditorViewX11, TwoInstancesDrawThroughOneContext)
{
    X11Instance second;
    X11TestWindow secondHost(1000, 640, 1100, 800);
    IPtr<CPlugEditorView> two = second.createView();
    ASSERT_EQ(open(*view), kResultOk);
    ASSERT_EQ(open(*two, &secondHost), kResultOk);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 2);
    EXPECT_EQ(runLoop->timerCount(), 2);
    EXPECT_TRUE(drawn(*view));
    EXPECT_TRUE(drawn(*two, &secondHost));

    close(*view);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 1);
    EXPECT_TRUE(runLoop->runUntil([&] { return runLoop->ticks() >= 5; }));
    EXPECT_TRUE(drawn(*two, &secondHost));
    close(*two);
    expectNothingLeft();
}

TEST_F(EditorViewX11, HundredOpenCloseCyclesLeaveNothingBehind)
{
    for (int cycle = 0; cycle < 100; ++cycle)
    {
        ASSERT_EQ(open(*view), kResultOk) << "cycle " << cycle;
        ASSERT_TRUE(view->isOpen());
        runLoop->runOnce();
        close(*view);
        ASSERT_EQ(runLoop->timerCount(), 0);
        ASSERT_EQ(runLoop->eventHandlerCount(), 0);
    }
    EXPECT_EQ(runLoop->timersRegistered(), 100);
    expectNothingLeft();
}

} // namespace
