#include "CPlatformWindows.h"

#include <mmsystem.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace velmoran::platform
{

namespace
{

CPlatformWindows* gInstance = nullptr;

constexpr UINT kUiClassStyle = CS_DBLCLKS | CS_OWNDC | CS_GLOBALCLASS;
constexpr UINT kSplashClassStyle = CS_VREDRAW | CS_HREDRAW | CS_OWNDC;
constexpr UINT_PTR kWindowTimerId = 1;

} // namespace

CPlatformWindows::CPlatformWindows()
{
    mSlotMapping.fill(-1);
    for (int i = 0; i < 256; ++i)
    {
        const double brightened = 255.0 * std::pow(i / 255.0, 0.8);
        mGammaTable[i] = static_cast<int>(std::floor(std::min(255.0, brightened)));
    }
}

CPlatformWindows* CPlatformWindows::instance(bool create)
{
    if (gInstance == nullptr && create)
        gInstance = new CPlatformWindows();
    return gInstance;
}

void CPlatformWindows::release()
{
    if (gInstance == nullptr)
        return;
    gInstance->stopIdleTimer();
    delete gInstance;
    gInstance = nullptr;
}

HINSTANCE CPlatformWindows::moduleInstance()
{
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&CPlatformWindows::moduleInstance), &module);
    return module;
}

void CPlatformWindows::setClassNames(const char* productToken)
{
    std::snprintf(mUiClassName, sizeof(mUiClassName), "%s-UI", productToken);
    std::snprintf(mSplashClassName, sizeof(mSplashClassName), "%s-SPLASH", productToken);
}

void CPlatformWindows::registerClass(const char* name, UINT style)
{
    WNDCLASSA windowClass{};
    windowClass.style = style;
    windowClass.lpfnWndProc = &CPlatformWindows::windowProcedure;
    windowClass.hInstance = moduleInstance();
    windowClass.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = name;
    // Registering again while the class exists fails harmlessly; the existing class is used.
    RegisterClassA(&windowClass);
}

int CPlatformWindows::deviceSize(int logicalSize, float scale)
{
    return static_cast<int>(static_cast<float>(logicalSize) * scale + 0.5f);
}

int CPlatformWindows::occupySlot(HWND window, int x, int y, int deviceWidth, int deviceHeight, float scale,
                                 void* user)
{
    int index = 0;
    while (index < kSlotCount && mSlots[index].inUse != 0)
        ++index;
    if (index == kSlotCount)
    {
        SetWindowLongPtrA(window, GWLP_USERDATA, kSlotCount);
        return -1;
    }
    resetSlot(index);
    WindowSlot& slot = mSlots[index];
    slot.user = user;
    slot.inUse = 1;
    slot.erasePending = 1;
    slot.trackMoves = 0;
    slot.width = deviceWidth;
    slot.height = deviceHeight;
    slot.x = x;
    slot.y = y;
    slot.scale = scale;
    slot.reciprocalScaleFixed = static_cast<int32_t>((1.0f / scale) * 65536.0f);
    slot.window = window;
    slot.windowDc = GetDC(window);
    slot.memoryDc = CreateCompatibleDC(slot.windowDc);
    slot.memoryDcSecond = CreateCompatibleDC(slot.windowDc);
    SetWindowLongPtrA(window, GWLP_USERDATA, index);
    return index;
}

int CPlatformWindows::createChildWindow(int x, int y, int width, int height, float scale, HWND parent,
                                        void* user)
{
    const int deviceWidth = deviceSize(width, scale);
    const int deviceHeight = deviceSize(height, scale);
    registerClass(mUiClassName, kUiClassStyle);
    HWND window = CreateWindowExA(0, mUiClassName, nullptr, WS_CHILD, 0, 0, deviceWidth, deviceHeight, parent,
                                  nullptr, moduleInstance(), nullptr);
    if (window == nullptr)
        return -1;
    return occupySlot(window, x, y, deviceWidth, deviceHeight, scale, user);
}

int CPlatformWindows::createSplashWindow(int width, int height, float scale, void* user)
{
    const int deviceWidth = deviceSize(width, scale);
    const int deviceHeight = deviceSize(height, scale);
    RECT workArea{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &workArea, 0);
    const int x = (workArea.right - deviceWidth - workArea.left) / 2;
    const int y = (workArea.bottom - deviceHeight - workArea.top) / 2;
    registerClass(mSplashClassName, kSplashClassStyle);
    HWND window = CreateWindowExA(0, mSplashClassName, nullptr, 0, x, y, deviceWidth, deviceHeight, nullptr,
                                  nullptr, moduleInstance(), nullptr);
    const int index = occupySlot(window, x, y, deviceWidth, deviceHeight, scale, user);
    if (index >= 0)
        mSlots[index].isSplash = 1;
    return index;
}

