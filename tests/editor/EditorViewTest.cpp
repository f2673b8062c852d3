// The editor view inside this test program, on the window kit and the renderer under Wine: sizes,
// a failing renderer, timers, images shared between editors and open/close cycles.

#include "editor/CEditorShared.h"
#include "editor/CPlugEditorView.h"
#include "editor/EditorScreen.h"
#include "editor/EditorTexts.h"
#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXObject.h"
#include "platform/render/CGLRenderer.h"
#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "support/WaitFor.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <memory>
#include <string>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CGLRenderer;
using velmoran::platform::CPlatformWindows;

namespace
{

std::vector<std::string>& shownBoxes()
{
    static std::vector<std::string> boxes;
    return boxes;
}

int recordBox(const MBXObject& box)
{
    shownBoxes().push_back(box.title() + "|" + box.text());
    return 0;
}

int failWithoutContext(CGLRenderer&, HWND, double, double, double, double)
{
    return CGLRenderer::kNoContext;
}

// Lets the waiting window messages (timer ticks, paints) through.
void pump()
{
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    Sleep(5);
}

SIZE_T privateBytes()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                         sizeof(counters));
    return counters.PrivateUsage;
}

// One controller as a host makes it, with its editor views.
struct Instance
{
    Instance()
    {
        controller = static_cast<CPlugController*>(
            static_cast<IEditController*>(CPlugController::createInstance(nullptr)));
        controller->initialize(&host);
    }
    ~Instance()
    {
        controller->terminate();
        controller->release();
    }
    CPlugEditorView* createView()
    {
        return static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor));
    }

    HostApplication host;
    CPlugController* controller = nullptr;
};

class EditorView : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        CPlatformWindows::instance(true)->setClassNames(velmoran::test::kTestToken);
        MBXManager::instance().setPresenter(recordBox);
    }
    static void TearDownTestSuite()
    {
        MBXManager::instance().setPresenter(nullptr);
        velmoran::test::closeAllWindows();
    }
    void SetUp() override { shownBoxes().clear(); }

    static tresult attach(CPlugEditorView* view)
    {
        return view->attached(velmoran::test::testHostWindow(), kPlatformTypeHWND);
    }
};

TEST_F(EditorView, OpensAtDesignSizeOrHostRectangle)
{
    Instance instance;
    IPtr<CPlugEditorView> view = owned(instance.createView());
    ASSERT_TRUE(view);
    ViewRect size;
    ASSERT_EQ(view->getSize(&size), kResultOk);
    EXPECT_EQ(size.getWidth(), 998);
    EXPECT_EQ(size.getHeight(), 634);
    EXPECT_EQ(view->isPlatformTypeSupported(kPlatformTypeHWND), kResultTrue);
    EXPECT_EQ(view->isPlatformTypeSupported(kPlatformTypeX11EmbedWindowID), kResultFalse);

    ViewRect hostRect(0, 0, 1200, 700);
    IPtr<CPlugEditorView> sized = owned(new CPlugEditorView(instance.controller, &hostRect));
    ASSERT_EQ(attach(sized), kResultOk);
    ASSERT_TRUE(sized->isOpen());
    RECT client{};
    GetClientRect(CPlatformWindows::instance(false)->windowHandle(sized->windowSlot()), &client);
    EXPECT_EQ(client.right, 1200);
    EXPECT_EQ(client.bottom, 700);
    sized->removed();
}

// A driver without a usable context: the user is told, the view stays empty and a later attach
// opens it.
TEST_F(EditorView, RendererFailureShowsBoxAndLeavesViewUsable)
{
    Instance instance;
    IPtr<CPlugEditorView> view = owned(instance.createView());
    const auto previous = CPlugEditorView::setRendererStart(failWithoutContext);
    attach(view);
    CPlugEditorView::setRendererStart(previous);
    EXPECT_FALSE(view->isOpen());
    ASSERT_EQ(shownBoxes().size(), 1u);
    EXPECT_EQ(shownBoxes()[0], "Plug-In Editor Failed to Open|Failed to create compatible OpenGL context.");
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 0);
    view->removed();

    ASSERT_EQ(attach(view), kResultOk);
    EXPECT_TRUE(view->isOpen());
    EXPECT_EQ(shownBoxes().size(), 1u);
    view->removed();
}

// The timer runs while the editor is open, counting the status line down a step a tick, is gone
// with removed() and comes back with the next attach.
TEST_F(EditorView, TimerRunsOnlyWhileAttached)
{
    Instance instance;
    IPtr<CPlugEditorView> view = owned(instance.createView());
    ASSERT_EQ(attach(view), kResultOk);
    const int slot = view->windowSlot();
    auto* kit = CPlatformWindows::instance(false);
    EXPECT_NE(kit->slot(slot).timer, nullptr);
    instance.controller->setParamNormalized(kEqTag, 0.0);
    EXPECT_EQ(view->screen()->statusText(), "Effect : Out");
    const uint32_t before = view->screen()->statusCountdown();
    EXPECT_TRUE(velmoran::test::waitFor([&] { return view->screen()->statusCountdown() + 3 < before; }, pump))
        << "ticks arrive";

    view->removed();
    EXPECT_FALSE(view->isOpen());
    EXPECT_EQ(kit->slot(slot).inUse, 0);
    EXPECT_EQ(view->screen(), nullptr);

    ASSERT_EQ(attach(view), kResultOk);
    EXPECT_NE(kit->slot(view->windowSlot()).timer, nullptr);
    view->removed();
}

// Two instances' editors open at once draw the same image textures; the last to close frees them.
TEST_F(EditorView, TwoEditorsShareImagesUntilTheLastCloses)
{
    Instance first;
    Instance second;
    IPtr<CPlugEditorView> one = owned(first.createView());
    IPtr<CPlugEditorView> two = owned(second.createView());
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
    Instance instance;
    IPtr<CPlugEditorView> view = owned(instance.createView());
    auto* kit = CPlatformWindows::instance(false);
    auto slotsInUse = [kit]
    {
        int used = 0;
        for (int slot = 0; slot < CPlatformWindows::kSlotCount; ++slot)
            used += kit->slot(slot).inUse ? 1 : 0;
        return used;
    };
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

} // namespace
