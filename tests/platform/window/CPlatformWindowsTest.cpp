#include "platform/window/CPlatformWindows.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using velmoran::platform::CPlatformWindows;

namespace
{

constexpr const char* kToken = "5E1A0C3D9B27";

struct Event
{
    std::string kind;
    int a = 0;
    int b = 0;
    int c = 0;
    int slot = -1;
    void* user = nullptr;
};

std::vector<Event> gEvents;
bool gMayClose = false;
int gIdleCallsLeft = 0;
int gIdleCalls = 0;
std::string gDroppedPath;

void recordMouse(const char* kind, int x, int y, int button, int slot, void* user)
{
    gEvents.push_back({kind, x, y, button, slot, user});
}

void onMouseDown(int x, int y, int button, int slot, void* user)
{
    recordMouse("down", x, y, button, slot, user);
}

void onMouseUp(int x, int y, int button, int slot, void* user)
{
    recordMouse("up", x, y, button, slot, user);
}

void onMouseMove(int x, int y, int button, int slot, void* user)
{
    recordMouse("move", x, y, button, slot, user);
}

void onDoubleClick(int x, int y, int button, int slot, void* user)
{
    recordMouse("double", x, y, button, slot, user);
}

void onKeyDown(int unused, int key, int down, int slot, void* user)
{
    gEvents.push_back({"keydown", unused, key, down, slot, user});
}

void onKeyUp(int unused, int key, int down, int slot, void* user)
{
    gEvents.push_back({"keyup", unused, key, down, slot, user});
}

void onPaint(int left, int top, int width, int height, int slot, void* user)
{
    gEvents.push_back({"paint", left, top, 0, slot, user});
    gEvents.push_back({"paintsize", width, height, 0, slot, user});
}

bool onCloseQuery(int slot, void* user)
{
    gEvents.push_back({"closequery", 0, 0, 0, slot, user});
    return gMayClose;
}

bool onTimer(void* user)
{
    gEvents.push_back({"timer", 0, 0, 0, -1, user});
    return true;
}

bool onIdle()
{
    ++gIdleCalls;
    return --gIdleCallsLeft > 0;
}

void onFileDrop(const char* path, int slot, void* user)
{
    gDroppedPath = path;
    gEvents.push_back({"drop", 0, 0, 0, slot, user});
}

LRESULT CALLBACK hostProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcA(window, message, wParam, lParam);
}

// A top-level window standing in for the host's editor frame, shared by every test: hiding a
// top-level window costs seconds under Wine without a window manager.
HWND hostWindow()
{
    static HWND host = nullptr;
    if (host != nullptr)
        return host;
    WNDCLASSA hostClass{};
    hostClass.lpfnWndProc = hostProcedure;
    hostClass.hInstance = GetModuleHandleA(nullptr);
    hostClass.lpszClassName = "VelmoranTestHost";
    RegisterClassA(&hostClass);
    host = CreateWindowExA(0, "VelmoranTestHost", "Host", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 10, 10, 640,
                           480, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    ShowWindow(host, SW_SHOW);
    return host;
}

int countChildWindows(HWND host)
{
    int count = 0;
    EnumChildWindows(
        host,
        [](HWND, LPARAM counter) -> BOOL
        {
            ++*reinterpret_cast<int*>(counter);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&count));
    return count;
}

void setMouseButtons(bool left, bool right)
{
    BYTE keys[256] = {};
    GetKeyboardState(keys);
    keys[VK_LBUTTON] = left ? 0x80 : 0;
    keys[VK_RBUTTON] = right ? 0x80 : 0;
    SetKeyboardState(keys);
}

// A drop handle carrying these file names, as Explorer hands it over.
HGLOBAL makeDrop(const std::vector<std::string>& files)
{
    std::string names;
    for (const std::string& file : files)
        names += file + '\0';
    names += '\0';
    HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + names.size());
    auto* header = static_cast<DROPFILES*>(GlobalLock(memory));
    header->pFiles = sizeof(DROPFILES);
    header->fWide = FALSE;
    std::memcpy(reinterpret_cast<char*>(header) + sizeof(DROPFILES), names.data(), names.size());
    GlobalUnlock(memory);
    return memory;
}

