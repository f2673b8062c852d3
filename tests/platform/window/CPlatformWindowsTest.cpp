#include "platform/window/CPlatformWindows.h"
#include "platform/window/KitScaleCases.h"
#include "platform/window/TestHostWindow.h"
#include "support/WaitFor.h"

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

using Events = std::vector<std::string>;

// What the callbacks were told, in order, for example "down -3 41 0" (three numbers of a mouse or
// key callback); "from elsewhere" marks a call with another slot or user than the last child's.
Events gEvents;
int gChildSlot = -1;
int gUser = 0;
bool gMayClose = false;
int gIdleCallsLeft = 0;
int gIdleCalls = 0;

void note(std::string event, int slot, void* user)
{
    gEvents.push_back(slot == gChildSlot && user == &gUser ? event : event + " from elsewhere");
}

// Mouse and key callbacks share one shape: three numbers, the slot and the user pointer.
template <const char* kind> void record(int a, int b, int c, int slot, void* user)
{
    note(std::string(kind) + " " + std::to_string(a) + " " + std::to_string(b) + " " + std::to_string(c),
         slot, user);
}
constexpr char kDown[] = "down", kUp[] = "up", kMove[] = "move", kDouble[] = "double", kKeyDown[] = "keydown",
               kKeyUp[] = "keyup", kWheel[] = "wheel";

void onPaint(int left, int top, int width, int height, int slot, void* user)
{
    note("paint " + std::to_string(left) + " " + std::to_string(top) + " " + std::to_string(width) + " " +
             std::to_string(height),
         slot, user);
}

// Takes the left arrow only.
bool onKey(int key, int down, int slot, void* user)
{
    note("key " + std::to_string(key) + " " + std::to_string(down), slot, user);
    return key == VK_LEFT;
}

// The host window's procedure while a test listens to what reaches it.
LRESULT CALLBACK listeningHost(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_KEYDOWN || message == WM_KEYUP || message == WM_SYSKEYDOWN)
        gEvents.push_back("host " + std::to_string(message) + " " + std::to_string(wParam));
    return DefWindowProcA(window, message, wParam, lParam);
}

void onDestroyNotify(int slot, void* user)
{
    const bool alive = IsWindow(CPlatformWindows::instance(false)->windowHandle(slot));
    note(alive ? "destroyed alive" : "destroyed gone", slot, user);
}

void onPointerLost(int slot, void* user)
{
    note("lost", slot, user);
}

bool onCloseQuery(int slot, void* user)
{
    note("closequery", slot, user);
    return gMayClose;
}

bool onTimer(void* user)
{
    note("timer", gChildSlot, user);
    return true;
}

bool onIdle()
{
    ++gIdleCalls;
    return --gIdleCallsLeft > 0;
}

void onFileDrop(const char* path, int slot, void* user)
{
    note(std::string("drop ") + path, slot, user);
}

