// The slot table's bookkeeping, the same in every window kit: a slot freed to its defaults and the
// callbacks a window's events are turned into. Each setter ignores a slot outside the table.

#include "WindowKit.h"

namespace velmoran::platform
{

void CPlatformWindows::resetSlot(int slot)
{
    if (validSlot(slot))
        mSlots[slot] = WindowSlot{};
}

void CPlatformWindows::setPaintCallback(int slot, PaintCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].paint = callback;
}

void CPlatformWindows::setMouseDownCallback(int slot, MouseCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].mouseDown = callback;
}

void CPlatformWindows::setMouseUpCallback(int slot, MouseCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].mouseUp = callback;
}

void CPlatformWindows::setMouseMoveCallback(int slot, MouseCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].mouseMove = callback;
}

void CPlatformWindows::setDoubleClickCallback(int slot, MouseCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].doubleClick = callback;
}

void CPlatformWindows::setDestroyNotifyCallback(int slot, NotifyCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].destroyNotify = callback;
}

void CPlatformWindows::setCloseQueryCallback(int slot, CloseQueryCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].closeQuery = callback;
}

void CPlatformWindows::setKeyDownCallback(int slot, KeyCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].keyDown = callback;
}

void CPlatformWindows::setKeyUpCallback(int slot, KeyCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].keyUp = callback;
}

void CPlatformWindows::setFileDropCallback(int slot, FileDropCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].fileDrop = callback;
}

void CPlatformWindows::setPointerLostCallback(int slot, NotifyCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].pointerLost = callback;
}

void CPlatformWindows::setMouseWheelCallback(int slot, MouseCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].mouseWheel = callback;
}

void CPlatformWindows::setKeyHandler(int slot, KeyHandler handler)
{
    if (validSlot(slot))
        mSlots[slot].keyHandler = handler;
}

} // namespace velmoran::platform
