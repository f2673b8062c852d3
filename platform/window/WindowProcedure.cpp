#include "CPlatformWindows.h"

#include <shellapi.h>

#include <cstring>
#include <vector>

namespace velmoran::platform
{

namespace
{

// 1 while a message is being handled, so that teardown can wait for the last one to return.
volatile uint8_t gInsideWindowProcedure = 0;

constexpr UINT_PTR kWindowTimerId = 1;

bool keyIsDown(int virtualKey)
{
    return (GetKeyState(virtualKey) & 0x80) != 0;
}

int signedLowWord(LPARAM value)
{
    return static_cast<int16_t>(LOWORD(value));
}

int signedHighWord(LPARAM value)
{
    return static_cast<int16_t>(HIWORD(value));
}

void reportPointerLost(const WindowSlot& slot, int index)
{
    if (slot.pointerLost != nullptr)
        slot.pointerLost(index, slot.user);
}

} // namespace

void CPlatformWindows::waitForWindowProcedure()
{
    while (gInsideWindowProcedure != 0)
        Sleep(1);
}

LRESULT CALLBACK CPlatformWindows::windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    gInsideWindowProcedure = 1;
    const int index = static_cast<int>(GetWindowLongPtrA(window, GWLP_USERDATA));
    CPlatformWindows* kit = instance(false);
    LRESULT result = 0;
    if (kit == nullptr || index < 0 || index >= kSlotCount)
        result = DefWindowProcA(window, message, wParam, lParam);
    else
    {
        // The window procedure is the host's boundary: a callback that runs out of memory loses
        // its message, never the host's message loop.
        try
        {
            result = kit->handleMessage(kit->mSlots[index], index, window, message, wParam, lParam);
        }
        catch (...)
        {
            result = 0;
        }
    }
    gInsideWindowProcedure = 0;
    return result;
}

