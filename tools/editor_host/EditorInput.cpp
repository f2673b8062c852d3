#include "EditorInput.h"

#include <cstdlib>

namespace velmoran::editorhost
{

namespace
{

constexpr LPARAM kKeyWasDown = LPARAM(1) << 30;
constexpr LPARAM kKeyReleased = LPARAM(1) << 31;

bool isHeld(int virtualKey)
{
    return (GetKeyState(virtualKey) & 0x80) != 0;
}

// Marks a key or mouse button as held or released in the thread's key state.
void setHeld(int virtualKey, bool held)
{
    BYTE keys[256];
    GetKeyboardState(keys);
    keys[virtualKey] = held ? 0x80 : 0;
    SetKeyboardState(keys);
}

// The MK_ flags of the buttons and modifier keys held now.
WPARAM heldFlags()
{
    WPARAM flags = 0;
    const struct
    {
        int virtualKey;
        WPARAM flag;
    } keys[] = {
        {VK_LBUTTON, MK_LBUTTON}, {VK_RBUTTON, MK_RBUTTON}, {VK_SHIFT, MK_SHIFT}, {VK_CONTROL, MK_CONTROL}};
    for (const auto& key : keys)
    {
        if (isHeld(key.virtualKey))
        {
            flags |= key.flag;
        }
    }
    return flags;
}

} // namespace

void EditorInput::moveTo(int x, int y)
{
    sendMouse(WM_MOUSEMOVE, x, y);
}

void EditorInput::leftDown(int x, int y)
{
    setHeld(VK_LBUTTON, true);
    sendMouse(WM_LBUTTONDOWN, x, y);
}

void EditorInput::leftUp(int x, int y)
{
    setHeld(VK_LBUTTON, false);
    sendMouse(WM_LBUTTONUP, x, y);
}

void EditorInput::rightDown(int x, int y)
{
    setHeld(VK_RBUTTON, true);
    sendMouse(WM_RBUTTONDOWN, x, y);
}

void EditorInput::rightUp(int x, int y)
{
    setHeld(VK_RBUTTON, false);
    sendMouse(WM_RBUTTONUP, x, y);
}

void EditorInput::leftClick(int x, int y)
{
    leftDown(x, y);
    leftUp(x, y);
}

void EditorInput::doubleClick(int x, int y)
{
    leftClick(x, y);
    setHeld(VK_LBUTTON, true);
    sendMouse(WM_LBUTTONDBLCLK, x, y);
    leftUp(x, y);
}

void EditorInput::drag(int fromX, int fromY, int toX, int toY, int steps)
{
    leftDown(fromX, fromY);
    for (int step = 1; step <= steps; ++step)
    {
        moveTo(fromX + (toX - fromX) * step / steps, fromY + (toY - fromY) * step / steps);
    }
    leftUp(toX, toY);
}

void EditorInput::wheel(int x, int y, int notches)
{
    for (int notch = 0; notch < std::abs(notches); ++notch)
    {
        wheelDelta(x, y, notches > 0 ? WHEEL_DELTA : -WHEEL_DELTA);
    }
}

void EditorInput::wheelDelta(int x, int y, int delta)
{
    const POINT screen = placeCursor(x, y);
    // Unlike the other mouse messages, the wheel's carries screen coordinates.
    SendMessageA(mWindow, WM_MOUSEWHEEL, MAKEWPARAM(heldFlags(), static_cast<short>(delta)),
                 MAKELPARAM(screen.x, screen.y));
}

void EditorInput::captureTakenBy(HWND other)
{
    SetCapture(other);
}

void EditorInput::cancelMode()
{
    SendMessageA(mWindow, WM_CANCELMODE, 0, 0);
}

void EditorInput::focusTakenBy(HWND other)
{
    SetFocus(other);
}

void EditorInput::leftReleasedElsewhere()
{
    setHeld(VK_LBUTTON, false);
}

void EditorInput::keyDown(int virtualKey)
{
    const LPARAM repeated = isHeld(virtualKey) ? kKeyWasDown : 0;
    setHeld(virtualKey, true);
    sendKey(WM_KEYDOWN, virtualKey, repeated);
}

void EditorInput::keyUp(int virtualKey)
{
    setHeld(virtualKey, false);
    sendKey(WM_KEYUP, virtualKey, kKeyWasDown | kKeyReleased);
}

POINT EditorInput::placeCursor(int x, int y)
{
    POINT screen{x, y};
    ClientToScreen(mWindow, &screen);
    SetCursorPos(screen.x, screen.y);
    return screen;
}

void EditorInput::sendMouse(UINT message, int x, int y)
{
    placeCursor(x, y);
    SendMessageA(mWindow, message, heldFlags(), MAKELPARAM(x, y));
}

// Key messages carry a repeat count of 1 and the key's scan code besides the flags.
void EditorInput::sendKey(UINT message, int virtualKey, LPARAM flags)
{
    const LPARAM scanCode =
        static_cast<LPARAM>(MapVirtualKeyA(static_cast<UINT>(virtualKey), MAPVK_VK_TO_VSC));
    SendMessageA(mWindow, message, static_cast<WPARAM>(virtualKey), 1 | (scanCode << 16) | flags);
}

} // namespace velmoran::editorhost
