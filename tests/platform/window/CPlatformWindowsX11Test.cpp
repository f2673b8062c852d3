// The Linux window kit on its own, on a virtual display: scales, sizes, windows that cannot be made
// and the cursors of the editor's windows.

// GoogleTest comes before the X11 headers, whose macros (None, Bool) would rename its types.
#include <gtest/gtest.h>

#include "editor/X11TestWindow.h"
#include "platform/window/KitScaleCases.h"

#include "platform/window/WindowKit.h"
#include "platform/window/X11Display.h"

#include <X11/cursorfont.h>

using velmoran::platform::CPlatformWindows;
using velmoran::test::X11TestWindow;

namespace
{

// The scale of the desktop's resolution (0 when the server names none) and the device size of a
// logical size at a scale.
TEST(WindowKitX11Scale, FollowsTheDesktopDpiAndRoundsSizesHalfUp)
{
    for (const auto& screen : velmoran::test::kDpiCases)
    {
        EXPECT_FLOAT_EQ(CPlatformWindows::displayScaleForDpi(screen.dpi), screen.scale) << screen.dpi;
    }
    for (const auto& size : velmoran::test::kSizeCases)
    {
        EXPECT_EQ(CPlatformWindows::deviceSize(size.logical, size.scale), size.device)
            << size.logical << " at " << size.scale;
    }
}

class WindowKitX11 : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { velmoran::test::keepGlDriverLoaded(); }
    void SetUp() override { ASSERT_TRUE(host.valid()) << "no X display"; }
    void TearDown() override { CPlatformWindows::release(); }

    CPlatformWindows& kit() { return *CPlatformWindows::instance(true); }

    X11TestWindow host;
};

// A parent that is no window (none, or an unknown id) gives -1 and leaves no window and no
// connection behind.
TEST_F(WindowKitX11, NoWindowWithoutAParent)
{
    for (const unsigned long parent : {0x0ul, 0x7ffffff0ul})
    {
        EXPECT_EQ(kit().createChildWindow(0, 0, 100, 50, 1.0f, parent, nullptr), -1) << parent;
        EXPECT_EQ(kit().openWindowCount(), 0);
        EXPECT_EQ(velmoran::platform::displayUsers(), 0);
    }
}

TEST_F(WindowKitX11, ChildHasTheDeviceSizeOfItsScale)
{
    const int slot = kit().createChildWindow(0, 0, 100, 50, 1.25f, host.window(), nullptr);
    ASSERT_GE(slot, 0);
    const XWindowAttributes attributes = host.attributes(kit().windowHandle(slot));
    EXPECT_EQ(attributes.width, 125);
    EXPECT_EQ(attributes.height, 63);
    kit().destroyWindow(slot);
    EXPECT_TRUE(host.children().empty());
    EXPECT_EQ(velmoran::platform::displayUsers(), 0);
}

struct CursorStep
{
    void (CPlatformWindows::*show)(bool);
    bool on;
    unsigned expected;
};

// The cursor switches save the cursor they replace and put it back.
TEST_F(WindowKitX11, CursorsShowAndRestore)
{
    const int slot = kit().createChildWindow(0, 0, 100, 50, 1.0f, host.window(), nullptr);
    ASSERT_GE(slot, 0);
    const CursorStep steps[] = {{&CPlatformWindows::showDiagonalResizeCursor, true, XC_bottom_right_corner},
                                {&CPlatformWindows::showDiagonalResizeCursor, false, XC_left_ptr},
                                {&CPlatformWindows::showHandCursor, true, XC_hand2},
                                {&CPlatformWindows::showHandCursor, false, XC_left_ptr},
                                {&CPlatformWindows::showWaitCursor, true, XC_watch}};
    for (const CursorStep& step : steps)
    {
        (kit().*step.show)(step.on);
        EXPECT_EQ(kit().cursorShape(), step.expected);
    }
    kit().restoreNormalCursor();
    EXPECT_EQ(kit().cursorShape(), static_cast<unsigned>(XC_left_ptr));
    kit().destroyWindow(slot);
}

} // namespace