LRESULT CPlatformWindows::handleMessage(WindowSlot& slot, int index, HWND window, UINT message, WPARAM wParam,
                                        LPARAM lParam)
{
    const int x = signedLowWord(lParam);
    const int y = signedHighWord(lParam);
    switch (message)
    {
    case WM_PAINT:
        handlePaint(slot, index, window);
        return 0;
    case WM_CLOSE:
        if (slot.keyUp != nullptr)
            slot.keyUp(0, static_cast<int>(wParam), 0, index, slot.user);
        if (slot.closeQuery == nullptr)
            return DefWindowProcA(window, message, wParam, lParam);
        if (slot.closeQuery(index, slot.user))
        {
            destroyWindow(index);
            DefWindowProcA(window, message, wParam, lParam);
        }
        return 0;
    case WM_ERASEBKGND:
        if (slot.erasePending == 1)
        {
            slot.erasePending = 0;
            return DefWindowProcA(window, message, wParam, lParam);
        }
        return 1;
    case WM_DESTROY:
        handleDestroyNotification(index);
        return 0;
    case WM_NCCALCSIZE:
    {
        char className[256] = {};
        GetClassNameA(window, className, 255);
        if (std::strcmp(className, mSplashClassName) == 0)
            return 0;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
    case WM_KEYUP:
    case WM_SYSKEYUP:
        return handleKey(slot, index, window, message, wParam, lParam);
    case WM_TIMER:
        if (slot.timer != nullptr)
            slot.timer(slot.user);
        return 0;
    case WM_MOUSEMOVE:
        handleMouseMove(slot, index, wParam, lParam);
        return 0;
    case WM_LBUTTONDOWN:
        SetFocus(window);
        if (slot.mouseDown != nullptr)
            slot.mouseDown(x, y, kButtonLeft, index, slot.user);
        return 0;
    case WM_LBUTTONUP:
        if (slot.mouseUp != nullptr)
            slot.mouseUp(x, y, kButtonLeft, index, slot.user);
        return 0;
    case WM_LBUTTONDBLCLK:
        SetFocus(window);
        if (slot.doubleClick != nullptr)
            slot.doubleClick(x, y, kButtonLeft, index, slot.user);
        return 0;
    case WM_RBUTTONDOWN:
        SetFocus(window);
        if (slot.mouseDown != nullptr)
            slot.mouseDown(x, y, kButtonRight, index, slot.user);
        return 0;
    case WM_RBUTTONUP:
        if (slot.mouseUp != nullptr)
            slot.mouseUp(x, y, kButtonRight, index, slot.user);
        return 0;
    case WM_MOUSEWHEEL:
        handleMouseWheel(slot, index, window, wParam);
        return 0;
    case WM_CAPTURECHANGED:
        if (reinterpret_cast<HWND>(lParam) != window)
            reportPointerLost(slot, index);
        return DefWindowProcA(window, message, wParam, lParam);
    case WM_CANCELMODE:
    case WM_KILLFOCUS:
        reportPointerLost(slot, index);
        return DefWindowProcA(window, message, wParam, lParam);
    case WM_DROPFILES:
        handleDroppedFiles(slot, index, wParam);
        return DefWindowProcA(window, message, wParam, lParam);
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

void CPlatformWindows::handlePaint(WindowSlot& slot, int index, HWND window)
{
    RECT update{};
    GetUpdateRect(window, &update, FALSE);
    PAINTSTRUCT paint;
    // Painting validates the update region even when nobody draws; a window left invalid would
    // be sent WM_PAINT again and again.
    BeginPaint(window, &paint);
    if (slot.paint != nullptr)
        slot.paint(update.left, update.top, update.right - update.left, update.bottom - update.top, index,
                   slot.user);
    EndPaint(window, &paint);
}

void CPlatformWindows::handleMouseMove(WindowSlot& slot, int index, WPARAM wParam, LPARAM lParam)
{
    // A button counts as held when the key state or the message itself says so: a host that sends
    // moves may not keep the key state in step.
    const bool left = keyIsDown(VK_LBUTTON) || (wParam & MK_LBUTTON) != 0;
    const bool right = keyIsDown(VK_RBUTTON) || (wParam & MK_RBUTTON) != 0;
    if (slot.trackMoves == 0 && !left && !right)
        return;
    if (slot.mouseMove == nullptr)
        return;
    const int button = (left && !right) ? 1 : 0;
    slot.mouseMove(signedLowWord(lParam), signedHighWord(lParam), button, index, slot.user);
}

void CPlatformWindows::handleMouseWheel(WindowSlot& slot, int index, HWND window, WPARAM wParam)
{
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(window, &cursor);
    const int delta = static_cast<int16_t>(HIWORD(wParam));
    if (delta == 0)
        return;
    if (slot.mouseWheel != nullptr)
    {
        slot.mouseWheel(cursor.x, cursor.y, delta, index, slot.user);
        return;
    }
    if (slot.mouseDown != nullptr)
        slot.mouseDown(cursor.x, cursor.y, delta > 0 ? kButtonWheelUp : kButtonWheelDown, index, slot.user);
    // The release always carries the wheel-up code: only the press tells the direction.
    if (slot.mouseUp != nullptr)
        slot.mouseUp(cursor.x, cursor.y, kButtonWheelUp, index, slot.user);
}

LRESULT CPlatformWindows::handleKey(WindowSlot& slot, int index, HWND window, UINT message, WPARAM wParam,
                                    LPARAM lParam)
{
    const bool down = message == WM_KEYDOWN || message == WM_SYSKEYDOWN;
    if (slot.keyHandler != nullptr)
    {
        if (slot.keyHandler(static_cast<int>(wParam), down ? 1 : 0, index, slot.user))
            return 0;
        // A key the window does not use is the host's: its shortcuts (the space bar's transport)
        // keep working while the editor has the focus.
        HWND parent = GetParent(window);
        if (parent != nullptr)
            return SendMessageA(parent, message, wParam, lParam);
        return DefWindowProcA(window, message, wParam, lParam);
    }
    const KeyCallback callback = down ? slot.keyDown : slot.keyUp;
    if (callback != nullptr)
        callback(0, static_cast<int>(wParam), down ? 1 : 0, index, slot.user);
    return DefWindowProcA(window, message, wParam, lParam);
}

void CPlatformWindows::handleDroppedFiles(WindowSlot& slot, int index, WPARAM wParam)
{
    HDROP drop = reinterpret_cast<HDROP>(wParam);
    // The drop's memory is the receiver's to free, whether or not anyone takes the files.
    if (slot.fileDrop == nullptr)
    {
        DragFinish(drop);
        return;
    }
    const UINT length = DragQueryFileA(drop, 0, nullptr, 0);
    std::vector<char> path(length + 1, '\0');
    DragQueryFileA(drop, 0, path.data(), length + 1);
    DragFinish(drop);
    slot.fileDrop(path.data(), index, slot.user);
}

void CPlatformWindows::handleDestroyNotification(int index)
{
    WindowSlot& slot = mSlots[index];
    if (slot.inUse != 0)
    {
        // Destroyed by someone else (the host destroying its own window first): while the window
        // still exists its owner can release what it drew with, GL objects among them.
        if (slot.destroyNotify != nullptr)
            slot.destroyNotify(index, slot.user);
        if (slot.timer != nullptr)
            KillTimer(slot.window, kWindowTimerId);
        DeleteDC(slot.memoryDc);
        DeleteDC(slot.memoryDcSecond);
    }
    resetSlot(index);
}

} // namespace velmoran::platform
