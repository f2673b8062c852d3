#include "editor/mbx/MBXWindow.h"

#include "editor/mbx/MBXComposer.h"
#include "editor/mbx/MBXLayout.h"
#include "editor/mbx/MBXManager.h"
#include "platform/render/ErrorBox.h"
#include "platform/window/WindowKit.h"

#include <spawn.h>

#include <cstdio>
#include <deque>
#include <string>

extern char** environ;

namespace Steinberg::Vst::Velmoran
{

namespace
{

using velmoran::platform::CPlatformWindows;

constexpr int kVirtualKeyReturn = 0x0D;
constexpr int kVirtualKeyEscape = 0x1B;

// A box with no window: its title and text go to the standard error stream.
void printBox(const MBXObject& box)
{
    std::fprintf(stderr, "%s: %s\n", box.title().c_str(), box.text().c_str());
}

// Boxes asked for while another is up wait here: as with the modal boxes on Windows, the user meets
// them one at a time. Each counts as shown from its request, so the editors stay grey meanwhile.
std::deque<MBXObject>& waitingBoxes()
{
    static std::deque<MBXObject> boxes;
    return boxes;
}
int gOpenBoxWindows = 0;

// One box on screen on X11: a top-level window of the kit, transient for the host's window, that
// lives on its own after the presenter has returned. The host's run loop delivers its events with
// the editor's; the box frees itself when a button is chosen or its window goes.
class MBXBoxWindow
{
public:
    // Opens the box; false when no window could be made (nothing is kept then).
    static bool open(const MBXObject& box, CPlatformWindows& kit)
    {
        auto* window = new MBXBoxWindow(box, kit);
        window->mSlot = kit.createBoxWindow(window->mLayout.width, window->mLayout.height, window);
        if (window->mSlot < 0)
        {
            delete window;
            return false;
        }
        window->registerCallbacks();
        MBXManager::instance().boxOpened();
        window->mCounted = true;
        ++gOpenBoxWindows;
        kit.setWindowTitle(window->mSlot, box.title().c_str());
        kit.showWindow(window->mSlot);
        return true;
    }

private:
    MBXBoxWindow(const MBXObject& box, CPlatformWindows& kit) : mBox(box), mKit(kit), mLayout(layoutBox(box))
    {
    }

    ~MBXBoxWindow()
    {
        if (!mCounted)
            return;
        --gOpenBoxWindows;
        MBXManager::instance().boxClosed();
    }

    // The next waiting box, once the user has answered this one.
    static void openNextWaiting(CPlatformWindows& kit)
    {
        if (waitingBoxes().empty())
            return;
        const MBXObject next = waitingBoxes().front();
        waitingBoxes().pop_front();
        if (!open(next, kit))
            printBox(next);
        MBXManager::instance().boxClosed();
    }

    // Nothing will drive the waiting boxes' windows any more.
    static void dropWaiting()
    {
        while (!waitingBoxes().empty())
        {
            printBox(waitingBoxes().front());
            waitingBoxes().pop_front();
            MBXManager::instance().boxClosed();
        }
    }

    static MBXBoxWindow& of(void* user) { return *static_cast<MBXBoxWindow*>(user); }

    static void onPaint(int, int, int, int, int, void* user) { of(user).paint(); }
    static void onMouseDown(int x, int y, int button, int, void* user)
    {
        if (button == velmoran::platform::kButtonLeft)
            of(user).press(x, y);
    }
    static void onMouseUp(int x, int y, int button, int, void* user)
    {
        if (button == velmoran::platform::kButtonLeft)
            of(user).release(x, y);
    }
    static void onMouseMove(int x, int y, int, int, void* user) { of(user).hover(x, y); }
    static void onKeyDown(int, int virtualKey, int, int, void* user)
    {
        MBXBoxWindow& window = of(user);
        if (virtualKey == kVirtualKeyReturn || virtualKey == kVirtualKeyEscape)
            window.close();
    }
    // The window's close button answers like Escape.
    static bool onCloseQuery(int, void* user)
    {
        of(user).close();
        return false;
    }
    // The window went without a choice (the last editor closed, or the module unloads).
    static void onDestroyed(int, void* user)
    {
        delete &of(user);
        dropWaiting();
    }

