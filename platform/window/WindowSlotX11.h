#pragma once

#include "NativeWindow.h"

#include <cstdint>

namespace velmoran::platform
{

// Event callbacks of one window, as in the Windows kit. Every callback gets the slot index and the
// window's user pointer (the editor view) last; positions are window pixels, button codes 0 left,
// 1 right, 2 wheel up, 3 wheel down.
using PaintCallback = void (*)(int left, int top, int width, int height, int slot, void* user);
using MouseCallback = void (*)(int x, int y, int button, int slot, void* user);
using KeyCallback = void (*)(int unused, int virtualKey, int down, int slot, void* user);
// Takes a key press (down 1) or release (down 0); false leaves the key to the host.
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

// One entry of the window table: an X11 window of the plug-in and the callbacks its events are
// turned into.
struct WindowSlot
{
    NativeWindow window = 0;
    unsigned long colormap = 0;

    PaintCallback paint = nullptr;
    MouseCallback mouseDown = nullptr;
    MouseCallback mouseUp = nullptr;
    MouseCallback mouseMove = nullptr;
    MouseCallback doubleClick = nullptr;
    NotifyCallback destroyNotify = nullptr;
    CloseQueryCallback closeQuery = nullptr;
    KeyCallback keyDown = nullptr;
    KeyCallback keyUp = nullptr;
    FileDropCallback fileDrop = nullptr;
    TimerCallback timer = nullptr;
    // A held button's release will not arrive here any more (the window was hidden or lost the
    // pointer mid-drag).
    NotifyCallback pointerLost = nullptr;
    // The wheel with its delta (120 a step) in place of the button code; when set, it takes the
    // wheel instead of the press and release pair.
    MouseCallback mouseWheel = nullptr;
    // Keys reach the editor through the host's view calls, not the window; kept for the callers
    // that share the Windows kit's set-up.
    KeyHandler keyHandler = nullptr;

    void* user = nullptr;

    float scale = 1.0f;
    int32_t width = 0;  // device pixels
    int32_t height = 0; // device pixels
    int32_t x = 0;
    int32_t y = 0;

    uint8_t inUse = 0;
    uint8_t isBox = 0; // a top-level box window rather than an embedded editor
    uint8_t trackMoves = 0;
    uint8_t paintPending = 0;

    // Buttons 1 and 3 held (bits 0 and 1), and the last left press, from which a second one makes a
    // double-click.
    uint8_t buttonsHeld = 0;
    unsigned long lastPressTime = 0;
    int32_t lastPressX = 0;
    int32_t lastPressY = 0;
    bool lastPressCounts = false;
};

} // namespace velmoran::platform
