#include "CPlatformWindowsX11.h"

#include "X11Display.h"

#include <X11/Xatom.h>
#include <X11/Xresource.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace velmoran::platform
{

namespace
{

CPlatformWindows* gInstance = nullptr;

// _XEMBED_INFO: protocol version 0, and the flag that asks the embedder to show the window.
constexpr long kXEmbedVersion = 0;
constexpr long kXEmbedMapped = 1;

// The Windows virtual-key codes that the box windows' key-down callback gets.
constexpr int kVirtualKeyReturn = 0x0D;
constexpr int kVirtualKeyEscape = 0x1B;

constexpr unsigned kLeftHeld = 1;
constexpr unsigned kRightHeld = 2;
// The wheel delta of one step, as Windows reports a notch.
constexpr int kWheelNotch = 120;

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
    // The editor just opened is the one the user is dealing with: its boxes (the one that says why
    // it could not start) belong to its host until another editor has input.
    mLastInputWindow = window;
    applyCursor();
    return free;
}

unsigned long CPlatformWindows::ownerTopLevel() const
{
    Display* display = sharedDisplay();
    Window window = mLastInputWindow;
    if (window == 0 || !windowLive(window))
        for (const WindowSlot& slot : mSlots)
            if (slot.inUse != 0 && slot.isBox == 0)
                window = slot.window;
    // Up the tree to the child of the root: the host's top-level window.
    while (window != 0)
    {
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, window, &root, &parent, &children, &count) == 0)
            return 0;
        if (children != nullptr)
            XFree(children);
        if (parent == root)
            return window;
        window = parent;
    }
    return 0;
}

int CPlatformWindows::createBoxWindow(int width, int height, void* user)
{
    const auto free =
        std::find_if(mSlots.begin(), mSlots.end(), [](const WindowSlot& slot) { return slot.inUse == 0; });
    if (free == mSlots.end())
        return -1;
    Display* display = acquireDisplay();
    if (display == nullptr)
        return -1;
    const int screen = DefaultScreen(display);
    Window owner = 0;
    int x = (DisplayWidth(display, screen) - width) / 2;
    int y = (DisplayHeight(display, screen) - height) / 2;
    {
        IgnoredXErrors errors(display);
        owner = ownerTopLevel();
        XWindowAttributes ownerAttributes{};
        if (owner != 0 && XGetWindowAttributes(display, owner, &ownerAttributes) != 0)
        {
            x = ownerAttributes.x + (ownerAttributes.width - width) / 2;
            y = ownerAttributes.y + (ownerAttributes.height - height) / 2;
        }
    }
    const Window window = XCreateSimpleWindow(
        display, RootWindow(display, screen), std::max(0, x), std::max(0, y), static_cast<unsigned>(width),
        static_cast<unsigned>(height), 0, BlackPixel(display, screen), BlackPixel(display, screen));
    XSelectInput(display, window,
                 ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask | KeyPressMask |
                     StructureNotifyMask);
    if (owner != 0)
        XSetTransientForHint(display, window, owner);
    Atom deleteWindow = XInternAtom(display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display, window, &deleteWindow, 1);
    const Atom type = XInternAtom(display, "_NET_WM_WINDOW_TYPE", False);
    const Atom dialog = XInternAtom(display, "_NET_WM_WINDOW_TYPE_DIALOG", False);
    XChangeProperty(display, window, type, XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&dialog), 1);
    // A fixed size: the desktop offers no resizing.
    XSizeHints hints{};
    hints.flags = PMinSize | PMaxSize;
    hints.min_width = hints.max_width = width;
    hints.min_height = hints.max_height = height;
    XSetWMNormalHints(display, window, &hints);
    windowCreated(window);
    const int index = static_cast<int>(free - mSlots.begin());
    resetSlot(index);
    WindowSlot& slot = mSlots[index];
    slot.window = window;
    slot.user = user;
    slot.inUse = 1;
    slot.isBox = 1;
    slot.width = width;
    slot.height = height;
    slot.x = x;
    slot.y = y;
    applyCursor();
    return index;
}

void CPlatformWindows::putPixels(int index, const uint8_t* rgba, int width, int height)
{
    if (!validSlot(index) || mSlots[index].inUse == 0 || rgba == nullptr)
        return;
    Display* display = sharedDisplay();
    const int screen = DefaultScreen(display);
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (size_t pixel = 0; pixel < pixels.size(); ++pixel)
        pixels[pixel] =
            (uint32_t{rgba[pixel * 4]} << 16) | (uint32_t{rgba[pixel * 4 + 1]} << 8) | rgba[pixel * 4 + 2];
    XImage* image = XCreateImage(display, DefaultVisual(display, screen),
                                 static_cast<unsigned>(DefaultDepth(display, screen)), ZPixmap, 0,
                                 reinterpret_cast<char*>(pixels.data()), static_cast<unsigned>(width),
                                 static_cast<unsigned>(height), 32, 0);
    if (image == nullptr)
        return;
    GC gc = XCreateGC(display, mSlots[index].window, 0, nullptr);
    XPutImage(display, mSlots[index].window, gc, image, 0, 0, 0, 0, static_cast<unsigned>(width),
              static_cast<unsigned>(height));
    XFreeGC(display, gc);
    // The pixels belong to the vector, not to the image.
    image->data = nullptr;
    XDestroyImage(image);
    XFlush(display);
}

