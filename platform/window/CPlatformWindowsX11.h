#pragma once

#include "WindowSlotX11.h"

#include <array>
#include <cstdint>

union _XEvent;

namespace velmoran::platform
{

// The process-wide window kit on Linux: owns the editors' X11 windows, addressed by slot index,
// and turns their events into the slots' callbacks. It runs no thread and no loop of its own: the
// host's run loop tells it when the X connection has events and when a window's timer is due.
// All calls come from the host's UI thread.
class CPlatformWindows
{
public:
    static constexpr int kSlotCount = 255;
    // XC_left_ptr of the X cursor font.
    static constexpr unsigned kArrowCursorShape = 68;
    // Two left presses closer than this in time (ms) and distance (pixels each way) are a
    // double-click, as on a default Windows desktop.
    static constexpr unsigned long kDoubleClickMs = 500;
    static constexpr int kDoubleClickDistance = 2;

    // The kit, created first if asked for and absent; null when absent and not asked for.
    static CPlatformWindows* instance(bool create);
    // Destroys every window and forgets the kit.
    static void release();

    // A hidden child window of the host's XEmbed window, size in logical pixels, with the visual
    // of the editor's frame-buffer configuration; its slot or -1.
    int createChildWindow(int x, int y, int width, int height, float scale, NativeWindow parent, void* user);
    // A top-level window for a message box, transient for the top-level window of the editor that
    // last had input or was made, whichever came later (so the desktop keeps it above the host),
    // centred over it; its slot or -1.
    // Its close button asks the close-query callback; Return and Escape reach the key-down
    // callback as VK_RETURN and VK_ESCAPE.
    int createBoxWindow(int width, int height, void* user);
    // Shows width x height RGBA pixels (top row first) in a box window.
    void putPixels(int slot, const uint8_t* rgba, int width, int height);
    // Destroys every box window, telling each through its destroy-notify callback.
    void destroyBoxWindows();
    // Destroys an in-use slot's window and frees the slot.
    void destroyWindow(int slot);
    // Clears a slot to its free state (the window is not destroyed).
    void resetSlot(int slot);

    // Callback setters: each stores one callback of a slot (null removes it).
    void setPaintCallback(int slot, PaintCallback callback);
    void setMouseDownCallback(int slot, MouseCallback callback);
    void setMouseUpCallback(int slot, MouseCallback callback);
    void setMouseMoveCallback(int slot, MouseCallback callback);
    void setDoubleClickCallback(int slot, MouseCallback callback);
    void setDestroyNotifyCallback(int slot, NotifyCallback callback);
    void setCloseQueryCallback(int slot, CloseQueryCallback callback);
    void setKeyDownCallback(int slot, KeyCallback callback);
    void setKeyUpCallback(int slot, KeyCallback callback);
    void setFileDropCallback(int slot, FileDropCallback callback);
    void setPointerLostCallback(int slot, NotifyCallback callback);
    void setMouseWheelCallback(int slot, MouseCallback callback);
    void setKeyHandler(int slot, KeyHandler handler);
    // Stores the timer callback; the host's run loop calls it through fireTimer.
    void setTimerCallback(int slot, TimerCallback callback);
    // The period that the host's run loop is asked to tick window timers at, in ms.
    void setWindowTimerPeriod(uint32_t milliseconds) { mWindowTimerPeriod = milliseconds; }
    uint32_t windowTimerPeriod() const { return mWindowTimerPeriod; }

    // Maps the window and waits until the server has it, so the host sees it at once.
    void showWindow(int slot);
    // Names the window (WM_NAME).
    void setWindowTitle(int slot, const char* title);
    // An embedded window has no icon of its own: the host's frame shows the host's.
    void setWindowIcon(int, int) {}
    // Files dropped from a file manager are not taken on X11.
    void acceptDroppedFiles(int) {}
    // Reports moves without a button held (on) or not (off); gives back the slot.
    int setTrackMouseMoves(int slot, bool track);

