// The editor view inside this test program, on the window kit and the renderer under Wine: display
// scales, timers, images shared between editors, open/close cycles, the host closing it at awkward
// moments and the reminder a silent processor gets.

#include "EditorControllerFixture.h"

#include "editor/CEditorShared.h"
#include "editor/EditorScreen.h"
#include "platform/render/CGLRenderer.h"
#include "plugin/PlugParameters.h"
#include "support/WaitFor.h"
#include "tools/editor_host/MessagePump.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <chrono>
#include <cstring>
#include <utility>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editorhost::pumpMessagesUntil;
using velmoran::platform::CGLRenderer;
using velmoran::platform::CPlatformWindows;

namespace
{

// The view the host closes and releases while the next box is up.
IPtr<CPlugEditorView> gClosedWhileBoxIsUp;

int closeTheEditorOnABox(const MBXObject&)
{
    if (gClosedWhileBoxIsUp)
    {
        gClosedWhileBoxIsUp->removed();
        gClosedWhileBoxIsUp = nullptr;
    }
    return 0;
}

SIZE_T privateBytes()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                         sizeof(counters));
    return counters.PrivateUsage;
}

int slotsInUse()
{
    const auto* kit = CPlatformWindows::instance(false);
    int used = 0;
    for (int slot = 0; slot < CPlatformWindows::kSlotCount; ++slot)
        used += kit->slot(slot).inUse ? 1 : 0;
    return used;
}

using EditorView = velmoran::test::EditorControllerFixture<closeTheEditorOnABox>;

// The timer runs while the editor is open, counting the status line down a step a tick, is gone
// with removed() and comes back with the next attach.
TEST_F(EditorView, TimerRunsOnlyWhileAttached)
{
    IPtr<CPlugEditorView> view = createView();
    ASSERT_EQ(attach(view), kResultOk);
    auto* kit = CPlatformWindows::instance(false);
    EXPECT_NE(kit->slot(view->windowSlot()).timer, nullptr);
    controller->setParamNormalized(kEqTag, 0.0);
    EXPECT_EQ(view->screen()->statusText(), "Effect : Out");
    const uint32_t before = view->screen()->statusCountdown();
    const auto pump = []
    { pumpMessagesUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(10)); };
    EXPECT_TRUE(velmoran::test::waitFor([&] { return view->screen()->statusCountdown() + 3 < before; }, pump))
        << "ticks arrive";

    view->removed();
    EXPECT_FALSE(view->isOpen());

    ASSERT_EQ(attach(view), kResultOk);
    EXPECT_NE(kit->slot(view->windowSlot()).timer, nullptr);
    view->removed();
}

// Two instances' editors open at once draw the same image textures; the last to close frees them.
TEST_F(EditorView, TwoEditorsShareImagesUntilTheLastCloses)
{
    const velmoran::test::HostedController second;
    IPtr<CPlugEditorView> one = createView();
    IPtr<CPlugEditorView> two = second.createView();
    ASSERT_EQ(attach(one), kResultOk);
    CEditorShared* shared = CEditorShared::instance();
    ASSERT_NE(shared, nullptr);
    const EditorImage* handle = shared->image(155);
    ASSERT_NE(handle, nullptr);
    const GLuint texture = handle->texture->name;
    ASSERT_EQ(attach(two), kResultOk);
    EXPECT_EQ(shared->imageUsers(), 2);
    EXPECT_EQ(shared->image(155)->texture->name, texture);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 2);

    one->removed();
    EXPECT_EQ(shared->imageUsers(), 1);
    EXPECT_GT(shared->loadedImages(), 30);
    two->paint();
    two->removed();
    EXPECT_EQ(shared->imageUsers(), 0);
    EXPECT_EQ(shared->loadedImages(), 0);
    EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);
}