class WindowKit : public ::testing::Test
{
protected:
    void SetUp() override
    {
        gEvents.clear();
        gMayClose = false;
        kit = CPlatformWindows::instance(true);
        kit->setClassNames(kToken);
        host = hostWindow();
    }

    void TearDown() override
    {
        setMouseButtons(false, false);
        CPlatformWindows::instance(false)->teardown();
        CPlatformWindows::release();
    }

    int openChild(float scale = 1.0f)
    {
        const int slot = kit->createChildWindow(0, 0, 200, 100, scale, host, &user);
        kit->setMouseDownCallback(slot, onMouseDown);
        kit->setMouseUpCallback(slot, onMouseUp);
        kit->setMouseMoveCallback(slot, onMouseMove);
        kit->setDoubleClickCallback(slot, onDoubleClick);
        kit->setKeyDownCallback(slot, onKeyDown);
        kit->setKeyUpCallback(slot, onKeyUp);
        return slot;
    }

    LRESULT send(int slot, UINT message, WPARAM wParam, LPARAM lParam)
    {
        return SendMessageA(kit->windowHandle(slot), message, wParam, lParam);
    }

    CPlatformWindows* kit = nullptr;
    HWND host = nullptr;
    int user = 0;
};

TEST_F(WindowKit, SecondRequestGivesTheSameInstanceAndFreshTablesAreEmpty)
{
    EXPECT_EQ(CPlatformWindows::instance(true), kit);
    for (int i = 0; i < CPlatformWindows::kSlotCount; ++i)
    {
        EXPECT_EQ(kit->slot(i).inUse, 0);
        EXPECT_EQ(kit->slotMapping(i), -1);
    }
    EXPECT_EQ(kit->slot(0).scale, 1.0f);
    EXPECT_EQ(kit->slot(0).reciprocalScaleFixed, 65536);
    EXPECT_EQ(kit->slot(0).erasePending, 1);
}

TEST_F(WindowKit, ClassNamesComeFromTheProductToken)
{
    EXPECT_STREQ(kit->uiClassName(), "5E1A0C3D9B27-UI");
    EXPECT_STREQ(kit->splashClassName(), "5E1A0C3D9B27-SPLASH");
}

TEST_F(WindowKit, ChildWindowLivesInsideTheHostWindowHiddenUntilShown)
{
    const int slot = kit->createChildWindow(5, 7, 200, 100, 1.0f, host, &user);
    ASSERT_EQ(slot, 0);
    HWND child = kit->windowHandle(slot);
    EXPECT_EQ(GetParent(child), host);
    char className[256] = {};
    GetClassNameA(child, className, 255);
    EXPECT_STREQ(className, "5E1A0C3D9B27-UI");
    EXPECT_EQ(GetClassLongA(child, GCL_STYLE), 0x4028);
    EXPECT_FALSE(IsWindowVisible(child));
    EXPECT_EQ(GetWindowLongPtrA(child, GWLP_USERDATA), slot);
    const auto& entry = kit->slot(slot);
    EXPECT_EQ(entry.x, 5);
    EXPECT_EQ(entry.y, 7);
    EXPECT_EQ(entry.user, &user);
    EXPECT_NE(entry.windowDc, nullptr);
    EXPECT_NE(entry.memoryDc, nullptr);
    kit->showWindow(slot);
    EXPECT_TRUE(IsWindowVisible(child));
    EXPECT_EQ(kit->createChildWindow(0, 0, 10, 10, 1.0f, host, &user), 1);
}

struct SizeCase
{
    float scale;
    int logicalWidth;
    int logicalHeight;
    int deviceWidth;
    int deviceHeight;
    int reciprocalFixed;
};

class WindowKitSize : public WindowKit, public ::testing::WithParamInterface<SizeCase>
{
};

