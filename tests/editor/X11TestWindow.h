#pragma once

// A host's top-level window on its own X connection, into which the Linux editor tests embed the
// editor, and what the host sees of the editor's window.

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <GL/glx.h>

#include <set>
#include <vector>

namespace velmoran::test
{

class X11TestWindow
{
public:
    X11TestWindow(int width = 2100, int height = 1400, int x = 0, int y = 0) : mDisplay(XOpenDisplay(nullptr))
    {
        if (mDisplay == nullptr)
            return;
        mWindow = XCreateSimpleWindow(mDisplay, DefaultRootWindow(mDisplay), x, y, width, height, 0, 0, 0);
        XSelectInput(mDisplay, mWindow, StructureNotifyMask | SubstructureNotifyMask);
        XMapWindow(mDisplay, mWindow);
        XSync(mDisplay, False);
    }
    ~X11TestWindow()
    {
        if (mDisplay == nullptr)
            return;
        destroy();
        XCloseDisplay(mDisplay);
    }
    X11TestWindow(const X11TestWindow&) = delete;
    X11TestWindow& operator=(const X11TestWindow&) = delete;

    bool valid() const { return mDisplay != nullptr && mWindow != 0; }
    Display* display() const { return mDisplay; }
    Window window() const { return mWindow; }
    // The window as a host hands it to the view's attached.
    void* parent() const { return reinterpret_cast<void*>(mWindow); }

    void destroy()
    {
        if (mWindow == 0)
            return;
        XDestroyWindow(mDisplay, mWindow);
        XSync(mDisplay, False);
        mWindow = 0;
    }

    // The windows inside the host's window.
    std::vector<Window> children() const { return childrenOf(mWindow); }

    // The top-level windows that the desktop keeps above the host's (transient for it).
    std::vector<Window> transients() const
    {
        std::vector<Window> result;
        for (const Window window : childrenOf(DefaultRootWindow(mDisplay)))
        {
            Window owner = 0;
            if (XGetTransientForHint(mDisplay, window, &owner) != 0 && owner == mWindow)
                result.push_back(window);
        }
        return result;
    }

    // What the desktop's close button sends a top-level window.
    void askToClose(Window window) const
    {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = XInternAtom(mDisplay, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(mDisplay, "WM_DELETE_WINDOW", False));
        XSendEvent(mDisplay, window, False, NoEventMask, &event);
        XFlush(mDisplay);
    }

    // The flags word of a window's _XEMBED_INFO, -1 without one.
    long xembedFlags(Window window) const
    {
        const Atom info = XInternAtom(mDisplay, "_XEMBED_INFO", False);
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long after = 0;
        unsigned char* data = nullptr;
        long flags = -1;
        if (XGetWindowProperty(mDisplay, window, info, 0, 2, False, info, &type, &format, &count, &after,
                               &data) == Success &&
            data != nullptr)
        {
            if (format == 32 && count == 2)
                flags = reinterpret_cast<long*>(data)[1];
            XFree(data);
        }
        return flags;
    }

    XWindowAttributes attributes(Window window) const
    {
        XWindowAttributes result{};
        XGetWindowAttributes(mDisplay, window, &result);
        return result;
    }

    // Distinct colours in a window's visible pixels, counted up to `limit`.
    int distinctColours(Window window, int limit = 64) const
    {
        const XWindowAttributes size = attributes(window);
        XImage* image = XGetImage(mDisplay, window, 0, 0, size.width, size.height, AllPlanes, ZPixmap);
        if (image == nullptr)
            return 0;
        std::set<unsigned long> colours;
        for (int y = 0; y < size.height && static_cast<int>(colours.size()) < limit; y += 3)
            for (int x = 0; x < size.width && static_cast<int>(colours.size()) < limit; x += 3)
                colours.insert(XGetPixel(image, x, y) & 0xFFFFFF);
        XDestroyImage(image);
        return static_cast<int>(colours.size());
    }

private:
    std::vector<Window> childrenOf(Window window) const
    {
        std::vector<Window> result;
        Window root = 0;
        Window parent = 0;
        Window* list = nullptr;
        unsigned count = 0;
        if (window != 0 && XQueryTree(mDisplay, window, &root, &parent, &list, &count) != 0)
        {
            result.assign(list, list + count);
            XFree(list);
        }
        return result;
    }

    Display* mDisplay;
    Window mWindow = 0;
};

// Keeps Mesa's driver loaded until the test program ends: Mesa unloads it when the last GLX
// connection closes, and what the driver keeps until then would be reported by LeakSanitizer as
// leaks of a module it cannot name. The connection is the program's, left open for exit.
inline void keepGlDriverLoaded()
{
    static Display* const display = []
    {
        Display* opened = XOpenDisplay(nullptr);
        int count = 0;
        if (opened != nullptr)
            XFree(glXChooseFBConfig(opened, DefaultScreen(opened), nullptr, &count));
        return opened;
    }();
    (void)display;
}

} // namespace velmoran::test
