#pragma once

#include "WindowSlot.h"

#include <array>
#include <cstdint>

namespace velmoran::platform
{

// The process-wide window kit: owns every native window of the plug-in, addressed by slot index,
// and turns their messages into the slots' callbacks. All calls come from the host's UI thread.
class CPlatformWindows
{
public:
    static constexpr int kSlotCount = 255;
    static constexpr int kClassNameLength = 128;

    // The kit, created first if asked for and absent; null when absent and not asked for.
    static CPlatformWindows* instance(bool create);
    // Kills the idle timer and forgets the kit.
    static void release();

    // Names both window classes after the 12-digit product token ("<token>-UI", "<token>-SPLASH").
    void setClassNames(const char* productToken);
    // The two window-class names.
    const char* uiClassName() const { return mUiClassName; }
    const char* splashClassName() const { return mSplashClassName; }

    // A hidden child window of the host's window, size in logical pixels; its slot or -1.
    int createChildWindow(int x, int y, int width, int height, float scale, HWND parent, void* user);
    // A borderless window centred in the work area, size in logical pixels; its slot or -1.
    int createSplashWindow(int width, int height, float scale, void* user);
    // Destroys an in-use slot's window and frees the slot.
    void destroyWindow(int slot);
    // Clears a slot to its free state (handles are not released).
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
    void setSpareCallback(int slot, NotifyCallback callback);
    void setPointerLostCallback(int slot, NotifyCallback callback);
    void setMouseWheelCallback(int slot, MouseCallback callback);
    void setKeyHandler(int slot, KeyHandler handler);
    // Stores the timer callback and starts the window's timer at the window-timer period; a free
    // slot is left alone.
    void setTimerCallback(int slot, TimerCallback callback);

    // Period of window timers started from now on, in ms.
    void setWindowTimerPeriod(uint32_t milliseconds);
    // Period of the idle timer in ms; starts it if an idle callback waits and none runs.
    void setIdlePeriod(uint32_t milliseconds);
    // Sets (and starts the idle timer for) or, with null, clears the idle callback and stops its
    // timer.
    void setIdleCallback(IdleCallback callback);

    // Dispatches every pending message of the thread, then calls the idle callback once.
    void pumpMessages();
    // Makes a slot's window visible.
    void showWindow(int slot);
    // Sets the window's title (ANSI text).
    void setWindowTitle(int slot, const char* title);
    // Gives the window the icon group of that resource id; nothing changes if it is missing.
    void setWindowIcon(int slot, int iconResourceId);
    // Lets Explorer drop files on the window (reported to the file-drop callback).
    void acceptDroppedFiles(int slot);
    // Reports moves without a button held (on) or not (off); gives back the slot.
    int setTrackMouseMoves(int slot, bool track);

    // New size in device pixels; the window also comes to the top of its siblings.
    void resize(int slot, int width, int height);
    // Marks a rectangle (client pixels) for repainting, without erasing.
    void invalidate(int slot, int x, int y, int width, int height);
    // Gives the window the keyboard focus.
    void giveFocus(int slot);
    // Sends every mouse message to the window until the capture is released.
    void captureMouse(int slot);
    void releaseCapture();

    // Puts the saved cursor back (the arrow when none is saved).
    void restoreNormalCursor();
    // Cursor switches: true shows the cursor and saves the one it replaced, false restores that one.
    void showWaitCursor(bool show);
    void showHandCursor(bool show);
    void showDiagonalResizeCursor(bool show);

    // The native window of a slot (null for a free one).
    HWND windowHandle(int slot) const;
    // Width and height of the desktop window in pixels.
    void desktopSize(int& width, int& height) const;
    // Device pixels per logical pixel, 1.0 to 2.0, measured once.
    float displayScale();

    // Copies part of a GDI bitmap into the window at (destX, destY), cut at the bitmap's edges.
    void blitBitmap(int slot, HBITMAP bitmap, int bitmapWidth, int bitmapHeight, int sourceX, int sourceY,
                    int width, int height, int destX, int destY);