    void registerCallbacks()
    {
        mKit.setPaintCallback(mSlot, onPaint);
        mKit.setMouseDownCallback(mSlot, onMouseDown);
        mKit.setMouseUpCallback(mSlot, onMouseUp);
        mKit.setMouseMoveCallback(mSlot, onMouseMove);
        mKit.setKeyDownCallback(mSlot, onKeyDown);
        mKit.setCloseQueryCallback(mSlot, onCloseQuery);
        mKit.setDestroyNotifyCallback(mSlot, onDestroyed);
        mKit.setTrackMouseMoves(mSlot, true);
    }

    void paint()
    {
        const velmoran::platform::CanvasBuffer canvas = composeBox(mBox, mLayout, mPointer);
        mKit.putPixels(mSlot, canvas.pixel(0, 0), mLayout.width, mLayout.height);
    }

    void press(int x, int y)
    {
        mLinkPressed = linkAt(mLayout, x, y);
        mHeldButton = buttonAt(mLayout, x, y);
        hover(x, y);
    }

    // A button counts when the press and the release are both on it; every button closes the box.
    void release(int x, int y)
    {
        const bool chosen = mHeldButton >= 0 && buttonAt(mLayout, x, y) == mHeldButton;
        if (mLinkPressed && linkAt(mLayout, x, y))
            openLink();
        mHeldButton = -1;
        mLinkPressed = false;
        if (chosen)
        {
            close();
            return;
        }
        hover(x, y);
    }

    void hover(int x, int y)
    {
        const int button = buttonAt(mLayout, x, y);
        const bool onLink = linkAt(mLayout, x, y);
        if (onLink != mPointer.linkHovered)
            mKit.showHandCursor(onLink);
        const MBXPointerState pointer{button, button >= 0 && button == mHeldButton ? button : -1, onLink};
        const bool changed = pointer.hoveredButton != mPointer.hoveredButton ||
                             pointer.pressedButton != mPointer.pressedButton ||
                             pointer.linkHovered != mPointer.linkHovered;
        mPointer = pointer;
        if (changed)
            mKit.invalidate(mSlot, 0, 0, mLayout.width, mLayout.height);
    }

    // The desktop's browser, without waiting for it.
    void openLink() const
    {
        const std::string& target = mLayout.linkTarget;
        std::string address = target.rfind("http", 0) == 0 ? target : "https://" + target;
        char program[] = "xdg-open";
        char* arguments[] = {program, address.data(), nullptr};
        pid_t child = 0;
        posix_spawnp(&child, program, nullptr, nullptr, arguments, environ);
    }

    // Destroys the window; its destroy notification frees this object.
    void close()
    {
        if (mPointer.linkHovered)
            mKit.showHandCursor(false);
        const int slot = mSlot;
        CPlatformWindows& kit = mKit;
        kit.destroyWindow(slot);
        delete this;
        openNextWaiting(kit);
    }

    const MBXObject mBox;
    CPlatformWindows& mKit;
    MBXBoxLayout mLayout;
    MBXPointerState mPointer;
    int mHeldButton = -1;
    bool mLinkPressed = false;
    int mSlot = -1;
    // Counted by the manager as a box shown, until this goes.
    bool mCounted = false;
};

// True while an editor window is open, whose registration with the host's run loop also delivers
// a box's events.
bool editorWindowOpen(const CPlatformWindows& kit)
{
    for (int slot = 0; slot < CPlatformWindows::kSlotCount; ++slot)
        if (kit.slot(slot).inUse != 0 && kit.slot(slot).isBox == 0)
            return true;
    return false;
}

} // namespace

int presentInWindow(const MBXObject& box)
{
    // The box stays up, driven by the host's run loop, after this returns: no loop of its own may
    // hold the host's UI thread. The caller gets the default button at once. With no editor window
    // nothing would drive a box window, so the box goes to the standard error stream.
    CPlatformWindows* kit = CPlatformWindows::instance(false);
    if (kit != nullptr && editorWindowOpen(*kit) && gOpenBoxWindows > 0)
    {
        waitingBoxes().push_back(box);
        MBXManager::instance().boxOpened();
    }
    else if (kit == nullptr || !editorWindowOpen(*kit) || !MBXBoxWindow::open(box, *kit))
        printBox(box);
    return box.defaultButton();
}

void useBoxWindows(bool use)
{
    MBXManager::instance().setWindowPresenter(use ? presentInWindow : nullptr);
    velmoran::platform::setErrorBoxFunction(use ? showEditorError : nullptr);
}

} // namespace Steinberg::Vst::Velmoran