void CPlatformWindows::destroyBoxWindows()
{
    for (int index = 0; index < kSlotCount; ++index)
    {
        WindowSlot& slot = mSlots[index];
        if (slot.inUse == 0 || slot.isBox == 0)
            continue;
        const NotifyCallback notify = slot.destroyNotify;
        void* user = slot.user;
        destroyWindow(index);
        if (notify != nullptr)
            notify(index, user);
    }
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
        if (mSlots[index].colormap != 0)
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
    if (slot.colormap != 0)
    {
        IgnoredXErrors errors(sharedDisplay());
        XFreeColormap(sharedDisplay(), slot.colormap);
    }
    windowGone(slot.window);
    resetSlot(index);
    releaseDisplay();
}

bool CPlatformWindows::leftHeld() const
{
    return std::any_of(mSlots.begin(), mSlots.end(),
                       [](const WindowSlot& slot)
                       { return slot.inUse != 0 && (slot.buttonsHeld & kLeftHeld) != 0; });
}

void CPlatformWindows::resize(int index, int width, int height)
{
    if (!validSlot(index) || mSlots[index].inUse == 0 || width <= 0 || height <= 0)
        return;
    mSlots[index].width = width;
    mSlots[index].height = height;
    XResizeWindow(sharedDisplay(), mSlots[index].window, static_cast<unsigned>(width),
                  static_cast<unsigned>(height));
    XFlush(sharedDisplay());
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
    if (slot.isBox == 0 && (event.type == ButtonPress || event.type == MotionNotify))
        mLastInputWindow = slot.window;
    switch (event.type)
    {
    case ClientMessage:
        handleClientMessage(slot, index, event);
        break;
    case KeyPress:
        handleKeyPress(slot, index, const_cast<XEvent&>(event));
        break;
    case Expose:
        slot.paintPending = 1;
        break;
    case ButtonPress:
        noteModifiers(event.xbutton.state);
        handleButtonPress(slot, index, static_cast<int>(event.xbutton.button), event.xbutton.x,
                          event.xbutton.y, event.xbutton.time);
        break;
    case ButtonRelease:
        noteModifiers(event.xbutton.state);
        handleButtonRelease(slot, index, static_cast<int>(event.xbutton.button), event.xbutton.x,
                            event.xbutton.y);
        break;
    case MotionNotify:
        noteModifiers(event.xmotion.state);
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

void CPlatformWindows::handleClientMessage(WindowSlot& slot, int index, const XEvent& event)
{
    const Atom deleteWindow = XInternAtom(sharedDisplay(), "WM_DELETE_WINDOW", True);
    if (event.xclient.format != 32 || static_cast<Atom>(event.xclient.data.l[0]) != deleteWindow)
        return;
    // The close button of a box: it goes when its owner agrees, as on Windows.
    if (slot.closeQuery != nullptr && slot.closeQuery(index, slot.user))
        destroyWindow(index);
}

void CPlatformWindows::handleKeyPress(WindowSlot& slot, int index, XEvent& event)
{
    const KeySym key = XLookupKeysym(&event.xkey, 0);
    const int virtualKey = key == XK_Return || key == XK_KP_Enter ? kVirtualKeyReturn
                           : key == XK_Escape                     ? kVirtualKeyEscape
                                                                  : 0;
    if (virtualKey != 0 && slot.keyDown != nullptr)
        slot.keyDown(0, virtualKey, 1, index, slot.user);
}

void CPlatformWindows::handleButtonPress(WindowSlot& slot, int index, int button, int x, int y,
                                         unsigned long time)
{
    if (button == Button4 || button == Button5)
    {
        // One wheel step is one Windows notch of 120; without a wheel callback, a press with the
        // direction, then the release that always carries the wheel-up code.
        if (slot.mouseWheel != nullptr)
        {
            slot.mouseWheel(x, y, button == Button4 ? kWheelNotch : -kWheelNotch, index, slot.user);
            return;
        }
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

void CPlatformWindows::noteModifiers(unsigned state)
{
    mShiftHeld = (state & ShiftMask) != 0;
    mControlHeld = (state & ControlMask) != 0;
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
    // A window that is told of the loss ends the gesture itself; no release is made up for it,
    // which could land on a button as a click.
    if (slot.pointerLost != nullptr && slot.buttonsHeld != 0)
    {
        slot.buttonsHeld = 0;
        slot.pointerLost(index, slot.user);
        return;
    }
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

bool controlKeyHeld()
{
    const CPlatformWindows* windows = CPlatformWindows::instance(false);
    return windows != nullptr && windows->controlHeld();
}

bool leftButtonHeld()
{
    const CPlatformWindows* windows = CPlatformWindows::instance(false);
    return windows != nullptr && windows->leftHeld();
}

bool hasKeyboardFocus(NativeWindow window)
{
    return windowLive(window);
}

} // namespace velmoran::platform
