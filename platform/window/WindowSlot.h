#pragma once

#include "WindowCallbacks.h"

#include <windows.h>

#include <cstdint>

namespace velmoran::platform
{

// Called on every tick of the idle timer; false stops the timer and drops the callback.
using IdleCallback = bool (*)();

// One entry of the window table: the native handles of a window and the callbacks its messages
// are turned into.
struct WindowSlot
{
    HWND window = nullptr;
    HDC windowDc = nullptr;
    HDC memoryDc = nullptr;
    HDC memoryDcSecond = nullptr;

    NotifyCallback spare = nullptr; // kept for the caller, never called by the kit
    PaintCallback paint = nullptr;
    MouseCallback mouseDown = nullptr;
    MouseCallback mouseUp = nullptr;
    MouseCallback mouseMove = nullptr;
    MouseCallback doubleClick = nullptr;
    NotifyCallback destroyNotify = nullptr; // WM_DESTROY of a window the kit did not destroy itself
    CloseQueryCallback closeQuery = nullptr;
    KeyCallback keyDown = nullptr;
    KeyCallback keyUp = nullptr;
    FileDropCallback fileDrop = nullptr;
    TimerCallback timer = nullptr;
    // The window lost the mouse or the keyboard to someone else (capture taken, a modal loop or a
    // dialogue cancelling the mode, focus gone): a held button's release will not arrive here.
    NotifyCallback pointerLost = nullptr;
    // The wheel with its delta (120 a notch) in place of the button code; when set, it takes the
    // wheel instead of the press and release pair.
    MouseCallback mouseWheel = nullptr;
    // When set, it takes the keys in place of key-down and key-up, and the keys it leaves go to
    // the parent window (the host's), as if this window had never had the focus.
    KeyHandler keyHandler = nullptr;

    void* user = nullptr;

    float scale = 1.0f;
    int32_t reciprocalScaleFixed = 65536; // 1 / scale in 16.16 fixed point
    int32_t width = 0;                    // device pixels
    int32_t height = 0;                   // device pixels
    int32_t x = 0;
    int32_t y = 0;
    int32_t isSplash = 0;

    uint8_t inUse = 0;
    uint8_t erasePending = 1;
    uint8_t trackMoves = 0;
};

} // namespace velmoran::platform
