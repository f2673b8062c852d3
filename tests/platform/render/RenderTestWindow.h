#pragma once

#include "platform/render/CGLRenderer.h"
#include "platform/render/ErrorBox.h"
#include "platform/window/CPlatformWindows.h"

#include <array>
#include <string>
#include <vector>

namespace velmoran::test
{

// One RGBA pixel read back from the frame being drawn.
struct Pixel
{
    int r = 0;
    int g = 0;
    int b = 0;
    int a = 0;
};

// Error boxes land here instead of on the screen.
inline std::vector<std::string>& recordedBoxes()
{
    static std::vector<std::string> boxes;
    return boxes;
}

inline void recordBox(const char* caption, const char* text)
{
    recordedBoxes().push_back(std::string(caption) + "|" + text);
}

// A top-level window standing in for the host's frame; made once per program, since hiding a
// top-level window costs seconds under Wine without a window manager.
inline HWND testHostWindow()
{
    static HWND host = nullptr;
    if (host != nullptr)
        return host;
    WNDCLASSA hostClass{};
    hostClass.lpfnWndProc = DefWindowProcA;
    hostClass.hInstance = GetModuleHandleA(nullptr);
    hostClass.lpszClassName = "VelmoranRenderTestHost";
    RegisterClassA(&hostClass);
    host = CreateWindowExA(0, "VelmoranRenderTestHost", "Host", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0,
                           700, 500, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    ShowWindow(host, SW_SHOW);
    return host;
}

// An editor-like child window inside the stand-in host, made through the window kit.
inline HWND openChildWindow(int width, int height)
{
    auto* kit = platform::CPlatformWindows::instance(true);
    kit->setClassNames("5E1A0C3D9B27");
    const int slot = kit->createChildWindow(0, 0, width, height, 1.0f, testHostWindow(), nullptr);
    kit->showWindow(slot);
    return kit->windowHandle(slot);
}

inline void closeAllWindows()
{
    if (auto* kit = platform::CPlatformWindows::instance(false))
    {
        kit->teardown();
        platform::CPlatformWindows::release();
    }
}

// The pixel at (x, y) from the top left of the frame being drawn, in device pixels.
inline Pixel pixelAt(int x, int y, int viewportHeight)
{
    std::array<unsigned char, 4> rgba{};
    glReadPixels(x, viewportHeight - 1 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    return {rgba[0], rgba[1], rgba[2], rgba[3]};
}

} // namespace velmoran::test