TEST_P(WindowKitSize, DeviceSizeIsTheScaledSizeRoundedHalfUp)
{
    const SizeCase& sizeCase = GetParam();
    const int slot = kit->createChildWindow(0, 0, sizeCase.logicalWidth, sizeCase.logicalHeight,
                                            sizeCase.scale, host, &user);
    RECT client{};
    GetClientRect(kit->windowHandle(slot), &client);
    EXPECT_EQ(client.right, sizeCase.deviceWidth);
    EXPECT_EQ(client.bottom, sizeCase.deviceHeight);
    EXPECT_EQ(kit->slot(slot).width, sizeCase.deviceWidth);
    EXPECT_EQ(kit->slot(slot).height, sizeCase.deviceHeight);
    EXPECT_EQ(kit->slot(slot).reciprocalScaleFixed, sizeCase.reciprocalFixed);
}

INSTANTIATE_TEST_SUITE_P(Scales, WindowKitSize,
                         ::testing::Values(SizeCase{1.0f, 100, 50, 100, 50, 65536},
                                           SizeCase{1.25f, 100, 50, 125, 63, 52428},
                                           SizeCase{1.5f, 998, 634, 1497, 951, 43690},
                                           SizeCase{2.0f, 100, 50, 200, 100, 32768}));

struct ButtonCase
{
    UINT message;
    const char* kind;
    int button;
};

class WindowKitButtons : public WindowKit, public ::testing::WithParamInterface<ButtonCase>
{
};

TEST_P(WindowKitButtons, ButtonMessagesReachTheirCallbackWithTheButtonCode)
{
    const int slot = openChild();
    send(slot, GetParam().message, 0, MAKELPARAM(-3, 41));
    ASSERT_EQ(gEvents.size(), 1u);
    EXPECT_EQ(gEvents[0].kind, GetParam().kind);
    EXPECT_EQ(gEvents[0].a, -3);
    EXPECT_EQ(gEvents[0].b, 41);
    EXPECT_EQ(gEvents[0].c, GetParam().button);
    EXPECT_EQ(gEvents[0].slot, slot);
    EXPECT_EQ(gEvents[0].user, &user);
}

INSTANTIATE_TEST_SUITE_P(Messages, WindowKitButtons,
                         ::testing::Values(ButtonCase{WM_LBUTTONDOWN, "down", 0},
                                           ButtonCase{WM_LBUTTONUP, "up", 0},
                                           ButtonCase{WM_LBUTTONDBLCLK, "double", 0},
                                           ButtonCase{WM_RBUTTONDOWN, "down", 1},
                                           ButtonCase{WM_RBUTTONUP, "up", 1}));

TEST_F(WindowKit, ButtonPressGivesTheWindowTheFocus)
{
    const int slot = openChild();
    kit->showWindow(slot);
    SetFocus(host);
    send(slot, WM_LBUTTONDOWN, 0, 0);
    EXPECT_EQ(GetFocus(), kit->windowHandle(slot));
}

struct WheelCase
{
    int delta;
    int downCode;
};

class WindowKitWheel : public WindowKit, public ::testing::WithParamInterface<WheelCase>
{
};

TEST_P(WindowKitWheel, WheelPressCarriesTheDirectionAndReleaseAlwaysTwo)
{
    const int slot = openChild();
    send(slot, WM_MOUSEWHEEL, MAKEWPARAM(0, GetParam().delta), 0);
    ASSERT_EQ(gEvents.size(), 2u);
    EXPECT_EQ(gEvents[0].kind, "down");
    EXPECT_EQ(gEvents[0].c, GetParam().downCode);
    EXPECT_EQ(gEvents[1].kind, "up");
    EXPECT_EQ(gEvents[1].c, 2);
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(kit->windowHandle(slot), &cursor);
    EXPECT_EQ(gEvents[0].a, cursor.x);
    EXPECT_EQ(gEvents[0].b, cursor.y);
}

INSTANTIATE_TEST_SUITE_P(Directions, WindowKitWheel,
                         ::testing::Values(WheelCase{WHEEL_DELTA, 2}, WheelCase{-WHEEL_DELTA, 3},
                                           WheelCase{-1, 3}));

