#include "CPlatformWindowsX11.h"

#include "X11Display.h"

#include <X11/Xatom.h>
#include <X11/Xresource.h>
#include <X11/cursorfont.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace velmoran::platform
{

namespace
{

CPlatformWindows* gInstance = nullptr;

// _XEMBED_INFO: protocol version 0, and the flag that asks the embedder to show the window.
constexpr long kXEmbedVersion = 0;
constexpr long kXEmbedMapped = 1;

constexpr unsigned kLeftHeld = 1;
constexpr unsigned kRightHeld = 2;

void publishXEmbedInfo(Display* display, Window window)
{
    const Atom info = XInternAtom(display, "_XEMBED_INFO", False);
    const long data[2] = {kXEmbedVersion, kXEmbedMapped};
    XChangeProperty(display, window, info, info, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(data), 2);
}

// Xft.dpi from the desktop's resources, 0 when it does not say.
int desktopDpi(Display* display)
{
    const char* resources = XResourceManagerString(display);
    if (resources == nullptr)
        return 0;
    const char* entry = std::strstr(resources, "Xft.dpi:");
    return entry != nullptr ? std::atoi(entry + std::strlen("Xft.dpi:")) : 0;
}

int buttonCode(unsigned held)
{
    // As the Windows kit reports moves: 1 with only the left button held, 0 otherwise.
    return (held & kLeftHeld) != 0 && (held & kRightHeld) == 0 ? 1 : 0;
}

// A crossing that tells a drag's grab is gone: a grab or ungrab, or the pointer leaving a window
// that is no longer shown (the server then drops the grab without a release).
bool grabEnded(const XCrossingEvent& crossing)
{
    if (crossing.mode != NotifyNormal)
        return true;
    if (crossing.type != LeaveNotify)
        return false;
    XWindowAttributes attributes{};
    return XGetWindowAttributes(crossing.display, crossing.window, &attributes) == 0 ||
           attributes.map_state != IsViewable;
}

} // namespace

CPlatformWindows* CPlatformWindows::instance(bool create)
{
    if (gInstance == nullptr && create)
        gInstance = new CPlatformWindows();
    return gInstance;
}

void CPlatformWindows::release()
{
    if (gInstance == nullptr)
        return;
    gInstance->teardown();
    delete gInstance;
    gInstance = nullptr;
}

int CPlatformWindows::deviceSize(int logicalSize, float scale)
{
    return static_cast<int>(static_cast<float>(logicalSize) * scale + 0.5f);
}

float CPlatformWindows::displayScaleForDpi(int dpi)
{
    if (dpi < 97)
        return 1.0f;
    return std::min(2.0f, static_cast<float>(dpi) / 96.0f);
}

float CPlatformWindows::displayScale()
{
    if (mDisplayScale != 0.0f)
        return mDisplayScale;
    Display* display = acquireDisplay();
    if (display == nullptr)
        return 1.0f;
    mDisplayScale = displayScaleForDpi(desktopDpi(display));
    releaseDisplay();
    return mDisplayScale;
}

int CPlatformWindows::createChildWindow(int x, int y, int width, int height, float scale, NativeWindow parent,
                                        void* user)
{
    const int free = [this]
    {
        for (int index = 0; index < kSlotCount; ++index)
            if (mSlots[index].inUse == 0)
                return index;
        return -1;
    }();
    if (free < 0 || parent == 0)
        return -1;
    Display* display = acquireDisplay();
    if (display == nullptr)
        return -1;
    GLXFBConfig config = editorFrameBufferConfig();
    XVisualInfo* visual = config != nullptr ? glXGetVisualFromFBConfig(display, config) : nullptr;
    if (visual == nullptr)
    {
        releaseDisplay();
        return -1;
    }
    const int deviceWidth = std::max(1, deviceSize(width, scale));
    const int deviceHeight = std::max(1, deviceSize(height, scale));
    Window window = 0;
    Colormap colormap = 0;
    {
        IgnoredXErrors errors(display);
        colormap = XCreateColormap(display, RootWindow(display, visual->screen), visual->visual, AllocNone);
        XSetWindowAttributes attributes{};
        attributes.colormap = colormap;
        attributes.border_pixel = 0;
        attributes.background_pixel = BlackPixel(display, visual->screen);
        attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                                EnterWindowMask | LeaveWindowMask | StructureNotifyMask;
        window =
            XCreateWindow(display, parent, 0, 0, static_cast<unsigned>(deviceWidth),
                          static_cast<unsigned>(deviceHeight), 0, visual->depth, InputOutput, visual->visual,
                          CWColormap | CWBorderPixel | CWBackPixel | CWEventMask, &attributes);
        publishXEmbedInfo(display, window);
        if (errors.failed())
        {
            // The parent is gone or is no window: nothing of the attempt is kept.
            XDestroyWindow(display, window);
            XFreeColormap(display, colormap);
            window = 0;
        }
    }
    XFree(visual);
    if (window == 0)
    {
        releaseDisplay();
        return -1;
    }
    windowCreated(window);
    WindowSlot& slot = mSlots[free];
    resetSlot(free);
    slot.window = window;
    slot.colormap = colormap;
    slot.user = user;
    slot.inUse = 1;
    slot.scale = scale;
    slot.width = deviceWidth;
    slot.height = deviceHeight;
    slot.x = x;
    slot.y = y;
    applyCursor();
    return free;
}

void CPlatformWindows::destroyWindow(int index)
{
    if (!validSlot(index) || mSlots[index].inUse == 0)
        return;
    Display* display = sharedDisplay();
    {
        // The host may already have destroyed the parent and with it this window.
        IgnoredXErrors errors(display);
        XDestroyWindow(display, mSlots[index].window);
        XFreeColormap(display, mSlots[index].colormap);
    }
    windowGone(mSlots[index].window);
    resetSlot(index);
    releaseDisplay();
}

void CPlatformWindows::handleDestroyed(int index)
{
    WindowSlot& slot = mSlots[index];
    if (slot.destroyNotify != nullptr)
        slot.destroyNotify(index, slot.user);
    {
        IgnoredXErrors errors(sharedDisplay());
        XFreeColormap(sharedDisplay(), slot.colormap);
    }
    windowGone(slot.window);
    resetSlot(index);
    releaseDisplay();
}

void CPlatformWindows::resetSlot(int index)
{
    if (validSlot(index))
        mSlots[index] = WindowSlot{};
}

void CPlatformWindows::setPaintCallback(int index, PaintCallback callback)
{
    if (validSlot(index))
        mSlots[index].paint = callback;
}

void CPlatformWindows::setMouseDownCallback(int index, MouseCallback callback)
{
    if (validSlot(index))
        mSlots[index].mouseDown = callback;
}

void CPlatformWindows::setMouseUpCallback(int index, MouseCallback callback)
{
    if (validSlot(index))
        mSlots[index].mouseUp = callback;
}

void CPlatformWindows::setMouseMoveCallback(int index, MouseCallback callback)
{
    if (validSlot(index))
        mSlots[index].mouseMove = callback;
}

void CPlatformWindows::setDoubleClickCallback(int index, MouseCallback callback)
{
    if (validSlot(index))
        mSlots[index].doubleClick = callback;
}

void CPlatformWindows::setDestroyNotifyCallback(int index, NotifyCallback callback)
{
    if (validSlot(index))
        mSlots[index].destroyNotify = callback;
}

void CPlatformWindows::setCloseQueryCallback(int index, CloseQueryCallback callback)
{
    if (validSlot(index))
        mSlots[index].closeQuery = callback;
}

void CPlatformWindows::setKeyDownCallback(int index, KeyCallback callback)
{
    if (validSlot(index))
        mSlots[index].keyDown = callback;
}

void CPlatformWindows::setKeyUpCallback(int index, KeyCallback callback)
{
    if (validSlot(index))
        mSlots[index].keyUp = callback;
}

void CPlatformWindows::setFileDropCallback(int index, FileDropCallback callback)
{
    if (validSlot(index))
        mSlots[index].fileDrop = callback;
}

void CPlatformWindows::setTimerCallback(int index, TimerCallback callback)
{
    if (validSlot(index) && mSlots[index].inUse != 0)
        mSlots[index].timer = callback;
}

void CPlatformWindows::showWindow(int index)
{
    if (!validSlot(index) || mSlots[index].inUse == 0)
        return;
    XMapWindow(sharedDisplay(), mSlots[index].window);
    XSync(sharedDisplay(), False);
}

void CPlatformWindows::setWindowTitle(int index, const char* title)
{
    if (validSlot(index) && mSlots[index].inUse != 0 && title != nullptr)
        XStoreName(sharedDisplay(), mSlots[index].window, title);
}

int CPlatformWindows::setTrackMouseMoves(int index, bool track)
{
    if (validSlot(index))
        mSlots[index].trackMoves = track ? 1 : 0;
    return index;
}

void CPlatformWindows::invalidate(int index, int, int, int, int)
{
    if (validSlot(index) && mSlots[index].inUse != 0)
        mSlots[index].paintPending = 1;
}

NativeWindow CPlatformWindows::windowHandle(int index) const
{
    return validSlot(index) ? mSlots[index].window : 0;
}

int CPlatformWindows::connectionDescriptor() const
{
    return sharedDisplay() != nullptr ? ConnectionNumber(sharedDisplay()) : -1;
}

int CPlatformWindows::openWindowCount() const
{
    return static_cast<int>(
        std::count_if(mSlots.begin(), mSlots.end(), [](const WindowSlot& slot) { return slot.inUse != 0; }));
}

int CPlatformWindows::slotOfWindow(unsigned long window) const
{
    for (int index = 0; index < kSlotCount; ++index)
        if (mSlots[index].inUse != 0 && mSlots[index].window == window)
            return index;
    return -1;
}

void CPlatformWindows::dispatchEvents()
{
    Display* display = sharedDisplay();
    if (display == nullptr)
        return;
    while (sharedDisplay() != nullptr && XPending(display) > 0)
    {
        XEvent event;
        XNextEvent(display, &event);
        handleEvent(event);
    }
    paintInvalidated();
}

void CPlatformWindows::fireTimer(int index)
{
    // Events that a round trip of the kit's own took off the connection are not announced by its
    // descriptor any more: the tick reads them.
    dispatchEvents();
    if (!validSlot(index) || mSlots[index].inUse == 0 || mSlots[index].timer == nullptr)
        return;
    mSlots[index].timer(mSlots[index].user);
    paintInvalidated();
}

void CPlatformWindows::paintInvalidated()
{
    for (int index = 0; index < kSlotCount; ++index)
    {
        WindowSlot& slot = mSlots[index];
        if (slot.inUse == 0 || slot.paintPending == 0)
            continue;
        slot.paintPending = 0;
        if (slot.paint != nullptr)
            slot.paint(0, 0, slot.width, slot.height, index, slot.user);
    }
}

void CPlatformWindows::handleEvent(const XEvent& event)
{
    const int index = slotOfWindow(event.xany.window);
    if (index < 0)
        return;
    WindowSlot& slot = mSlots[index];
    switch (event.type)
    {
    case Expose:
        slot.paintPending = 1;
        break;
    case ButtonPress:
        mShiftHeld = (event.xbutton.state & ShiftMask) != 0;
        handleButtonPress(slot, index, static_cast<int>(event.xbutton.button), event.xbutton.x,
                          event.xbutton.y, event.xbutton.time);
        break;
    case ButtonRelease:
        mShiftHeld = (event.xbutton.state & ShiftMask) != 0;
        handleButtonRelease(slot, index, static_cast<int>(event.xbutton.button), event.xbutton.x,
                            event.xbutton.y);
        break;
    case MotionNotify:
        mShiftHeld = (event.xmotion.state & ShiftMask) != 0;
        handleMotion(slot, index, event.xmotion.x, event.xmotion.y);
        break;
    case EnterNotify:
    case LeaveNotify:
        // A grab that ends with buttons still held (the window was hidden mid-drag, or another
        // client took the pointer) ends the drag as a release would; otherwise crossing the edge
        // is a move, so that hover marks follow the pointer in and out.
        if (slot.buttonsHeld != 0 && grabEnded(event.xcrossing))
            endDrag(slot, index, event.xcrossing.x, event.xcrossing.y);
        else if (event.xcrossing.mode == NotifyNormal)
            handleMotion(slot, index, event.xcrossing.x, event.xcrossing.y);
        break;
    case DestroyNotify:
        if (event.xdestroywindow.window == slot.window)
            handleDestroyed(index);
        break;
    default:
        break;
    }
}

void CPlatformWindows::handleButtonPress(WindowSlot& slot, int index, int button, int x, int y,
                                         unsigned long time)
{
    if (button == Button4 || button == Button5)
    {
        // One wheel step is one Windows notch: a press with the direction, then the release that
        // always carries the wheel-up code.
        if (slot.mouseDown != nullptr)
            slot.mouseDown(x, y, button == Button4 ? kButtonWheelUp : kButtonWheelDown, index, slot.user);
        if (slot.inUse != 0 && slot.mouseUp != nullptr)
            slot.mouseUp(x, y, kButtonWheelUp, index, slot.user);
        return;
    }
    if (button != Button1 && button != Button3)
        return;
    slot.buttonsHeld |= button == Button1 ? kLeftHeld : kRightHeld;
    if (button == Button3)
    {
        if (slot.mouseDown != nullptr)
            slot.mouseDown(x, y, kButtonRight, index, slot.user);
        return;
    }
    const bool doubleClick = slot.lastPressCounts && time - slot.lastPressTime <= kDoubleClickMs &&
                             std::abs(x - slot.lastPressX) <= kDoubleClickDistance &&
                             std::abs(y - slot.lastPressY) <= kDoubleClickDistance;
    // A third press starts a new pair rather than making a second double-click.
    slot.lastPressCounts = !doubleClick;
    slot.lastPressTime = time;
    slot.lastPressX = x;
    slot.lastPressY = y;
    const MouseCallback callback = doubleClick ? slot.doubleClick : slot.mouseDown;
    if (callback != nullptr)
        callback(x, y, kButtonLeft, index, slot.user);
}

void CPlatformWindows::handleButtonRelease(WindowSlot& slot, int index, int button, int x, int y)
{
    if (button != Button1 && button != Button3)
        return;
    const unsigned bit = button == Button1 ? kLeftHeld : kRightHeld;
    if ((slot.buttonsHeld & bit) == 0)
        return;
    slot.buttonsHeld &= ~bit;
    if (slot.mouseUp != nullptr)
        slot.mouseUp(x, y, button == Button1 ? kButtonLeft : kButtonRight, index, slot.user);
}

void CPlatformWindows::handleMotion(WindowSlot& slot, int index, int x, int y)
{
    if (slot.trackMoves == 0 && slot.buttonsHeld == 0)
        return;
    if (slot.mouseMove != nullptr)
        slot.mouseMove(x, y, buttonCode(slot.buttonsHeld), index, slot.user);
}

void CPlatformWindows::endDrag(WindowSlot& slot, int index, int x, int y)
{
    for (const unsigned bit : {kLeftHeld, kRightHeld})
    {
        if ((slot.buttonsHeld & bit) == 0)
            continue;
        slot.buttonsHeld &= ~bit;
        if (slot.inUse != 0 && slot.mouseUp != nullptr)
            slot.mouseUp(x, y, bit == kLeftHeld ? kButtonLeft : kButtonRight, index, slot.user);
    }
}

void CPlatformWindows::restoreNormalCursor()
{
    mCursorShape = mSavedCursorShape != 0 ? mSavedCursorShape : kArrowCursorShape;
    applyCursor();
}

void CPlatformWindows::showWaitCursor(bool show)
{
    showCursor(XC_watch, show);
}

void CPlatformWindows::showHandCursor(bool show)
{
    showCursor(XC_hand2, show);
}

void CPlatformWindows::showDiagonalResizeCursor(bool show)
{
    showCursor(XC_bottom_right_corner, show);
}

void CPlatformWindows::showCursor(unsigned shape, bool show)
{
    if (show)
    {
        mSavedCursorShape = mCursorShape;
        mCursorShape = shape;
    }
    else if (mSavedCursorShape != 0)
    {
        mCursorShape = mSavedCursorShape;
    }
    applyCursor();
}

void CPlatformWindows::applyCursor()
{
    Display* display = sharedDisplay();
    if (display == nullptr)
        return;
    // The server keeps a cursor while a window shows it, so it is freed at once.
    const Cursor cursor = XCreateFontCursor(display, mCursorShape);
    for (const WindowSlot& slot : mSlots)
        if (slot.inUse != 0)
            XDefineCursor(display, slot.window, cursor);
    XFreeCursor(display, cursor);
    XFlush(display);
}

void CPlatformWindows::teardown()
{
    for (int index = 0; index < kSlotCount; ++index)
        destroyWindow(index);
}

void initWindowKit(const char*)
{
    CPlatformWindows::instance(true);
}

void exitWindowKit()
{
    CPlatformWindows::release();
}

void clientSize(NativeWindow window, int& width, int& height)
{
    width = 0;
    height = 0;
    Display* display = sharedDisplay();
    if (display == nullptr || !windowLive(window))
        return;
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) != 0)
    {
        width = attributes.width;
        height = attributes.height;
    }
}

bool shiftKeyHeld()
{
    const CPlatformWindows* windows = CPlatformWindows::instance(false);
    return windows != nullptr && windows->shiftHeld();
}

} // namespace velmoran::platform
