// The editor view closed by the host at awkward moments, under Wine on the window kit and the
// renderer: its window destroyed before removed(), and the view released while a message box it
// opened is up.

#include "EditorControllerFixture.h"

#include "editor/CEditorShared.h"
#include "editor/CPlugEditorView.h"
#include "editor/EditorScreen.h"
#include "platform/render/CGLRenderer.h"
#include "platform/window/CPlatformWindows.h"

#include <gtest/gtest.h>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CGLRenderer;
using velmoran::platform::CPlatformWindows;

namespace
{

// The view that the host closes and releases while the next box is up.
IPtr<CPlugEditorView> gClosedWhileBoxIsUp;
int gBoxesShown = 0;

int closeTheEditorMeanwhile(const MBXObject&)
{
    ++gBoxesShown;
    if (gClosedWhileBoxIsUp)
    {
        gClosedWhileBoxIsUp->removed();
        gClosedWhileBoxIsUp = nullptr;
    }
    return 0;
}

class EditorTeardown : public velmoran::test::EditorControllerFixture<closeTheEditorMeanwhile>
{
protected:
    void SetUp() override
    {
        EditorControllerFixture::SetUp();
        gBoxesShown = 0;
    }

    IPtr<CPlugEditorView> createView()
    {
        return owned(static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor)));
    }
};

// A host that destroys its window before removed(): the editor closes with its window, releasing its
// textures and its share of the GL context while the window can still make the context current.
TEST_F(EditorTeardown, HostWindowDestroyedBeforeRemovedClosesTheEditorWithIt)
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
TEST_F(EditorTeardown, EditorReleasedWhileItsAboutBoxIsUp)
{
    gClosedWhileBoxIsUp = createView();
    ASSERT_EQ(gClosedWhileBoxIsUp->attached(velmoran::test::testHostWindow(), kPlatformTypeHWND), kResultOk);
    const velmoran::editor::Rect title = gClosedWhileBoxIsUp->screen()->titleWidget().bounds();
    HWND window = CPlatformWindows::instance(false)->windowHandle(gClosedWhileBoxIsUp->windowSlot());
    const LPARAM at =
        MAKELPARAM(static_cast<int>(title.x + title.width / 2), static_cast<int>(title.y + title.height / 2));
    SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageA(window, WM_LBUTTONUP, 0, at);
    EXPECT_EQ(gBoxesShown, 1);
    EXPECT_EQ(gClosedWhileBoxIsUp, nullptr);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(MBXManager::instance().openEditorCount(), 0);
}

} // namespace