    // Marks the window for a paint at the end of the current event or timer dispatch.
    void invalidate(int slot, int x, int y, int width, int height);
    // Keys reach the editor through the host (the view's key calls): the kit takes no focus.
    void giveFocus(int) {}
    // A press already holds X's implicit pointer grab until its release: nothing to add.
    void captureMouse(int) {}
    void releaseCapture() {}

    // Cursor of every editor window: the arrow, or while shown the hand, the diagonal resize or
    // the wait cursor.
    void restoreNormalCursor();
    void showWaitCursor(bool show);
    void showHandCursor(bool show);
    void showDiagonalResizeCursor(bool show);
    // The X cursor-font shape the editor windows show (the arrow unless another one is shown).
    unsigned cursorShape() const { return mCursorShape; }

    // The X window of a slot (0 for a free one).
    NativeWindow windowHandle(int slot) const;
    // Device pixels per logical pixel from the desktop's Xft.dpi, 1.0 to 2.0, measured once.
    float displayScale();
    // The scale for a screen resolution in dpi: 1.0 up to 96 dpi, else dpi / 96 capped at 2.0.
    static float displayScaleForDpi(int dpi);
    // Device size of a logical size at a scale, rounded half up.
    static int deviceSize(int logicalSize, float scale);

    // The X connection's file descriptor while a window is open, else -1.
    int connectionDescriptor() const;
    // Reads every event the connection has, calls the windows' callbacks and paints what was
    // invalidated; never waits.
    void dispatchEvents();
    // One tick of a slot's timer, after the events already read, then the paints it asked for.
    void fireTimer(int slot);
    // Number of windows in use.
    int openWindowCount() const;
    // The state of Shift in the last input event.
    bool shiftHeld() const { return mShiftHeld; }
    bool controlHeld() const { return mControlHeld; }
    // True while the left button is held over one of the kit's windows.
    bool leftHeld() const;
    // Gives the window a new size in device pixels.
    void resize(int slot, int width, int height);

    // Destroys every window.
    void teardown();

    // Read access to the window table, 0..254.
    const WindowSlot& slot(int index) const { return mSlots[index]; }

private:
    CPlatformWindows() = default;

    bool validSlot(int slot) const { return slot >= 0 && slot < kSlotCount; }
    int slotOfWindow(unsigned long window) const;
    void handleEvent(const _XEvent& event);
    void handleButtonPress(WindowSlot& slot, int index, int button, int x, int y, unsigned long time);
    void handleButtonRelease(WindowSlot& slot, int index, int button, int x, int y);
    void handleMotion(WindowSlot& slot, int index, int x, int y);
    // Keeps the modifier keys an input event reports, for the editor's queries.
    void noteModifiers(unsigned state);
    void endDrag(WindowSlot& slot, int index, int x, int y);
    void handleDestroyed(int index);
    void handleClientMessage(WindowSlot& slot, int index, const _XEvent& event);
    void handleKeyPress(WindowSlot& slot, int index, _XEvent& event);
    unsigned long ownerTopLevel() const;
    void paintInvalidated();
    void showCursor(unsigned shape, bool show);
    void applyCursor();

    std::array<WindowSlot, kSlotCount> mSlots{};
    uint32_t mWindowTimerPeriod = 0;
    float mDisplayScale = 0.0f;
    unsigned mCursorShape = kArrowCursorShape;
    unsigned mSavedCursorShape = 0;
    bool mShiftHeld = false;
    bool mControlHeld = false;
    // The editor window that last had input or was made last: boxes belong to its top-level window.
    unsigned long mLastInputWindow = 0;
};

// Module load: creates the window kit (the product token names no window class on X11).
void initWindowKit(const char* productToken);
// Module unload: destroys every window of the kit and frees it.
void exitWindowKit();

} // namespace velmoran::platform
