#include "X11Display.h"

#include <algorithm>
#include <vector>

namespace velmoran::platform
{

namespace
{

Display* gDisplay = nullptr;
int gDisplayUsers = 0;
bool gErrorSeen = false;
std::vector<Window> gLiveWindows;

int rememberError(Display*, XErrorEvent*)
{
    gErrorSeen = true;
    return 0;
}

// The first configuration whose visual has the screen's depth, else the first of all: a 32-bit
// visual would let a compositing desktop blend the host's window through wherever the editor
// draws with translucency.
GLXFBConfig chooseConfig(Display* display, const int* attributes)
{
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(display, DefaultScreen(display), attributes, &count);
    if (configs == nullptr)
        return nullptr;
    GLXFBConfig chosen = count > 0 ? configs[0] : nullptr;
    for (int index = 0; index < count; ++index)
    {
        XVisualInfo* visual = glXGetVisualFromFBConfig(display, configs[index]);
        const bool screenDepth =
            visual != nullptr && visual->depth == DefaultDepth(display, DefaultScreen(display));
        if (visual != nullptr)
            XFree(visual);
        if (screenDepth)
        {
            chosen = configs[index];
            break;
        }
    }
    XFree(configs);
    return chosen;
}

} // namespace

Display* acquireDisplay()
{
    if (gDisplay == nullptr)
    {
        gDisplay = XOpenDisplay(nullptr);
        if (gDisplay == nullptr)
            return nullptr;
    }
    ++gDisplayUsers;
    return gDisplay;
}

void releaseDisplay()
{
    if (gDisplayUsers == 0 || --gDisplayUsers > 0)
        return;
    XCloseDisplay(gDisplay);
    gDisplay = nullptr;
}

Display* sharedDisplay()
{
    return gDisplay;
}

int displayUsers()
{
    return gDisplayUsers;
}

GLXFBConfig editorFrameBufferConfig()
{
    if (gDisplay == nullptr)
        return nullptr;
    // Alpha is asked for first, as on Windows; servers whose windows have no alpha channel (a
    // 24-bit screen without a 32-bit visual) still give the editor a window.
    int attributes[] = {GLX_X_RENDERABLE,
                        True,
                        GLX_DRAWABLE_TYPE,
                        GLX_WINDOW_BIT,
                        GLX_RENDER_TYPE,
                        GLX_RGBA_BIT,
                        GLX_X_VISUAL_TYPE,
                        GLX_TRUE_COLOR,
                        GLX_RED_SIZE,
                        8,
                        GLX_GREEN_SIZE,
                        8,
                        GLX_BLUE_SIZE,
                        8,
                        GLX_DOUBLEBUFFER,
                        True,
                        GLX_ALPHA_SIZE,
                        8,
                        None};
    if (GLXFBConfig config = chooseConfig(gDisplay, attributes))
        return config;
    attributes[16] = None;
    return chooseConfig(gDisplay, attributes);
}

void windowCreated(Window window)
{
    gLiveWindows.push_back(window);
}

void windowGone(Window window)
{
    gLiveWindows.erase(std::remove(gLiveWindows.begin(), gLiveWindows.end(), window), gLiveWindows.end());
}

bool windowLive(Window window)
{
    return std::find(gLiveWindows.begin(), gLiveWindows.end(), window) != gLiveWindows.end();
}

IgnoredXErrors::IgnoredXErrors(Display* display) : mDisplay(display)
{
    XSync(mDisplay, False);
    gErrorSeen = false;
    mPrevious = XSetErrorHandler(rememberError);
}

IgnoredXErrors::~IgnoredXErrors()
{
    XSync(mDisplay, False);
    XSetErrorHandler(mPrevious);
}

bool IgnoredXErrors::failed()
{
    XSync(mDisplay, False);
    return gErrorSeen;
}

} // namespace velmoran::platform