int countChildWindows(HWND host)
{
    int count = 0;
    for (HWND child = GetWindow(host, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        ++count;
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

// Width and height of a window's client area.
std::pair<int, int> clientSize(HWND window)
{
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
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

    // A 200 x 100 child whose mouse and key callbacks record.
    int openChild()
    {
        gChildSlot = kit->createChildWindow(0, 0, 200, 100, 1.0f, host, &gUser);
        kit->setMouseDownCallback(gChildSlot, record<kDown>);
        kit->setMouseUpCallback(gChildSlot, record<kUp>);
        kit->setMouseMoveCallback(gChildSlot, record<kMove>);
        kit->setDoubleClickCallback(gChildSlot, record<kDouble>);
        kit->setKeyDownCallback(gChildSlot, record<kKeyDown>);
        kit->setKeyUpCallback(gChildSlot, record<kKeyUp>);
        return gChildSlot;
    }

    LRESULT send(int slot, UINT message, WPARAM wParam, LPARAM lParam)
    {
        return SendMessageA(kit->windowHandle(slot), message, wParam, lParam);
    }

    CPlatformWindows* kit = nullptr;
    HWND host = nullptr;
};

// The class gives the window its own device context (kept for the renderer) and double-click
// messages.
TEST_F(WindowKit, ChildWindowLivesInsideTheHostWindowHiddenUntilShown)
{
    const int slot = kit->createChildWindow(5, 7, 200, 100, 1.0f, host, &gUser);
    HWND child = kit->windowHandle(slot);
    EXPECT_EQ(GetParent(child), host);
    EXPECT_EQ(GetClassLongA(child, GCL_STYLE) & (CS_OWNDC | CS_DBLCLKS), CS_OWNDC | CS_DBLCLKS);
    EXPECT_FALSE(IsWindowVisible(child));
    kit->showWindow(slot);
    EXPECT_TRUE(IsWindowVisible(child));
}

// The scale of a display's resolution, and the device size of a window at a scale.
TEST_F(WindowKit, WindowsFollowTheScale)
{
    for (const auto& screen : velmoran::test::kDpiCases)
    {
        EXPECT_FLOAT_EQ(CPlatformWindows::displayScaleForDpi(true, screen.dpi), screen.scale) << screen.dpi;
    }
    EXPECT_FLOAT_EQ(CPlatformWindows::displayScaleForDpi(false, 144), 1.0f);
    for (const auto& size : velmoran::test::kSizeCases)
    {
        SCOPED_TRACE(::testing::Message() << size.logical << " at " << size.scale);
        const int slot = kit->createChildWindow(0, 0, size.logical, size.logical, size.scale, host, nullptr);
        EXPECT_EQ(clientSize(kit->windowHandle(slot)), std::make_pair(size.device, size.device));
        kit->destroyWindow(slot);
    }
}

// Buttons report their code (0 left, 1 right) and a press takes the focus; moves are reported
// while a button is held (1 for the left alone) or while tracking; a wheel turn is a press at the
// cursor with the direction (2 away, 3 towards) and a release with code 2, a still wheel nothing;
// keys report the virtual key and 1 down, 0 up.
TEST_F(WindowKit, InputMessagesReachTheirCallbacks)
{
    const int slot = openChild();
    kit->showWindow(slot);
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(kit->windowHandle(slot), &cursor);
    // A turn's press and release at the cursor, the press with this code.
    const auto turn = [&cursor](int code) -> Events
    {
        const std::string at = std::to_string(cursor.x) + " " + std::to_string(cursor.y);
        return {"down " + at + " " + std::to_string(code), "up " + at + " 2"};
    };
    const struct
    {
        UINT message;
        WPARAM wParam;
        std::string held; // buttons held and whether moves are tracked
        Events events;
    } cases[] = {
        {WM_LBUTTONDOWN, 0, "", {"down -3 41 0"}},
        {WM_LBUTTONUP, 0, "", {"up -3 41 0"}},
        {WM_LBUTTONDBLCLK, 0, "", {"double -3 41 0"}},
        {WM_RBUTTONDOWN, 0, "", {"down -3 41 1"}},
        {WM_RBUTTONUP, 0, "", {"up -3 41 1"}},
        {WM_MOUSEMOVE, 0, "", {}},
        {WM_MOUSEMOVE, 0, "tracked", {"move -3 41 0"}},
        {WM_MOUSEMOVE, 0, "left", {"move -3 41 1"}},
        {WM_MOUSEMOVE, 0, "right", {"move -3 41 0"}},
        {WM_MOUSEMOVE, 0, "left right", {"move -3 41 0"}},
        {WM_MOUSEMOVE, 0, "tracked left", {"move -3 41 1"}},
        {WM_MOUSEMOVE, MK_LBUTTON, "", {"move -3 41 1"}},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), "", turn(2)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), "", turn(3)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, -1), "", turn(3)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, 0), "", {}},
        {WM_KEYDOWN, VK_SPACE, "", {"keydown 0 " + std::to_string(VK_SPACE) + " 1"}},
        {WM_SYSKEYUP, VK_MENU, "", {"keyup 0 " + std::to_string(VK_MENU) + " 0"}},
    };
    for (const auto& input : cases)
    {
        SCOPED_TRACE(::testing::Message() << "message " << input.message << " " << input.held);
        gEvents.clear();
        SetFocus(host);
        const auto has = [&input](const char* word) { return input.held.find(word) != std::string::npos; };
        EXPECT_EQ(kit->setTrackMouseMoves(slot, has("tracked")), slot);
        setMouseButtons(has("left"), has("right"));
        send(slot, input.message, input.wParam, MAKELPARAM(-3, 41));
        EXPECT_EQ(gEvents, input.events);
        if (input.message == WM_LBUTTONDOWN || input.message == WM_RBUTTONDOWN)
        {
            EXPECT_EQ(GetFocus(), kit->windowHandle(slot));
        }
    }
}

