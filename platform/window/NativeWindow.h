#pragma once

#include <cstdint>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace velmoran::platform
{

#if defined(_WIN32)
// A window as the host hands it over and the renderer draws into it.
using NativeWindow = HWND;
// The view's platform type that names such a window.
constexpr const char* kNativeWindowType = "HWND";
// The window that a host passes to the view's attached.
inline NativeWindow nativeWindowFrom(void* parent)
{
    return static_cast<HWND>(parent);
}
#else
// An X11 window id.
using NativeWindow = unsigned long;
constexpr const char* kNativeWindowType = "X11EmbedWindowID";
inline NativeWindow nativeWindowFrom(void* parent)
{
    return static_cast<NativeWindow>(reinterpret_cast<uintptr_t>(parent));
}
#endif

// Width and height of a window's drawable area in device pixels (0 x 0 for a window that is gone).
void clientSize(NativeWindow window, int& width, int& height);
// True while a Shift key is held, as far as the window system last told the editor.
bool shiftKeyHeld();
// True while a Control key is held, as far as the window system last told the editor.
bool controlKeyHeld();
// True while the left mouse button is held, as far as the window system last told the editor.
bool leftButtonHeld();
// True while the window has the keyboard focus. On X11 the host decides where keys go and passes
// the editor's on through the view, so its own focus counts there.
bool hasKeyboardFocus(NativeWindow window);

} // namespace velmoran::platform