TEST_F(WindowKit, StillWheelReportsNothing)
{
    const int slot = openChild();
    send(slot, WM_MOUSEWHEEL, MAKEWPARAM(0, 0), 0);
    EXPECT_TRUE(gEvents.empty());
}

struct MoveCase
{
    bool track;
    bool left;
    bool right;
    int expectedCode; // -1: no call
};

class WindowKitMoves : public WindowKit, public ::testing::WithParamInterface<MoveCase>
{
};

TEST_P(WindowKitMoves, MovesAreReportedWithAButtonHeldOrWhenTracking)
{
    const MoveCase& moveCase = GetParam();
    const int slot = openChild();
    EXPECT_EQ(kit->setTrackMouseMoves(slot, moveCase.track), slot);
    setMouseButtons(moveCase.left, moveCase.right);
    send(slot, WM_MOUSEMOVE, 0, MAKELPARAM(12, 34));
    if (moveCase.expectedCode < 0)
    {
        EXPECT_TRUE(gEvents.empty());
        return;
    }
    ASSERT_EQ(gEvents.size(), 1u);
    EXPECT_EQ(gEvents[0].kind, "move");
    EXPECT_EQ(gEvents[0].a, 12);
    EXPECT_EQ(gEvents[0].b, 34);
    EXPECT_EQ(gEvents[0].c, moveCase.expectedCode);
}

INSTANTIATE_TEST_SUITE_P(ButtonStates, WindowKitMoves,
                         ::testing::Values(MoveCase{false, false, false, -1}, MoveCase{true, false, false, 0},
                                           MoveCase{false, true, false, 1}, MoveCase{false, false, true, 0},
                                           MoveCase{false, true, true, 0}, MoveCase{true, true, false, 1}));

TEST_F(WindowKit, KeysReportTheVirtualKeyAndDirection)
{
    const int slot = openChild();
    send(slot, WM_KEYDOWN, VK_SPACE, 0);
    send(slot, WM_SYSKEYUP, VK_MENU, 0);
    ASSERT_EQ(gEvents.size(), 2u);
    EXPECT_EQ(gEvents[0].kind, "keydown");
    EXPECT_EQ(gEvents[0].a, 0);
    EXPECT_EQ(gEvents[0].b, VK_SPACE);
    EXPECT_EQ(gEvents[0].c, 1);
    EXPECT_EQ(gEvents[1].kind, "keyup");
    EXPECT_EQ(gEvents[1].b, VK_MENU);
    EXPECT_EQ(gEvents[1].c, 0);
}

TEST_F(WindowKit, OnlyTheFirstEraseReachesTheBackground)
{
    const int slot = openChild();
    HDC screen = GetDC(nullptr);
    HDC canvas = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 8, 8);
    ReleaseDC(nullptr, screen);
    HGDIOBJ previous = SelectObject(canvas, bitmap);
    const RECT whole{0, 0, 8, 8};

    FillRect(canvas, &whole, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    send(slot, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas), 0);
    EXPECT_EQ(GetPixel(canvas, 4, 4), RGB(0, 0, 0));
    EXPECT_EQ(kit->slot(slot).erasePending, 0);

    FillRect(canvas, &whole, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    EXPECT_EQ(send(slot, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas), 0), 1);
    EXPECT_EQ(GetPixel(canvas, 4, 4), RGB(255, 255, 255));

    SelectObject(canvas, previous);
    DeleteObject(bitmap);
    DeleteDC(canvas);
}

TEST_F(WindowKit, RefusedCloseLeavesTheWindowOpenAfterTheKeyUpCall)
{
    const int slot = openChild();
    kit->setCloseQueryCallback(slot, onCloseQuery);
    HWND child = kit->windowHandle(slot);
    EXPECT_EQ(send(slot, WM_CLOSE, 27, 0), 0);
    ASSERT_EQ(gEvents.size(), 2u);
    EXPECT_EQ(gEvents[0].kind, "keyup");
    EXPECT_EQ(gEvents[0].b, 27);
    EXPECT_EQ(gEvents[1].kind, "closequery");
    EXPECT_TRUE(IsWindow(child));
    EXPECT_EQ(kit->slot(slot).inUse, 1);
}

