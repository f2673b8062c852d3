// The editor driven as a user drives it: real mouse and keyboard messages sent to its child window
// under Wine, with a host's component handler logging every edit in its order. What each input does
// to the screen is EditorScreenTest's; here the window's messages reach it.

#include "EditorControllerFixture.h"

#include "editor/CPlugEditorView.h"
#include "editor/EditorScreen.h"
#include "platform/window/CPlatformWindows.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ComponentHandler.h"
#include "support/EditGestures.h"

#include <gtest/gtest.h>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editor::EditorScreen;
using velmoran::platform::CPlatformWindows;
using velmoran::test::gestureOf;

namespace
{

class EditorInput : public velmoran::test::EditorControllerFixture<velmoran::test::acceptBox>
{
protected:
    void SetUp() override
    {
        EditorControllerFixture::SetUp();
        controller->setComponentHandler(handler);
        view = owned(static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor)));
        ASSERT_EQ(view->attached(velmoran::test::testHostWindow(), kPlatformTypeHWND), kResultOk);
        ASSERT_TRUE(view->isOpen());
        window = CPlatformWindows::instance(false)->windowHandle(view->windowSlot());
    }
    void TearDown() override
    {
        view->removed();
        view = nullptr;
        EditorControllerFixture::TearDown();
    }

    EditorScreen& screen() { return *view->screen(); }
    void send(UINT message, WPARAM wParam, int x, int y)
    {
        SendMessageA(window, message, wParam, MAKELPARAM(x, y));
    }
    void click(int x, int y)
    {
        send(WM_LBUTTONDOWN, MK_LBUTTON, x, y);
        send(WM_LBUTTONUP, 0, x, y);
    }
    POINT handleOf(int band)
    {
        return {static_cast<LONG>(screen().graph().slot(band).handleX + 0.5f),
                static_cast<LONG>(screen().graph().slot(band).handleY + 0.5f)};
    }

    IPtr<ComponentHandler> handler = owned(new ComponentHandler());
    IPtr<CPlugEditorView> view;
    HWND window = nullptr;
};

// Dragging band 6's handle writes "06 Freq" and "06 Gain" as one gesture each.
TEST_F(EditorInput, DragOfHandleIsOneGesturePerParameter)
{
    const POINT start = handleOf(5);
    send(WM_LBUTTONDOWN, MK_LBUTTON, start.x, start.y);
    for (int step = 1; step <= 6; ++step)
        send(WM_MOUSEMOVE, MK_LBUTTON, start.x + 12 * step, start.y - 9 * step);
    send(WM_LBUTTONUP, 0, start.x + 72, start.y - 54);
    EXPECT_EQ(gestureOf(handler->editLog(), frequencyTag(6)), "begin perform... end");
    EXPECT_EQ(gestureOf(handler->editLog(), gainTag(6)), "begin perform... end");
    EXPECT_GT(bandFrequencyHz(static_cast<float>(controller->getParamNormalized(frequencyTag(6)))), 1200.0f);
    EXPECT_GT(bandGainDb(static_cast<float>(controller->getParamNormalized(gainTag(6)))), 2.0f);
    EXPECT_TRUE(screen().bandInfoBox(5).visible());
}

// Band 3's menu from a right click: "High Pass" writes code 10; "Delete" frees the band and the next
// click and drag on an empty spot takes it again.
TEST_F(EditorInput, BandMenuSetsTypeAndDeleteFreesTheBand)
{
    controller->setParamNormalized(filterTypeTag(3), 2.0 / 20.0);
    const POINT handle = handleOf(2);
    send(WM_RBUTTONDOWN, MK_RBUTTON, handle.x, handle.y);
    send(WM_RBUTTONUP, 0, handle.x, handle.y);
    ASSERT_EQ(screen().openMenuBand(), 2);
    const auto& menu = screen().bandMenu(2);
    auto entryPoint = [&menu](int code)
    {
        const float x = menu.bounds().x + menu.bounds().width / 2.0f;
        for (float y = menu.bounds().y; y < menu.bounds().bottom(); y += 1.0f)
        {
            const int entry = menu.entryAt(x, y);
            if (entry >= 0 && menu.entries()[static_cast<size_t>(entry)].code == code)
                return POINT{static_cast<LONG>(x), static_cast<LONG>(y + 6.0f)};
        }
        return POINT{-1, -1};
    };
    const POINT highPass = entryPoint(10);
    send(WM_MOUSEMOVE, 0, highPass.x, highPass.y);
    click(highPass.x, highPass.y);
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(3)))), 10);
    EXPECT_EQ(gestureOf(handler->editLog(), filterTypeTag(3)), "begin perform... end");

    send(WM_RBUTTONDOWN, MK_RBUTTON, handle.x, handleOf(2).y);
    send(WM_RBUTTONUP, 0, handle.x, handleOf(2).y);
    const POINT remove = entryPoint(0);
    click(remove.x, remove.y);
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(3)))), 0);
    EXPECT_FALSE(screen().graph().slot(2).visible);

    const int free = screen().graph().firstFreeBand();
    const auto plot = screen().graph().plotRect();
    const int x = static_cast<int>(plot.x + plot.width * 0.75f);
    const int y = static_cast<int>(plot.y + plot.height * 0.25f);
    send(WM_LBUTTONDOWN, MK_LBUTTON, x, y);
    send(WM_MOUSEMOVE, MK_LBUTTON, x + 10, y + 10);
    send(WM_LBUTTONUP, 0, x + 10, y + 10);
    EXPECT_TRUE(screen().graph().slot(free).visible);
    EXPECT_NE(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(free + 1)))), 0);
}

// Automation from the host moves the handle and updates the band's info box.
TEST_F(EditorInput, HostAutomationMovesHandleAndInfoBox)
{
    controller->setParamNormalized(frequencyTag(6), (250.0 - 20.0) / 19980.0);
    EXPECT_NEAR(screen().graph().slot(5).handleX, screen().graph().xForFrequency(250.0f), 0.5f);
    EXPECT_TRUE(screen().bandInfoBox(5).visible());
    EXPECT_EQ(screen().bandInfoBox(5).lines()[0].text, "Freq 250.0 Hz");
}

} // namespace