// Opening and closing the editor a hundred times leaves no window, context, texture or memory behind.
TEST_F(EditorView, HundredOpenCloseCyclesLeakNothing)
{
    IPtr<CPlugEditorView> view = createView();
    SIZE_T bytesAfterWarmUp = 0;
    const int slotsBefore = slotsInUse();
    for (int cycle = 0; cycle < 100; ++cycle)
    {
        ASSERT_EQ(attach(view), kResultOk);
        ASSERT_TRUE(view->isOpen());
        view->paint();
        view->removed();
        ASSERT_EQ(slotsInUse(), slotsBefore);
        ASSERT_EQ(CGLRenderer::sharedContext(), nullptr);
        ASSERT_EQ(CEditorShared::instance()->loadedImages(), 0);
        if (cycle == 9)
            bytesAfterWarmUp = privateBytes();
    }
    const SIZE_T bytesAfter = privateBytes();
    EXPECT_LT(bytesAfter, bytesAfterWarmUp + 8u * 1024u * 1024u)
        << "private bytes grew from " << bytesAfterWarmUp << " to " << bytesAfter;
}

// A host that destroys its window before removed(): the editor closes with its window, releasing its
// textures and its share of the GL context while the window can still make the context current.
TEST_F(EditorView, HostWindowDestroyedBeforeRemovedClosesTheEditorWithIt)
{
    HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_CHILD | WS_VISIBLE, 0, 0, 998, 634,
                        velmoran::test::testHostWindow(), nullptr, GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(parent, nullptr);
    IPtr<CPlugEditorView> view = createView();
    ASSERT_EQ(view->attached(parent, kPlatformTypeHWND), kResultOk);
    ASSERT_TRUE(view->isOpen());
    view->paint();
    DestroyWindow(parent);
    EXPECT_FALSE(view->isOpen());
    EXPECT_EQ(view->screen(), nullptr);
    EXPECT_EQ(CEditorShared::instance()->loadedImages(), 0);
    EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);
    EXPECT_EQ(MBXManager::instance().openEditorCount(), 0);
    EXPECT_EQ(view->removed(), kResultOk);
}

// The about box runs from the title's click inside the mouse-up; the host closes and releases the
// editor while the box is up, and the mouse-up that opened it touches nothing of it afterwards.
TEST_F(EditorView, EditorReleasedWhileItsAboutBoxIsUp)
{
    gClosedWhileBoxIsUp = createView();
    ASSERT_EQ(attach(gClosedWhileBoxIsUp), kResultOk);
    const velmoran::editor::Rect title = gClosedWhileBoxIsUp->screen()->titleWidget().bounds();
    HWND window = windowOf(*gClosedWhileBoxIsUp);
    const LPARAM at =
        MAKELPARAM(static_cast<int>(title.x + title.width / 2), static_cast<int>(title.y + title.height / 2));
    SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageA(window, WM_LBUTTONUP, 0, at);
    EXPECT_EQ(gClosedWhileBoxIsUp, nullptr) << "the box came up";
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(MBXManager::instance().openEditorCount(), 0);
}