// The mouse captured by another window, a cancelled mode and a lost focus each tell the editor that
// a held button's release will not come; giving up the capture to itself does not.
TEST_F(WindowKit, LosingTheMouseOrTheFocusIsReported)
{
    const int slot = openChild();
    kit->setPointerLostCallback(slot, onPointerLost);
    HWND child = kit->windowHandle(slot);
    const struct
    {
        UINT message;
        LPARAM lParam;
        Events events;
    } cases[] = {
        {WM_CAPTURECHANGED, reinterpret_cast<LPARAM>(host), {"lost"}},
        {WM_CAPTURECHANGED, 0, {"lost"}},
        {WM_CAPTURECHANGED, reinterpret_cast<LPARAM>(child), {}},
        {WM_CANCELMODE, 0, {"lost"}},
        {WM_KILLFOCUS, 0, {"lost"}},
    };
    for (const auto& input : cases)
    {
        SCOPED_TRACE(::testing::Message() << "message " << input.message);
        gEvents.clear();
        send(slot, input.message, 0, input.lParam);
        EXPECT_EQ(gEvents, input.events);
    }
}

// With a wheel callback the turn arrives once, at the cursor, with its delta: a notch is 120, a
// touchpad's small steps keep their size; a still wheel reports nothing.
TEST_F(WindowKit, WheelCallbackTakesTheDelta)
{
    const int slot = openChild();
    kit->setMouseWheelCallback(slot, record<kWheel>);
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(kit->windowHandle(slot), &cursor);
    const std::string at = std::to_string(cursor.x) + " " + std::to_string(cursor.y);
    for (const int delta : {WHEEL_DELTA, -WHEEL_DELTA, 15, -7, 360, 0})
    {
        gEvents.clear();
        send(slot, WM_MOUSEWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(-3, 41));
        EXPECT_EQ(gEvents, delta == 0 ? Events{} : Events{"wheel " + at + " " + std::to_string(delta)});
    }
}

// A key handler sees every key; the keys it leaves reach the parent window with their message.
TEST_F(WindowKit, KeysTheHandlerLeavesGoToTheParent)
{
    const int slot = openChild();
    kit->setKeyHandler(slot, onKey);
    const LONG_PTR hostProcedure =
        SetWindowLongPtrA(host, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(listeningHost));
    const auto key = [](int virtualKey, int down)
    { return "key " + std::to_string(virtualKey) + " " + std::to_string(down); };
    const auto atHost = [](UINT message, int virtualKey)
    { return "host " + std::to_string(message) + " " + std::to_string(virtualKey); };
    const struct
    {
        UINT message;
        int virtualKey;
        Events events;
    } cases[] = {
        {WM_KEYDOWN, VK_LEFT, {key(VK_LEFT, 1)}},
        {WM_KEYUP, VK_LEFT, {key(VK_LEFT, 0)}},
        {WM_KEYDOWN, VK_SPACE, {key(VK_SPACE, 1), atHost(WM_KEYDOWN, VK_SPACE)}},
        {WM_KEYUP, VK_SPACE, {key(VK_SPACE, 0), atHost(WM_KEYUP, VK_SPACE)}},
        {WM_SYSKEYDOWN, 'S', {key('S', 1), atHost(WM_SYSKEYDOWN, 'S')}},
    };
    for (const auto& input : cases)
    {
        SCOPED_TRACE(::testing::Message() << "message " << input.message << " key " << input.virtualKey);
        gEvents.clear();
        send(slot, input.message, static_cast<WPARAM>(input.virtualKey), 1);
        EXPECT_EQ(gEvents, input.events);
    }
    SetWindowLongPtrA(host, GWLP_WNDPROC, hostProcedure);
}