void CPlatformWindows::releaseSlotWindow(int index)
{
    WindowSlot& slot = mSlots[index];
    if (slot.timer != nullptr)
        KillTimer(slot.window, kWindowTimerId);
    ReleaseDC(slot.window, slot.windowDc);
    DeleteDC(slot.memoryDc);
    DeleteDC(slot.memoryDcSecond);
    HWND window = slot.window;
    // Cleared first so that the WM_DESTROY sent from DestroyWindow finds the slot already free.
    resetSlot(index);
    DestroyWindow(window);
}

void CPlatformWindows::destroyWindow(int slot)
{
    if (validSlot(slot) && mSlots[slot].inUse != 0)
        releaseSlotWindow(slot);
}

void CPlatformWindows::setSpareCallback(int slot, NotifyCallback callback)
{
    if (validSlot(slot))
        mSlots[slot].spare = callback;
}

void CPlatformWindows::setTimerCallback(int slot, TimerCallback callback)
{
    // A free slot has no window: SetTimer would start a thread timer that nothing ever kills.
    if (!validSlot(slot) || mSlots[slot].inUse == 0)
        return;
    mSlots[slot].timer = callback;
    SetTimer(mSlots[slot].window, kWindowTimerId, mWindowTimerPeriod, nullptr);
}

void CPlatformWindows::setWindowTimerPeriod(uint32_t milliseconds)
{
    mWindowTimerPeriod = milliseconds;
}

void CPlatformWindows::startIdleTimer()
{
    mIdleTimer = SetTimer(nullptr, 0, mIdlePeriod, &CPlatformWindows::idleTimerProcedure);
}

void CALLBACK CPlatformWindows::idleTimerProcedure(HWND, UINT, UINT_PTR, DWORD)
{
    CPlatformWindows* kit = gInstance;
    if (kit == nullptr || kit->mIdleCallback == nullptr)
        return;
    if (!kit->mIdleCallback())
    {
        kit->stopIdleTimer();
        kit->mIdleCallback = nullptr;
    }
}

void CPlatformWindows::setIdlePeriod(uint32_t milliseconds)
{
    mIdlePeriod = milliseconds;
    if (mIdleCallback != nullptr && mIdleTimer == 0)
        startIdleTimer();
}

void CPlatformWindows::stopIdleTimer()
{
    if (mIdleTimer != 0)
        KillTimer(nullptr, mIdleTimer);
    mIdleTimer = 0;
}

void CPlatformWindows::setIdleCallback(IdleCallback callback)
{
    const bool wasSet = mIdleCallback != nullptr;
    mIdleCallback = callback;
    if (callback == nullptr)
        stopIdleTimer();
    else if (!wasSet && mIdleTimer == 0)
        startIdleTimer();
}

void CPlatformWindows::pumpMessages()
{
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    if (mIdleCallback != nullptr)
        mIdleCallback();
}

void CPlatformWindows::showWindow(int slot)
{
    if (validSlot(slot))
        ShowWindow(mSlots[slot].window, SW_SHOW);
}

void CPlatformWindows::setWindowTitle(int slot, const char* title)
{
    if (validSlot(slot))
        SetWindowTextA(mSlots[slot].window, title);
}

void CPlatformWindows::setWindowIcon(int slot, int iconResourceId)
{
    if (!validSlot(slot))
        return;
    HANDLE icon = LoadImageA(moduleInstance(), MAKEINTRESOURCEA(iconResourceId), IMAGE_ICON, 0, 0,
                             LR_DEFAULTSIZE | LR_SHARED);
    if (icon == nullptr)
        return;
    SendMessageA(mSlots[slot].window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
    SendMessageA(mSlots[slot].window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
}

void CPlatformWindows::acceptDroppedFiles(int slot)
{
    if (validSlot(slot))
        DragAcceptFiles(mSlots[slot].window, TRUE);
}

int CPlatformWindows::setTrackMouseMoves(int slot, bool track)
{
    if (validSlot(slot))
        mSlots[slot].trackMoves = track ? 1 : 0;
    return slot;
}

void CPlatformWindows::resize(int slot, int width, int height)
{
    if (validSlot(slot) && mSlots[slot].inUse != 0)
        SetWindowPos(mSlots[slot].window, HWND_TOP, 0, 0, width, height, SWP_NOMOVE);
}

void CPlatformWindows::invalidate(int slot, int x, int y, int width, int height)
{
    if (!validSlot(slot))
        return;
    const RECT area{x, y, x + width, y + height};
    InvalidateRect(mSlots[slot].window, &area, FALSE);
}

void CPlatformWindows::giveFocus(int slot)
{
    if (validSlot(slot))
        SetFocus(mSlots[slot].window);
}

void CPlatformWindows::captureMouse(int slot)
{
    if (validSlot(slot))
        SetCapture(mSlots[slot].window);
}

void CPlatformWindows::releaseCapture()
{
    ReleaseCapture();
}

void CPlatformWindows::restoreNormalCursor()
{
    SetCursor(mSavedCursor != nullptr ? mSavedCursor
                                      : LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)));
}

