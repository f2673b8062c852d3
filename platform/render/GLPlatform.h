#pragma once

#include "platform/window/NativeWindow.h"

namespace velmoran::platform
{

#if defined(_WIN32)
// What the renderer draws through on a window (its device context) and the rendering context.
using NativeSurface = HDC;
using NativeContext = HGLRC;
#else
// On X11 the window itself is drawn into; the context is a GLXContext.
using NativeSurface = unsigned long;
using NativeContext = void*;
#endif

// Makes a window ready to be drawn into with the editor's pixel format.
NativeSurface openSurface(NativeWindow window);
// Gives the surface of a window back.
void closeSurface(NativeWindow window, NativeSurface surface);
// A context of OpenGL 3.2 level (GLSL 1.50) that can draw into the surface and every other editor
// surface of the process; null when the driver offers none.
NativeContext createContext(NativeSurface surface);
// Deletes a context; none is current afterwards.
void deleteContext(NativeContext context);
// Makes the context current on the surface.
void makeContextCurrent(NativeSurface surface, NativeContext context);
// True while any context is current on this thread.
bool contextIsCurrent();
// Shows the frame drawn into the surface, without waiting for the display's vertical sync.
void swapSurface(NativeSurface surface);

// An OpenGL function beyond 1.1 by name (the context must be current); null when missing.
using GLFunction = void (*)();
GLFunction glFunction(const char* name);

} // namespace velmoran::platform