// The processor's end of the connection to a controller while it lives: it sends nothing and keeps
// the "open" of every "EditorOpen" it is told.
class SilentProcessor : public IConnectionPoint
{
public:
    explicit SilentProcessor(IConnectionPoint* controller) : mController(controller)
    {
        controller->connect(this);
    }
    ~SilentProcessor() { mController->disconnect(this); }
    tresult PLUGIN_API connect(IConnectionPoint*) override { return kResultOk; }
    tresult PLUGIN_API disconnect(IConnectionPoint*) override { return kResultOk; }
    tresult PLUGIN_API notify(IMessage* message) override
    {
        int64 open = -1;
        if (message != nullptr && message->getMessageID() != nullptr &&
            std::strcmp(message->getMessageID(), "EditorOpen") == 0 && message->getAttributes() != nullptr &&
            message->getAttributes()->getInt("open", open) == kResultOk)
            editorOpen.push_back(open);
        return kResultOk;
    }
    tresult PLUGIN_API queryInterface(const TUID, void** object) override
    {
        *object = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

    std::vector<int64> editorOpen;

private:
    IConnectionPoint* mController;
};

// An open editor whose processor sends no spectrum frames reminds it that an editor is open, so that
// a lost "EditorOpen" does not leave the display blank: with "FFT" off the silence is expected and
// nothing is sent; with it on, about a second of paints without a frame sends open = 1 again.
TEST_F(EditorView, SilentProcessorIsRemindedWhileTheSpectrumIsOn)
{
    SilentProcessor processor(controller);
    IPtr<CPlugEditorView> view = createView();
    ASSERT_EQ(attach(view), kResultOk);
    ASSERT_FALSE(processor.editorOpen.empty());
    EXPECT_EQ(processor.editorOpen.back(), 1) << "the opening itself is told";
    processor.editorOpen.clear();

    controller->setParamNormalized(kFftTag, 0.0);
    for (int paint = 0; paint < 60; ++paint)
        view->paint();
    EXPECT_TRUE(processor.editorOpen.empty());

    controller->setParamNormalized(kFftTag, 1.0);
    for (int paint = 0; paint < 60; ++paint)
        view->paint();
    EXPECT_EQ(processor.editorOpen, (std::vector<int64>{1, 1}));
    view->removed();
}

// A host's frame that grants every resize request and remembers the sizes asked for.
class RecordingFrame : public IPlugFrame
{
public:
    tresult PLUGIN_API resizeView(IPlugView* view, ViewRect* newSize) override
    {
        requests.push_back({newSize->getWidth(), newSize->getHeight()});
        return view->onSize(newSize);
    }
    tresult PLUGIN_API queryInterface(const TUID, void** object) override
    {
        *object = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

    std::vector<std::pair<int32, int32>> requests;
};

struct ScaleCase
{
    float scale;
    bool beforeAttached;
};

using EditorScale =
    velmoran::test::EditorControllerFixture<closeTheEditorOnABox, ::testing::TestWithParam<ScaleCase>>;

// The view offers IPlugViewContentScaleSupport, set before or after attached; at each scale its
// size, the host's resize request and its window are the design size times the scale, and mouse
// positions map back onto the design.
TEST_P(EditorScale, SizeRequestAndWindowFollowTheScale)
{
    const ScaleCase& scaling = GetParam();
    IPtr<CPlugEditorView> view = createView();
    FUnknownPtr<IPlugViewContentScaleSupport> scaleSupport(static_cast<IPlugView*>(view.get()));
    ASSERT_TRUE(scaleSupport) << "the view offers IPlugViewContentScaleSupport";
    RecordingFrame frame;
    view->setFrame(&frame);
    if (scaling.beforeAttached)
    {
        ASSERT_EQ(scaleSupport->setContentScaleFactor(scaling.scale), kResultOk);
    }
    ASSERT_EQ(attach(view), kResultOk);
    ASSERT_TRUE(view->isOpen());
    if (!scaling.beforeAttached)
    {
        ASSERT_EQ(scaleSupport->setContentScaleFactor(scaling.scale), kResultOk);
    }

    const int32 width = static_cast<int32>(998.0f * scaling.scale + 0.5f);
    const int32 height = static_cast<int32>(634.0f * scaling.scale + 0.5f);
    ViewRect size;
    ASSERT_EQ(view->getSize(&size), kResultOk);
    EXPECT_EQ(size.getWidth(), width);
    EXPECT_EQ(size.getHeight(), height);
    ASSERT_FALSE(frame.requests.empty());
    EXPECT_EQ(frame.requests.back(), std::make_pair(width, height));
    RECT client{};
    GetClientRect(windowOf(*view), &client);
    EXPECT_EQ(client.right, width);
    EXPECT_EQ(client.bottom, height);
    EXPECT_NEAR(view->scaleX(), 1.0f / scaling.scale, 0.002f);
    EXPECT_NEAR(view->scaleY(), 1.0f / scaling.scale, 0.002f);
    view->paint();
    EXPECT_EQ(scaleSupport->setContentScaleFactor(0.0f), kInvalidArgument);
    view->removed();
    view->setFrame(nullptr);
}

INSTANTIATE_TEST_SUITE_P(BeforeAndAfterAttached, EditorScale,
                         ::testing::Values(ScaleCase{1.0f, true}, ScaleCase{1.5f, true},
                                           ScaleCase{2.0f, true}, ScaleCase{1.0f, false},
                                           ScaleCase{1.5f, false}, ScaleCase{2.0f, false}));

} // namespace