void CPlatformWindows::showCursor(LPCSTR cursor, bool show)
{
    if (show)
        mSavedCursor = SetCursor(LoadCursorA(nullptr, cursor));
    else if (mSavedCursor != nullptr)
        SetCursor(mSavedCursor);
}

void CPlatformWindows::showWaitCursor(bool show)
{
    showCursor(reinterpret_cast<LPCSTR>(IDC_WAIT), show);
}

void CPlatformWindows::showHandCursor(bool show)
{
    showCursor(reinterpret_cast<LPCSTR>(IDC_HAND), show);
}

void CPlatformWindows::showDiagonalResizeCursor(bool show)
{
    showCursor(reinterpret_cast<LPCSTR>(IDC_SIZENWSE), show);
}

HWND CPlatformWindows::windowHandle(int slot) const
{
    return validSlot(slot) ? mSlots[slot].window : nullptr;
}

void CPlatformWindows::desktopSize(int& width, int& height) const
{
    RECT area{};
    GetWindowRect(GetDesktopWindow(), &area);
    width = area.right - area.left;
    height = area.bottom - area.top;
}

float CPlatformWindows::displayScaleForDpi(bool dpiAware, int dpi)
{
    if (!dpiAware || dpi < 97)
        return 1.0f;
    return std::min(2.0f, static_cast<float>(dpi) / 96.0f);
}

float CPlatformWindows::displayScale()
{
    if (mDisplayScale != 0.0f)
        return mDisplayScale;
    bool dpiAware = true;
    if (HMODULE user32 = LoadLibraryA("user32.dll"))
    {
        using IsAwareFunction = BOOL(WINAPI*)();
        auto isAware = reinterpret_cast<IsAwareFunction>(
            reinterpret_cast<void*>(GetProcAddress(user32, "IsProcessDPIAware")));
        if (isAware != nullptr && !isAware())
            dpiAware = false;
        FreeLibrary(user32);
    }
    int dpi = 96;
    if (dpiAware)
    {
        HDC screen = GetDC(nullptr);
        dpi = std::max(GetDeviceCaps(screen, LOGPIXELSX), GetDeviceCaps(screen, LOGPIXELSY));
        ReleaseDC(nullptr, screen);
    }
    mDisplayScale = displayScaleForDpi(dpiAware, dpi);
    return mDisplayScale;
}

void CPlatformWindows::blitBitmap(int slot, HBITMAP bitmap, int bitmapWidth, int bitmapHeight, int sourceX,
                                  int sourceY, int width, int height, int destX, int destY)
{
    if (!validSlot(slot) || mSlots[slot].inUse == 0)
        return;
    sourceX = std::clamp(sourceX, 0, bitmapWidth);
    sourceY = std::clamp(sourceY, 0, bitmapHeight);
    width = std::min(width, bitmapWidth - sourceX);
    height = std::min(height, bitmapHeight - sourceY);
    WindowSlot& target = mSlots[slot];
    HGDIOBJ previous = SelectObject(target.memoryDc, bitmap);
    BitBlt(target.windowDc, destX, destY, width, height, target.memoryDc, sourceX, sourceY, SRCCOPY);
    SelectObject(target.memoryDc, previous);
}

uint32_t CPlatformWindows::millisecondStamp()
{
    return timeGetTime();
}

uint32_t CPlatformWindows::millisecondsSince(uint32_t stamp)
{
    return timeGetTime() - stamp;
}

void CPlatformWindows::sleepMilliseconds(int milliseconds)
{
    if (milliseconds >= 0)
        Sleep(static_cast<DWORD>(milliseconds));
}

void CPlatformWindows::setFrameTime()
{
    mFrameTime = timeGetTime();
}

double CPlatformWindows::frameTimeDelta()
{
    const double now = timeGetTime();
    const double delta = now - mFrameTime;
    mFrameTime = now;
    return delta;
}

void CPlatformWindows::setReferenceTime()
{
    mReferenceTime = timeGetTime();
}

double CPlatformWindows::referenceTimeDelta()
{
    const double now = timeGetTime();
    const double delta = now - mReferenceTime;
    mReferenceTime = now;
    return delta;
}

void CPlatformWindows::teardown()
{
    mShuttingDown = true;
    for (int index = 0; index < kSlotCount; ++index)
    {
        if (mSlots[index].inUse != 0)
            releaseSlotWindow(index);
    }
    mSlotMapping.fill(-1);
    waitForWindowProcedure();
    UnregisterClassA(mUiClassName, moduleInstance());
    UnregisterClassA(mSplashClassName, moduleInstance());
}

void initWindowKit(const char* productToken)
{
    CPlatformWindows::instance(true)->setClassNames(productToken);
}

void exitWindowKit()
{
    if (CPlatformWindows* kit = CPlatformWindows::instance(false))
    {
        kit->teardown();
        CPlatformWindows::release();
    }
}

} // namespace velmoran::platform