TEST_F(WindowKit, AcceptedCloseDestroysTheWindowAndFreesTheSlot)
{
    const int slot = openChild();
    kit->setCloseQueryCallback(slot, onCloseQuery);
    gMayClose = true;
    HWND child = kit->windowHandle(slot);
    send(slot, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(child));
    EXPECT_EQ(kit->slot(slot).inUse, 0);
    EXPECT_EQ(kit->slot(slot).window, nullptr);
}

TEST_F(WindowKit, PaintGetsTheInvalidatedRectangle)
{
    const int slot = openChild();
    kit->setPaintCallback(slot, onPaint);
    kit->showWindow(slot);
    UpdateWindow(host);
    UpdateWindow(kit->windowHandle(slot));
    gEvents.clear();
    kit->invalidate(slot, 10, 20, 30, 40);
    UpdateWindow(kit->windowHandle(slot));
    ASSERT_EQ(gEvents.size(), 2u);
    EXPECT_EQ(gEvents[0].a, 10);
    EXPECT_EQ(gEvents[0].b, 20);
    EXPECT_EQ(gEvents[1].a, 30);
    EXPECT_EQ(gEvents[1].b, 40);
    EXPECT_EQ(gEvents[0].user, &user);
}

TEST_F(WindowKit, WindowTimerTicksReachTheTimerCallback)
{
    const int slot = openChild();
    kit->setWindowTimerPeriod(10);
    kit->setTimerCallback(slot, onTimer);
    const uint32_t start = CPlatformWindows::millisecondStamp();
    while (gEvents.size() < 3 && CPlatformWindows::millisecondsSince(start) < 5000)
    {
        kit->pumpMessages();
        CPlatformWindows::sleepMilliseconds(5);
    }
    ASSERT_GE(gEvents.size(), 3u);
    EXPECT_EQ(gEvents[0].kind, "timer");
    EXPECT_EQ(gEvents[0].user, &user);
}

TEST_F(WindowKit, IdleTimerRunsUntilItsCallbackDeclines)
{
    gIdleCalls = 0;
    gIdleCallsLeft = 3;
    kit->setIdlePeriod(10);
    kit->setIdleCallback(onIdle);
    const uint32_t start = CPlatformWindows::millisecondStamp();
    while (gIdleCallsLeft > 0 && CPlatformWindows::millisecondsSince(start) < 5000)
    {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
        CPlatformWindows::sleepMilliseconds(5);
    }
    EXPECT_EQ(gIdleCalls, 3);
    CPlatformWindows::sleepMilliseconds(50);
    kit->pumpMessages();
    EXPECT_EQ(gIdleCalls, 3);
}

TEST_F(WindowKit, PumpCallsTheIdleCallbackOnce)
{
    gIdleCalls = 0;
    gIdleCallsLeft = 100;
    kit->setIdlePeriod(60000);
    kit->setIdleCallback(onIdle);
    kit->pumpMessages();
    EXPECT_EQ(gIdleCalls, 1);
    kit->setIdleCallback(nullptr);
    kit->pumpMessages();
    EXPECT_EQ(gIdleCalls, 1);
}

