#include "FrameWindow.h"

namespace velmoran::editorhost
{

namespace
{

constexpr const char* kFrameClassName = "VelmoranEditorHostFrame";
// A top-level window without a caption, shown without activating it: under Wine without a window
// manager, Wine hands a captioned or activated window to the window manager, and then hiding or
// destroying it waits two seconds for an answer that never comes. Children are left out of the
// frame's painting: the plug-in's OpenGL window covers its area.
constexpr DWORD kFrameStyle = WS_POPUP | WS_CLIPCHILDREN;

std::vector<int>& pressedKeys()
{
    static std::vector<int> keys;
    return keys;
}

LRESULT CALLBACK frameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN)
    {
        pressedKeys().push_back(static_cast<int>(wParam));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

// Registers the frame's class; a second registration fails harmlessly, the class being there.
void registerFrameClass()
{
    WNDCLASSA frameClass{};
    frameClass.lpfnWndProc = frameProcedure;
    frameClass.hInstance = GetModuleHandleA(nullptr);
    frameClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    frameClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH));
    frameClass.lpszClassName = kFrameClassName;
    RegisterClassA(&frameClass);
}

// The outer size of a frame window whose client area is width x height.
SIZE outerSize(DWORD style, int width, int height)
{
    RECT frame{0, 0, width, height};
    AdjustWindowRect(&frame, style, FALSE);
    return {frame.right - frame.left, frame.bottom - frame.top};
}

} // namespace

HWND openFrameWindow(const std::string& title, int width, int height)
{
    registerFrameClass();
    const SIZE outer = outerSize(kFrameStyle, width, height);
    HWND window = CreateWindowExA(0, kFrameClassName, title.c_str(), kFrameStyle, 0, 0, outer.cx, outer.cy,
                                  nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    if (window != nullptr)
    {
        ShowWindow(window, SW_SHOWNOACTIVATE);
        UpdateWindow(window);
    }
    return window;
}

const std::vector<int>& keysPressedOnFrames()
{
    return pressedKeys();
}

void forgetKeysPressedOnFrames()
{
    pressedKeys().clear();
}

void setClientSize(HWND window, int width, int height)
{
    const SIZE outer = outerSize(static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)), width, height);
    SetWindowPos(window, nullptr, 0, 0, outer.cx, outer.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace velmoran::editorhost
