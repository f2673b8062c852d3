#pragma once

#include <windows.h>

namespace velmoran::editorhost
{

// Mouse and keyboard input for a window, sent as the window messages Windows would send it, with
// the cursor placed over the point first and the thread's key state kept in step with the buttons
// and keys held (GetCursorPos and GetKeyState agree with the messages). Positions are client
// pixels of the window.
class EditorInput
{
public:
    explicit EditorInput(HWND window) : mWindow(window) {}

    // A move to (x, y) with whatever buttons are held; a drag when the left button is.
    void moveTo(int x, int y);
    void leftDown(int x, int y);
    void leftUp(int x, int y);
    void rightDown(int x, int y);
    void rightUp(int x, int y);
    // Press and release of the left button.
    void leftClick(int x, int y);
    // A double-click as Windows reports it: down, up, double-click, up.
    void doubleClick(int x, int y);
    // Left button down at the start, steps moves along the line, up at the end.
    void drag(int fromX, int fromY, int toX, int toY, int steps);
    // The wheel turned over (x, y) by notches (positive away from the user), one message a notch.
    void wheel(int x, int y, int notches);
    // One wheel message over (x, y) with this delta (120 a notch; a touchpad sends smaller ones).
    void wheelDelta(int x, int y, int delta);
    // Another window of the thread takes the mouse capture, as a host's dialogue does.
    void captureTakenBy(HWND other);
    // The window is told to cancel its mode (WM_CANCELMODE), as a modal loop starting does.
    void cancelMode();
    // Another window of the thread takes the keyboard focus, as Alt-Tab or a host's window does.
    void focusTakenBy(HWND other);
    // The left button let go where the window does not see it: only the key state changes.
    void leftReleasedElsewhere();
    // A key (virtual-key code) pressed or released.
    void keyDown(int virtualKey);
    void keyUp(int virtualKey);

private:
    // Moves the cursor over (x, y); gives that point in screen pixels.
    POINT placeCursor(int x, int y);
    void sendMouse(UINT message, int x, int y);
    void sendKey(UINT message, int virtualKey, LPARAM flags);

    HWND mWindow;
};

} // namespace velmoran::editorhost