TEST_F(WindowKit, DroppedFilesReportOnlyTheFirst)
{
    const int slot = openChild();
    kit->setFileDropCallback(slot, onFileDrop);
    kit->acceptDroppedFiles(slot);
    EXPECT_NE(GetWindowLongA(kit->windowHandle(slot), GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
    send(slot, WM_DROPFILES,
         reinterpret_cast<WPARAM>(makeDrop({"C:\\one.vlm", "C:\\two.vlm", "C:\\three.vlm"})), 0);
    ASSERT_EQ(gEvents.size(), 1u);
    EXPECT_EQ(gDroppedPath, "C:\\one.vlm");
}

TEST_F(WindowKit, FullTableGivesMinusOneAndTeardownDestroysEveryWindow)
{
    std::vector<HWND> windows;
    for (int i = 0; i < CPlatformWindows::kSlotCount; ++i)
    {
        ASSERT_EQ(kit->createChildWindow(0, 0, 4, 4, 1.0f, host, nullptr), i);
        windows.push_back(kit->windowHandle(i));
    }
    EXPECT_EQ(kit->createChildWindow(0, 0, 4, 4, 1.0f, host, nullptr), -1);
    // The window that found no slot stays alive, marked with 255.
    EXPECT_EQ(countChildWindows(host), 256);

    kit->destroyWindow(7);
    EXPECT_FALSE(IsWindow(windows[7]));
    EXPECT_EQ(kit->createChildWindow(0, 0, 4, 4, 1.0f, host, nullptr), 7);
    windows[7] = kit->windowHandle(7);

    kit->teardown();
    EXPECT_TRUE(kit->shuttingDown());
    for (HWND window : windows)
        EXPECT_FALSE(IsWindow(window));
    for (int i = 0; i < CPlatformWindows::kSlotCount; ++i)
        EXPECT_EQ(kit->slot(i).inUse, 0);
    EXPECT_EQ(countChildWindows(host), 1);
}

TEST_F(WindowKit, SplashWindowIsCentredInTheWorkAreaWithoutFrame)
{
    const int slot = kit->createSplashWindow(300, 200, 1.0f, &user);
    ASSERT_GE(slot, 0);
    HWND splash = kit->windowHandle(slot);
    char className[256] = {};
    GetClassNameA(splash, className, 255);
    EXPECT_STREQ(className, "5E1A0C3D9B27-SPLASH");
    EXPECT_EQ(GetParent(splash), nullptr);
    EXPECT_EQ(kit->slot(slot).isSplash, 1);
    RECT workArea{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &workArea, 0);
    EXPECT_EQ(kit->slot(slot).x, (workArea.right - 300 - workArea.left) / 2);
    EXPECT_EQ(kit->slot(slot).y, (workArea.bottom - 200 - workArea.top) / 2);
    RECT client{};
    RECT frame{};
    GetClientRect(splash, &client);
    GetWindowRect(splash, &frame);
    EXPECT_EQ(client.right, frame.right - frame.left);
    EXPECT_EQ(client.bottom, frame.bottom - frame.top);
}

TEST_F(WindowKit, IconComesFromTheModuleAndAMissingOneChangesNothing)
{
    const int slot = openChild();
    HWND child = kit->windowHandle(slot);
    kit->setWindowIcon(slot, 4242);
    EXPECT_EQ(SendMessageA(child, WM_GETICON, ICON_BIG, 0), 0);
    kit->setWindowIcon(slot, 200);
    EXPECT_NE(SendMessageA(child, WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_NE(SendMessageA(child, WM_GETICON, ICON_SMALL, 0), 0);
}

TEST_F(WindowKit, TitleIsSetOnTheWindow)
{
    const int slot = openChild();
    kit->setWindowTitle(slot, "Velmoran");
    char title[64] = {};
    GetWindowTextA(kit->windowHandle(slot), title, sizeof(title));
    EXPECT_STREQ(title, "Velmoran");
}

TEST_F(WindowKit, ResizeChangesTheDeviceSize)
{
    const int slot = openChild();
    kit->resize(slot, 321, 123);
    RECT client{};
    GetClientRect(kit->windowHandle(slot), &client);
    EXPECT_EQ(client.right, 321);
    EXPECT_EQ(client.bottom, 123);
}

TEST_F(WindowKit, BlitCopiesTheBitmapCutAtItsEdges)
{
    const int slot = openChild();
    kit->showWindow(slot);
    HDC windowDc = kit->slot(slot).windowDc;
    HBITMAP bitmap = CreateCompatibleBitmap(windowDc, 16, 16);
    HDC canvas = CreateCompatibleDC(windowDc);
    HGDIOBJ previous = SelectObject(canvas, bitmap);
    const RECT whole{0, 0, 16, 16};
    HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    FillRect(canvas, &whole, red);
    SelectObject(canvas, previous);
    DeleteDC(canvas);

    const RECT background{0, 0, 200, 100};
    FillRect(windowDc, &background, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    kit->blitBitmap(slot, bitmap, 16, 16, 8, 8, 100, 100, 20, 30);
    EXPECT_EQ(GetPixel(windowDc, 21, 31), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(windowDc, 27, 37), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(windowDc, 29, 39), RGB(0, 0, 0));
    DeleteObject(red);
    DeleteObject(bitmap);
}

TEST_F(WindowKit, CursorsAreShownAndRestored)
{
    HCURSOR arrow = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    SetCursor(arrow);
    kit->showWaitCursor(true);
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT)));
    kit->showWaitCursor(false);
    EXPECT_EQ(GetCursor(), arrow);
    kit->showDiagonalResizeCursor(true);
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_SIZENWSE)));
    kit->restoreNormalCursor();
    EXPECT_EQ(GetCursor(), arrow);
}

