#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

using velmoran::platform::CPlatformWindows;
using velmoran::test::testHostWindow;

namespace
{

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

enum Kind
{
    kDown,
    kUp,
    kMove,
    kDouble,
    kKeyDown,
    kKeyUp
};

// Mouse and key callbacks share one shape: three numbers, the slot and the user pointer.
template <Kind kind> void record(int a, int b, int c, int slot, void* user)
{
    static const char* const kNames[] = {"down", "up", "move", "double", "keydown", "keyup"};
    gEvents.push_back({kNames[kind], a, b, c, slot, user});
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

// Whether event number index has this kind and these three numbers.
::testing::AssertionResult eventIs(size_t index, const char* kind, int a, int b, int c)
{
    if (index >= gEvents.size())
        return ::testing::AssertionFailure() << "only " << gEvents.size() << " events";
    const Event& event = gEvents[index];
    if (event.kind == kind && event.a == a && event.b == b && event.c == c)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "event " << index << " is " << event.kind << " (" << event.a
                                         << ", " << event.b << ", " << event.c << ")";
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

// Ticks of thread timers (timers without a window) that arrive within milliseconds, taken from
// the queue without being handled.
int threadTimerTicks(uint32_t milliseconds)
{
    int ticks = 0;
    const uint32_t start = CPlatformWindows::millisecondStamp();
    while (CPlatformWindows::millisecondsSince(start) < milliseconds)
    {
        MSG message;
        while (PeekMessageA(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE))
            ticks += message.hwnd == nullptr ? 1 : 0;
        CPlatformWindows::sleepMilliseconds(5);
    }
    return ticks;
}

std::string classNameOf(HWND window)
{
    char name[256] = {};
    GetClassNameA(window, name, 255);
    return name;
}

class WindowKit : public ::testing::Test
{
protected:
    void SetUp() override
    {
        gEvents.clear();
        gMayClose = false;
        kit = CPlatformWindows::instance(true);
        kit->setClassNames(velmoran::test::kTestToken);
        host = testHostWindow();
    }

    void TearDown() override
    {
        setMouseButtons(false, false);
        velmoran::test::closeAllWindows();
    }

    int openChild()
    {
        const int slot = kit->createChildWindow(0, 0, 200, 100, 1.0f, host, &user);
        kit->setMouseDownCallback(slot, record<kDown>);
        kit->setMouseUpCallback(slot, record<kUp>);
        kit->setMouseMoveCallback(slot, record<kMove>);
        kit->setDoubleClickCallback(slot, record<kDouble>);
        kit->setKeyDownCallback(slot, record<kKeyDown>);
        kit->setKeyUpCallback(slot, record<kKeyUp>);
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

TEST_F(WindowKit, IsOneInstanceWithEmptyTablesAndClassNamesFromTheToken)
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
    EXPECT_STREQ(kit->uiClassName(), "5E1A0C3D9B27-UI");
    EXPECT_STREQ(kit->splashClassName(), "5E1A0C3D9B27-SPLASH");
}

TEST_F(WindowKit, ChildWindowLivesInsideTheHostWindowHiddenUntilShown)
{
    const int slot = kit->createChildWindow(5, 7, 200, 100, 1.0f, host, &user);
    ASSERT_EQ(slot, 0);
    HWND child = kit->windowHandle(slot);
    EXPECT_EQ(GetParent(child), host);
    EXPECT_EQ(classNameOf(child), "5E1A0C3D9B27-UI");
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

// The device size is the scaled size rounded half up.
TEST_F(WindowKit, DeviceSizeFollowsTheScale)
{
    const struct
    {
        float scale;
        int logicalWidth, logicalHeight, deviceWidth, deviceHeight, reciprocalFixed;
    } cases[] = {{1.0f, 100, 50, 100, 50, 65536},
                 {1.25f, 100, 50, 125, 63, 52428},
                 {1.5f, 998, 634, 1497, 951, 43690},
                 {2.0f, 100, 50, 200, 100, 32768}};
    for (const auto& size : cases)
    {
        SCOPED_TRACE(size.scale);
        const int slot =
            kit->createChildWindow(0, 0, size.logicalWidth, size.logicalHeight, size.scale, host, &user);
        RECT client{};
        GetClientRect(kit->windowHandle(slot), &client);
        EXPECT_EQ(client.right, size.deviceWidth);
        EXPECT_EQ(client.bottom, size.deviceHeight);
        EXPECT_EQ(kit->slot(slot).width, size.deviceWidth);
        EXPECT_EQ(kit->slot(slot).height, size.deviceHeight);
        EXPECT_EQ(kit->slot(slot).reciprocalScaleFixed, size.reciprocalFixed);
    }
}

// Each button message reaches its callback with the button code; a left press also takes the focus.
TEST_F(WindowKit, ButtonMessagesReachTheirCallbackWithTheButtonCode)
{
    const int slot = openChild();
    kit->showWindow(slot);
    SetFocus(host);
    const struct
    {
        UINT message;
        const char* kind;
        int button;
    } cases[] = {{WM_LBUTTONDOWN, "down", 0},
                 {WM_LBUTTONUP, "up", 0},
                 {WM_LBUTTONDBLCLK, "double", 0},
                 {WM_RBUTTONDOWN, "down", 1},
                 {WM_RBUTTONUP, "up", 1}};
    for (const auto& button : cases)
    {
        SCOPED_TRACE(button.message);
        gEvents.clear();
        send(slot, button.message, 0, MAKELPARAM(-3, 41));
        ASSERT_EQ(gEvents.size(), 1u);
        EXPECT_TRUE(eventIs(0, button.kind, -3, 41, button.button));
        EXPECT_EQ(gEvents[0].slot, slot);
        EXPECT_EQ(gEvents[0].user, &user);
        if (button.message == WM_LBUTTONDOWN)
        {
            EXPECT_EQ(GetFocus(), kit->windowHandle(slot));
        }
    }
}

// A turn is a press at the cursor carrying the direction, then a release with code 2; a still wheel
// reports nothing.
TEST_F(WindowKit, WheelTurnsArePressesWithTheDirection)
{
    const int slot = openChild();
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(kit->windowHandle(slot), &cursor);
    const struct
    {
        int delta;
        int downCode; // -1: no call
    } cases[] = {{WHEEL_DELTA, 2}, {-WHEEL_DELTA, 3}, {-1, 3}, {0, -1}};
    for (const auto& wheel : cases)
    {
        SCOPED_TRACE(wheel.delta);
        gEvents.clear();
        send(slot, WM_MOUSEWHEEL, MAKEWPARAM(0, wheel.delta), 0);
        ASSERT_EQ(gEvents.size(), wheel.downCode < 0 ? 0u : 2u);
        if (wheel.downCode < 0)
            continue;
        EXPECT_TRUE(eventIs(0, "down", cursor.x, cursor.y, wheel.downCode));
        EXPECT_EQ(gEvents[1].kind, "up");
        EXPECT_EQ(gEvents[1].c, 2);
    }
}

// Moves are reported while a button is held (1 for the left alone) or while tracking.
TEST_F(WindowKit, MovesAreReportedWithAButtonHeldOrWhenTracking)
{
    const int slot = openChild();
    const struct
    {
        bool track, left, right;
        int expectedCode; // -1: no call
    } cases[] = {{false, false, false, -1}, {true, false, false, 0}, {false, true, false, 1},
                 {false, false, true, 0},   {false, true, true, 0},  {true, true, false, 1}};
    for (const auto& move : cases)
    {
        SCOPED_TRACE(::testing::Message() << move.track << move.left << move.right);
        gEvents.clear();
        EXPECT_EQ(kit->setTrackMouseMoves(slot, move.track), slot);
        setMouseButtons(move.left, move.right);
        send(slot, WM_MOUSEMOVE, 0, MAKELPARAM(12, 34));
        ASSERT_EQ(gEvents.size(), move.expectedCode < 0 ? 0u : 1u);
        if (move.expectedCode >= 0)
        {
            EXPECT_TRUE(eventIs(0, "move", 12, 34, move.expectedCode));
        }
    }
}

TEST_F(WindowKit, KeysReportTheVirtualKeyAndDirection)
{
    const int slot = openChild();
    send(slot, WM_KEYDOWN, VK_SPACE, 0);
    send(slot, WM_SYSKEYUP, VK_MENU, 0);
    ASSERT_EQ(gEvents.size(), 2u);
    EXPECT_TRUE(eventIs(0, "keydown", 0, VK_SPACE, 1));
    EXPECT_TRUE(eventIs(1, "keyup", 0, VK_MENU, 0));
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

// Close first reports the key as released, then asks; a refusal keeps the window, consent frees it.
TEST_F(WindowKit, CloseAsksTheEditorAndDestroysTheWindowOnlyWhenAllowed)
{
    const int slot = openChild();
    kit->setCloseQueryCallback(slot, onCloseQuery);
    HWND child = kit->windowHandle(slot);
    EXPECT_EQ(send(slot, WM_CLOSE, 27, 0), 0);
    ASSERT_EQ(gEvents.size(), 2u);
    EXPECT_TRUE(eventIs(0, "keyup", 0, 27, 0));
    EXPECT_EQ(gEvents[1].kind, "closequery");
    EXPECT_TRUE(IsWindow(child));
    EXPECT_EQ(kit->slot(slot).inUse, 1);

    gMayClose = true;
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
    EXPECT_TRUE(eventIs(0, "paint", 10, 20, 0));
    EXPECT_TRUE(eventIs(1, "paintsize", 30, 40, 0));
    EXPECT_EQ(gEvents[0].user, &user);
}

// A window nobody paints is still validated: once painted, an idle window gets no more WM_PAINT.
TEST_F(WindowKit, IdleWindowWithoutPaintCallbackIsNotRepainted)
{
    const int slot = openChild();
    HWND child = kit->windowHandle(slot);
    kit->showWindow(slot);
    UpdateWindow(child);
    EXPECT_FALSE(GetUpdateRect(child, nullptr, FALSE));
    int repaints = 0;
    MSG message;
    for (int round = 0; round < 10 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++round)
    {
        repaints += message.message == WM_PAINT && message.hwnd == child ? 1 : 0;
        DispatchMessageA(&message);
    }
    EXPECT_EQ(repaints, 0);
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

// The idle timer calls back until the callback declines; a pump calls it once more while one is set.
TEST_F(WindowKit, IdleCallbackRunsUntilItDeclines)
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

// Neither a timer set on a free slot nor a cleared idle callback leaves a thread timer ticking.
TEST_F(WindowKit, NoThreadTimerIsLeftTicking)
{
    kit->setWindowTimerPeriod(10);
    kit->setIdlePeriod(10);
    const std::function<void()> cases[] = {[&] { kit->setTimerCallback(3, onTimer); },
                                           [&]
                                           {
                                               kit->setIdleCallback(onIdle);
                                               kit->setIdleCallback(nullptr);
                                           }};
    for (size_t index = 0; index < std::size(cases); ++index)
    {
        cases[index]();
        EXPECT_EQ(threadTimerTicks(100), 0) << "case " << index;
    }
}

// A drop is always finished (its memory freed); a callback hears only of the first file.
TEST_F(WindowKit, DropsAreFinishedAndReportOnlyTheFirstFile)
{
    for (const bool listening : {true, false})
    {
        SCOPED_TRACE(listening);
        gEvents.clear();
        gDroppedPath.clear();
        const int slot = openChild();
        kit->setFileDropCallback(slot, listening ? onFileDrop : nullptr);
        kit->acceptDroppedFiles(slot);
        EXPECT_NE(GetWindowLongA(kit->windowHandle(slot), GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
        HGLOBAL drop = makeDrop({"C:\\one.vlm", "C:\\two.vlm", "C:\\three.vlm"});
        send(slot, WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
        EXPECT_EQ(gEvents.size(), listening ? 1u : 0u);
        EXPECT_EQ(gDroppedPath, listening ? "C:\\one.vlm" : "");
        EXPECT_EQ(GlobalSize(drop), 0u);
    }
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
    EXPECT_EQ(classNameOf(splash), "5E1A0C3D9B27-SPLASH");
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

// The icon comes from the module (a missing one changes nothing); title and size reach the window.
TEST_F(WindowKit, IconTitleAndSizeReachTheWindow)
{
    const int slot = openChild();
    HWND child = kit->windowHandle(slot);
    kit->setWindowIcon(slot, 4242);
    EXPECT_EQ(SendMessageA(child, WM_GETICON, ICON_BIG, 0), 0);
    kit->setWindowIcon(slot, 200);
    EXPECT_NE(SendMessageA(child, WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_NE(SendMessageA(child, WM_GETICON, ICON_SMALL, 0), 0);

    kit->setWindowTitle(slot, "Velmoran");
    char title[64] = {};
    GetWindowTextA(child, title, sizeof(title));
    EXPECT_STREQ(title, "Velmoran");

    kit->resize(slot, 321, 123);
    RECT client{};
    GetClientRect(child, &client);
    EXPECT_EQ(client.right, 321);
    EXPECT_EQ(client.bottom, 123);
}

TEST_F(WindowKit, ResizeRaisesTheWindowAboveItsSiblings)
{
    const int slots[2] = {openChild(), openChild()};
    const int lower = kit->windowHandle(slots[0]) == GetWindow(host, GW_CHILD) ? slots[1] : slots[0];
    kit->resize(lower, 150, 80);
    EXPECT_EQ(GetWindow(host, GW_CHILD), kit->windowHandle(lower));
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

// The display scale is measured once and kept in 1..2; the gamma table brightens but keeps its ends.
TEST_F(WindowKit, DisplayScaleAndGammaTable)
{
    const float scale = kit->displayScale();
    EXPECT_GE(scale, 1.0f);
    EXPECT_LE(scale, 2.0f);
    EXPECT_EQ(kit->displayScale(), scale);

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
    const int slot = created->createChildWindow(0, 0, 10, 10, 1.0f, testHostWindow(), nullptr);
    HWND child = created->windowHandle(slot);
    velmoran::platform::exitWindowKit();
    EXPECT_EQ(CPlatformWindows::instance(false), nullptr);
    EXPECT_FALSE(IsWindow(child));
    EXPECT_FALSE(UnregisterClassA("00FF00FF00FF-UI", CPlatformWindows::moduleInstance()));
}

TEST(DisplayScaleForDpi, FollowsTheScreenResolutionWhenAware)
{
    const struct
    {
        bool aware;
        int dpi;
        float scale;
    } cases[] = {{true, 96, 1.0f},  {true, 72, 1.0f},  {true, 120, 1.25f}, {true, 144, 1.5f},
                 {true, 240, 2.0f}, {true, 300, 2.0f}, {false, 120, 1.0f}};
    for (const auto& screen : cases)
        EXPECT_FLOAT_EQ(CPlatformWindows::displayScaleForDpi(screen.aware, screen.dpi), screen.scale)
            << screen.dpi << " dpi, aware " << screen.aware;
}

} // namespace
