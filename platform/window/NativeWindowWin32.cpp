#include "NativeWindow.h"

namespace velmoran::platform
{

void clientSize(NativeWindow window, int& width, int& height)
{
    RECT client{};
    GetClientRect(window, &client);
    width = client.right - client.left;
    height = client.bottom - client.top;
}

bool shiftKeyHeld()
{
    return (GetKeyState(VK_SHIFT) & 0x8000) != 0;
}

bool controlKeyHeld()
{
    return (GetKeyState(VK_CONTROL) & 0x8000) != 0;
}

bool leftButtonHeld()
{
    return (GetKeyState(VK_LBUTTON) & 0x8000) != 0;
}

bool hasKeyboardFocus(NativeWindow window)
{
    return GetFocus() == window;
}

} // namespace velmoran::platform
