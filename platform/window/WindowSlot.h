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
struct WindowSlot : SlotCallbacks
{
    HWND window = nullptr;
    HDC windowDc = nullptr;
    HDC memoryDc = nullptr;
    HDC memoryDcSecond = nullptr;

    NotifyCallback spare = nullptr; // kept for the caller, never called by the kit

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
