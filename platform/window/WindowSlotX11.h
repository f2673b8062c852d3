#pragma once

#include "NativeWindow.h"
#include "WindowCallbacks.h"

#include <cstdint>

namespace velmoran::platform
{

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
