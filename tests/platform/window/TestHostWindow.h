#pragma once

#include "platform/window/CPlatformWindows.h"

#include <windows.h>

namespace velmoran::test
{

// The product token the test windows' class names are made from.
constexpr const char* kTestToken = "5E1A0C3D9B27";

// A top-level window standing in for the host's editor frame; made once per program, since hiding
// a top-level window costs seconds under Wine without a window manager.
inline HWND testHostWindow()
{
    static HWND host = nullptr;
    if (host != nullptr)
        return host;
    WNDCLASSA hostClass{};
    hostClass.lpfnWndProc = DefWindowProcA;
    hostClass.hInstance = GetModuleHandleA(nullptr);
    hostClass.lpszClassName = "VelmoranTestHost";
    RegisterClassA(&hostClass);
    host = CreateWindowExA(0, "VelmoranTestHost", "Host", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, 700,
                           500, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    ShowWindow(host, SW_SHOW);
    return host;
}

// Tears down every window of the kit and releases the kit, if there is one.
inline void closeAllWindows()
{
    if (auto* kit = platform::CPlatformWindows::instance(false))
    {
        kit->teardown();
        platform::CPlatformWindows::release();
    }
}

} // namespace velmoran::test
