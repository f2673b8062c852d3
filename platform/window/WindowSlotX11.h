#pragma once

#include "NativeWindow.h"
#include "WindowCallbacks.h"

#include <cstdint>

namespace velmoran::platform
{

// One entry of the window table: an X11 window of the plug-in and the callbacks its events are
// turned into.
struct WindowSlot : SlotCallbacks
{
    NativeWindow window = 0;
    unsigned long colormap = 0;

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