    // Stores now as the last frame time.
    void setFrameTime();
    // Milliseconds since the last frame time; stores now as the new one.
    double frameTimeDelta();
    // Stores now as the reference time.
    void setReferenceTime();
    // Milliseconds since the reference time; stores now as the new one.
    double referenceTimeDelta();
    // The two stored time stamps in ms.
    double frameTime() const { return mFrameTime; }
    double referenceTime() const { return mReferenceTime; }

    // Destroys every window, waits for the window procedure to return and unregisters the classes.
    void teardown();

    // Read access to the window table, 0..254.
    const WindowSlot& slot(int index) const { return mSlots[index]; }
    // True once teardown has begun.
    bool shuttingDown() const { return mShuttingDown; }
    // The reserved per-slot integer (-1 unless set).
    int slotMapping(int index) const { return mSlotMapping[index]; }
    // Brightening curve (exponent 0.8) for 8-bit channels of software images.
    const std::array<int, 256>& gammaTable() const { return mGammaTable; }

    // A millisecond stamp.
    static uint32_t millisecondStamp();
    // Milliseconds since a stamp, correct across the 49-day wrap.
    static uint32_t millisecondsSince(uint32_t stamp);
    // Sleeps that many ms; a negative duration does nothing.
    static void sleepMilliseconds(int milliseconds);
    // The scale for a screen resolution in dpi: 1.0 up to 96 dpi or when not DPI-aware, else dpi / 96
    // capped at 2.0.
    static float displayScaleForDpi(bool dpiAware, int dpi);
    // Device size of a logical size at a scale, rounded half up.
    static int deviceSize(int logicalSize, float scale);
    // The instance handle of the module this code lives in.
    static HINSTANCE moduleInstance();

private:
    CPlatformWindows();

    static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static void CALLBACK idleTimerProcedure(HWND, UINT, UINT_PTR, DWORD);
    LRESULT handleMessage(WindowSlot& slot, int index, HWND window, UINT message, WPARAM wParam,
                          LPARAM lParam);
    void handlePaint(WindowSlot& slot, int index, HWND window);
    void handleMouseMove(WindowSlot& slot, int index, WPARAM wParam, LPARAM lParam);
    void handleMouseWheel(WindowSlot& slot, int index, HWND window, WPARAM wParam);
    LRESULT handleKey(WindowSlot& slot, int index, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void handleDroppedFiles(WindowSlot& slot, int index, WPARAM wParam);
    void handleDestroyNotification(int index);
    void releaseSlotWindow(int index);
    void registerClass(const char* name, UINT style);
    int occupySlot(HWND window, int x, int y, int deviceWidth, int deviceHeight, float scale, void* user);
    bool validSlot(int slot) const { return slot >= 0 && slot < kSlotCount; }
    void startIdleTimer();
    void stopIdleTimer();
    static void waitForWindowProcedure();
    void showCursor(LPCSTR cursor, bool show);

    uint32_t mInitialised = 1;
    std::array<WindowSlot, kSlotCount> mSlots{};
    std::array<int32_t, kSlotCount> mSlotMapping{};
    std::array<int, 256> mGammaTable{};
    uint32_t mIdlePeriod = 0;
    uint32_t mWindowTimerPeriod = 0;
    float mDisplayScale = 0.0f;
    bool mShuttingDown = false;
    double mFrameTime = 0.0;
    double mReferenceTime = 0.0;
    IdleCallback mIdleCallback = nullptr;
    UINT_PTR mIdleTimer = 0;
    char mUiClassName[kClassNameLength] = {};
    char mSplashClassName[kClassNameLength] = {};
    HCURSOR mSavedCursor = nullptr;
};

// Module load: creates the window kit and names its classes after the product token.
void initWindowKit(const char* productToken);
// Module unload: destroys every window of the kit, unregisters its classes and frees it.
void exitWindowKit();

} // namespace velmoran::platform
