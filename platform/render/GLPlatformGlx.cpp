#include "GLPlatform.h"

#include "platform/window/X11Display.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace velmoran::platform
{

namespace
{

// Surfaces whose swaps were told not to wait for the vertical sync.
std::vector<NativeSurface> gUnsyncedSurfaces;

bool hasGlxExtension(Display* display, const char* name)
{
    const char* extensions = glXQueryExtensionsString(display, DefaultScreen(display));
    if (extensions == nullptr)
        return false;
    const size_t length = std::strlen(name);
    for (const char* at = std::strstr(extensions, name); at != nullptr; at = std::strstr(at + length, name))
        if ((at == extensions || at[-1] == ' ') && (at[length] == ' ' || at[length] == '\0'))
            return true;
    return false;
}

// The host's UI thread must never wait for the display, so swaps go out at once.
void stopWaitingForVerticalSync(Display* display, NativeSurface surface)
{
    if (std::find(gUnsyncedSurfaces.begin(), gUnsyncedSurfaces.end(), surface) != gUnsyncedSurfaces.end())
        return;
    gUnsyncedSurfaces.push_back(surface);
    using SwapIntervalMesa = int (*)(unsigned);
    using SwapIntervalExt = void (*)(Display*, GLXDrawable, int);
    if (hasGlxExtension(display, "GLX_MESA_swap_control"))
        reinterpret_cast<SwapIntervalMesa>(
            glXGetProcAddressARB(reinterpret_cast<const GLubyte*>("glXSwapIntervalMESA")))(0);
    else if (hasGlxExtension(display, "GLX_EXT_swap_control"))
        reinterpret_cast<SwapIntervalExt>(glXGetProcAddressARB(
            reinterpret_cast<const GLubyte*>("glXSwapIntervalEXT")))(display, surface, 0);
}

} // namespace

NativeSurface openSurface(NativeWindow window)
{
    // The surface keeps the connection open for as long as it is drawn into.
    return acquireDisplay() != nullptr ? window : 0;
}

void closeSurface(NativeWindow, NativeSurface surface)
{
    if (surface == 0)
        return;
    gUnsyncedSurfaces.erase(std::remove(gUnsyncedSurfaces.begin(), gUnsyncedSurfaces.end(), surface),
                            gUnsyncedSurfaces.end());
    releaseDisplay();
}

NativeContext createContext(NativeSurface surface)
{
    Display* display = sharedDisplay();
    if (surface == 0 || display == nullptr || !hasGlxExtension(display, "GLX_ARB_create_context_profile"))
        return nullptr;
    const GLXFBConfig config = editorFrameBufferConfig();
    const auto create = reinterpret_cast<PFNGLXCREATECONTEXTATTRIBSARBPROC>(
        glXGetProcAddressARB(reinterpret_cast<const GLubyte*>("glXCreateContextAttribsARB")));
    if (config == nullptr || create == nullptr)
        return nullptr;
    // OpenGL 3.2 with the compatibility profile, the level the Windows context offers.
    const int attributes[] = {GLX_CONTEXT_MAJOR_VERSION_ARB,
                              3,
                              GLX_CONTEXT_MINOR_VERSION_ARB,
                              2,
                              GLX_CONTEXT_PROFILE_MASK_ARB,
                              GLX_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB,
                              None};
    GLXContext context = nullptr;
    {
        IgnoredXErrors errors(display);
        context = create(display, config, nullptr, True, attributes);
        if (errors.failed() && context != nullptr)
        {
            glXDestroyContext(display, context);
            context = nullptr;
        }
    }
    // The context keeps the connection open until it is deleted.
    if (context != nullptr)
        acquireDisplay();
    return context;
}

void deleteContext(NativeContext context)
{
    Display* display = sharedDisplay();
    if (context == nullptr || display == nullptr)
        return;
    glXMakeCurrent(display, None, nullptr);
    glXDestroyContext(display, static_cast<GLXContext>(context));
    releaseDisplay();
}

void makeContextCurrent(NativeSurface surface, NativeContext context)
{
    Display* display = sharedDisplay();
    if (display == nullptr)
        return;
    // A window destroyed with the host's parent is not drawn into again.
    if (!windowLive(surface))
    {
        glXMakeCurrent(display, None, nullptr);
        return;
    }
    glXMakeCurrent(display, surface, static_cast<GLXContext>(context));
    stopWaitingForVerticalSync(display, surface);
}

bool contextIsCurrent()
{
    return glXGetCurrentContext() != nullptr;
}

void swapSurface(NativeSurface surface)
{
    Display* display = sharedDisplay();
    if (display != nullptr && windowLive(surface))
        glXSwapBuffers(display, surface);
}

GLFunction glFunction(const char* name)
{
    return glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name));
}

} // namespace velmoran::platform
