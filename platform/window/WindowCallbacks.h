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

// The callbacks a window's events are turned into, all null in a free slot; each kit's slot
// record starts with them.
struct SlotCallbacks
{
    PaintCallback paint = nullptr;
    MouseCallback mouseDown = nullptr;
    MouseCallback mouseUp = nullptr;
    MouseCallback mouseMove = nullptr;
    MouseCallback doubleClick = nullptr;
    NotifyCallback destroyNotify = nullptr; // the window went without the kit destroying it
    CloseQueryCallback closeQuery = nullptr;
    KeyCallback keyDown = nullptr;
    KeyCallback keyUp = nullptr;
    FileDropCallback fileDrop = nullptr;
    TimerCallback timer = nullptr;
    // The window lost the mouse or the keyboard to someone else (capture or grab taken, a modal
    // loop cancelling the mode, focus gone, the window hidden): a held button's release will not
    // arrive here.
    NotifyCallback pointerLost = nullptr;
    // The wheel with its delta (120 a notch) in place of the button code; when set, it takes the
    // wheel instead of the press and release pair.
    MouseCallback mouseWheel = nullptr;
    // When set, it takes the keys in place of key-down and key-up, and the keys it leaves go to
    // the host. On X11 keys reach the editor through the host's view calls instead.
    KeyHandler keyHandler = nullptr;

    void* user = nullptr;
};

// Mouse button codes handed to the mouse callbacks.
enum MouseButton : int
{
    kButtonLeft = 0,
    kButtonRight = 1,
    kButtonWheelUp = 2,
    kButtonWheelDown = 3
};

} // namespace velmoran::platform
