#pragma once

#include <X11/Xlib.h>

#include <GL/glx.h>

namespace velmoran::platform
{

// The plug-in's own connection to the X server, shared by the window kit and the renderer: the
// first user opens it and the last one closes it, so that no connection outlives the editors.
// UI thread only.
Display* acquireDisplay();
void releaseDisplay();
// The open connection, null when nobody holds it.
Display* sharedDisplay();
// How many holders the connection has.
int displayUsers();

// The double-buffered RGBA frame-buffer configuration with 8 bits a channel that the editor's
// windows are created with and the GL context draws into; null when the server offers none.
GLXFBConfig editorFrameBufferConfig();

// Editor windows that still exist: a window the host destroyed with its parent is drawn into no
// more.
void windowCreated(Window window);
void windowGone(Window window);
bool windowLive(Window window);

// While it lives, X errors caused by the plug-in's own requests are swallowed and remembered
// instead of reaching the process's handler (which may end the host). Construction and
// destruction each wait for the server, so it is kept off the paint path.
class IgnoredXErrors
{
public:
    explicit IgnoredXErrors(Display* display);
    ~IgnoredXErrors();
    IgnoredXErrors(const IgnoredXErrors&) = delete;
    IgnoredXErrors& operator=(const IgnoredXErrors&) = delete;

    // True when one of the requests since construction failed (the server is asked first).
    bool failed();

private:
    Display* mDisplay;
    XErrorHandler mPrevious;
};

} // namespace velmoran::platform