// A window destroyed by someone else (its parent going) tells its owner while it still exists; one
// the kit destroys itself does not.
TEST_F(WindowKit, DestroyNotifyOnlyForAWindowDestroyedElsewhere)
{
    const int slot = openChild();
    kit->setDestroyNotifyCallback(slot, onDestroyNotify);
    gEvents.clear();
    DestroyWindow(kit->windowHandle(slot));
    EXPECT_EQ(gEvents, (Events{"destroyed alive"}));
    EXPECT_EQ(kit->slot(slot).inUse, 0);

    const int second = openChild();
    kit->setDestroyNotifyCallback(second, onDestroyNotify);
    gEvents.clear();
    kit->destroyWindow(second);
    EXPECT_TRUE(gEvents.empty());
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
    EXPECT_EQ(gEvents, (Events{"keyup 0 27 0", "closequery"}));
    EXPECT_TRUE(IsWindow(child));
    EXPECT_EQ(kit->slot(slot).inUse, 1);

    gMayClose = true;
    send(slot, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(child));
    EXPECT_EQ(kit->slot(slot).inUse, 0);
    EXPECT_EQ(kit->slot(slot).window, nullptr);
}

// A window nobody paints is still validated: once painted, an idle window gets no more WM_PAINT.
// The paint callback gets the invalidated rectangle.
TEST_F(WindowKit, PaintValidatesTheWindowAndGetsTheInvalidatedRectangle)
{
    const int slot = openChild();
    HWND child = kit->windowHandle(slot);
    kit->showWindow(slot);
    UpdateWindow(host);
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

    kit->setPaintCallback(slot, onPaint);
    kit->invalidate(slot, 10, 20, 30, 40);
    UpdateWindow(child);
    EXPECT_EQ(gEvents, Events{"paint 10 20 30 40"});
}

TEST_F(WindowKit, WindowTimerTicksReachTheTimerCallback)
{
    const int slot = openChild();
    kit->setWindowTimerPeriod(10);
    kit->setTimerCallback(slot, onTimer);
    ASSERT_TRUE(velmoran::test::waitFor([] { return gEvents.size() >= 3; },
                                        [&]
                                        {
                                            kit->pumpMessages();
                                            CPlatformWindows::sleepMilliseconds(5);
                                        }));
    EXPECT_EQ(gEvents[0], "timer");
}

// The idle timer calls back until the callback declines; a pump calls it once more while one is set.
TEST_F(WindowKit, IdleCallbackRunsUntilItDeclines)
{
    gIdleCalls = 0;
    gIdleCallsLeft = 3;
    kit->setIdlePeriod(10);
    kit->setIdleCallback(onIdle);
    EXPECT_TRUE(velmoran::test::waitFor([] { return gIdleCallsLeft == 0; },
                                        []
                                        {
                                            MSG message;
                                            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
                                                DispatchMessageA(&message);
                                            CPlatformWindows::sleepMilliseconds(5);
                                        }));
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
        const int slot = openChild();
        kit->setFileDropCallback(slot, listening ? onFileDrop : nullptr);
        kit->acceptDroppedFiles(slot);
        EXPECT_NE(GetWindowLongA(kit->windowHandle(slot), GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
        HGLOBAL drop = makeDrop({"C:\\one.vlm", "C:\\two.vlm", "C:\\three.vlm"});
        send(slot, WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
        EXPECT_EQ(gEvents, listening ? Events{"drop C:\\one.vlm"} : Events{});
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

} // namespace
