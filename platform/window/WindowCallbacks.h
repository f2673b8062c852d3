#pragma once

namespace velmoran::platform
{

// Event callbacks of one window, the same in every window kit. Every callback gets the slot index
// and the window's user pointer (the editor view) last; positions are window pixels, button codes
// 0 left, 1 right, 2 wheel up, 3 wheel down.
using PaintCallback = void (*)(int left, int top, int width, int height, int slot, void* user);
using MouseCallback = void (*)(int x, int y, int button, int slot, void* user);
using KeyCallback = void (*)(int unused, int virtualKey, int down, int slot, void* user);
// Takes a key press (down 1) or release (down 0); false hands the key on to the host.
using KeyHandler = bool (*)(int virtualKey, int down, int slot, void* user);
using FileDropCallback = void (*)(const char* path, int slot, void* user);
using CloseQueryCallback = bool (*)(int slot, void* user);
using TimerCallback = bool (*)(void* user);
using NotifyCallback = void (*)(int slot, void* user);

// Mouse button codes handed to the mouse callbacks.
enum MouseButton : int
{
    kButtonLeft = 0,
    kButtonRight = 1,
    kButtonWheelUp = 2,
    kButtonWheelDown = 3
};

} // namespace velmoran::platform