TEST_F(WindowKit, DisplayScaleIsMeasuredOnceWithinItsRange)
{
    const float scale = kit->displayScale();
    EXPECT_GE(scale, 1.0f);
    EXPECT_LE(scale, 2.0f);
    EXPECT_EQ(kit->displayScale(), scale);
}

TEST_F(WindowKit, GammaTableBrightensAndKeepsTheEnds)
{
    const auto& table = kit->gammaTable();
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[255], 255);
    for (int i = 1; i < 255; ++i)
    {
        EXPECT_GE(table[i], i);
        EXPECT_GE(table[i], table[i - 1]);
    }
    EXPECT_EQ(table[128], 146);
}

TEST_F(WindowKit, TimeHelpersMeasureSleeps)
{
    const uint32_t stamp = CPlatformWindows::millisecondStamp();
    CPlatformWindows::sleepMilliseconds(-5);
    CPlatformWindows::sleepMilliseconds(30);
    EXPECT_GE(CPlatformWindows::millisecondsSince(stamp), 25u);
    kit->setFrameTime();
    CPlatformWindows::sleepMilliseconds(20);
    EXPECT_GE(kit->frameTimeDelta(), 15.0);
    EXPECT_LT(kit->frameTimeDelta(), 15.0);
}

TEST(WindowKitModuleHooks, CreateAndTearDownTheKit)
{
    velmoran::platform::initWindowKit("00FF00FF00FF");
    CPlatformWindows* created = CPlatformWindows::instance(false);
    ASSERT_NE(created, nullptr);
    EXPECT_STREQ(created->uiClassName(), "00FF00FF00FF-UI");
    HWND host = hostWindow();
    const int slot = created->createChildWindow(0, 0, 10, 10, 1.0f, host, nullptr);
    HWND child = created->windowHandle(slot);
    velmoran::platform::exitWindowKit();
    EXPECT_EQ(CPlatformWindows::instance(false), nullptr);
    EXPECT_FALSE(IsWindow(child));
    EXPECT_FALSE(UnregisterClassA("00FF00FF00FF-UI", CPlatformWindows::moduleInstance()));
}

struct DpiCase
{
    bool aware;
    int dpi;
    float scale;
};

class DisplayScaleForDpi : public ::testing::TestWithParam<DpiCase>
{
};

TEST_P(DisplayScaleForDpi, FollowsTheScreenResolution)
{
    EXPECT_FLOAT_EQ(CPlatformWindows::displayScaleForDpi(GetParam().aware, GetParam().dpi), GetParam().scale);
}

INSTANTIATE_TEST_SUITE_P(Screens, DisplayScaleForDpi,
                         ::testing::Values(DpiCase{true, 96, 1.0f}, DpiCase{true, 72, 1.0f},
                                           DpiCase{true, 120, 1.25f}, DpiCase{true, 144, 1.5f},
                                           DpiCase{true, 240, 2.0f}, DpiCase{true, 300, 2.0f},
                                           DpiCase{false, 120, 1.0f}));

} // namespace
