#include "GLPlatform.h"

namespace velmoran::platform
{

NativeSurface openSurface(NativeWindow window)
{
    HDC dc = GetDC(window);
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = 40;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    descriptor.iPixelType = PFD_TYPE_RGBA;
    descriptor.cColorBits = 32;
    descriptor.cDepthBits = 24;
    descriptor.cStencilBits = 8;
    descriptor.iLayerType = PFD_MAIN_PLANE;
    // A window that already has a format keeps it; drawing works with either.
    SetPixelFormat(dc, ChoosePixelFormat(dc, &descriptor), &descriptor);
    return dc;
}

void closeSurface(NativeWindow window, NativeSurface surface)
{
    ReleaseDC(window, surface);
}

NativeContext createContext(NativeSurface surface)
{
    return wglCreateContext(surface);
}

void deleteContext(NativeContext context)
{
    wglMakeCurrent(nullptr, nullptr);
    wglDeleteContext(context);
}

void makeContextCurrent(NativeSurface surface, NativeContext context)
{
    wglMakeCurrent(surface, context);
}

bool contextIsCurrent()
{
    return wglGetCurrentContext() != nullptr;
}

void swapSurface(NativeSurface surface)
{
    SwapBuffers(surface);
}

GLFunction glFunction(const char* name)
{
    return reinterpret_cast<GLFunction>(reinterpret_cast<void*>(wglGetProcAddress(name)));
}

} // namespace velmoran::platform
