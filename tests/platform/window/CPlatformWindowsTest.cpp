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

template <typename... Numbers> void note(std::string event, int slot, void* user, Numbers... numbers)
{
    ((event += " " + std::to_string(numbers)), ...);
    gEvents.push_back(slot == gChildSlot && user == &gUser ? event : event + " from elsewhere");
}

// Mouse and key callbacks share one shape: three numbers, the slot and the user pointer.
template <const char* kind> void record(int a, int b, int c, int slot, void* user)
{
    note(kind, slot, user, a, b, c);
}
constexpr char kDown[] = "down", kUp[] = "up", kMove[] = "move", kDouble[] = "double", kKeyDown[] = "keydown",
               kKeyUp[] = "keyup", kWheel[] = "wheel";

void onPaint(int left, int top, int width, int height, int slot, void* user)
{
    note("paint", slot, user, left, top, width, height);
}

// Takes the left arrow only.
bool onKey(int key, int down, int slot, void* user)
{
    note("key", slot, user, key, down);
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

bool onTimer(void*)
{
    return true;
}

bool onIdle()
{
    return true;
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
// while a button is held (1 for the left alone) or while tracking. A wheel turn is a press at the
// cursor with the direction (2 away, 3 towards) and a release with code 2; with a wheel callback it
// arrives once with its delta (a notch is 120, a touchpad's small steps keep their size); a still
// wheel reports nothing. Keys report the virtual key and 1 down, 0 up; a key handler sees every key
// and the keys it leaves reach the parent window with their message. The mouse captured by another
// window, a cancelled mode and a lost focus each tell the editor that a held button's release will
// not come; giving up the capture to itself does not.
TEST_F(WindowKit, InputMessagesReachTheirCallbacks)
{
    const int slot = openChild();
    kit->setPointerLostCallback(slot, onPointerLost);
    kit->showWindow(slot);
    HWND child = kit->windowHandle(slot);
    const LONG_PTR hostProcedure =
        SetWindowLongPtrA(host, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(listeningHost));
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(child, &cursor);
    const std::string at = std::to_string(cursor.x) + " " + std::to_string(cursor.y);
    // A turn's press and release at the cursor, the press with this code.
    const auto turn = [&at](int code) -> Events {
        return {"down " + at + " " + std::to_string(code), "up " + at + " 2"};
    };
    const auto wheel = [&at](int delta) -> Events { return {"wheel " + at + " " + std::to_string(delta)}; };
    const auto key = [](int virtualKey, int down)
    { return "key " + std::to_string(virtualKey) + " " + std::to_string(down); };
    const auto atHost = [](UINT message, int virtualKey)
    { return "host " + std::to_string(message) + " " + std::to_string(virtualKey); };
    const struct
    {
        UINT message;
        WPARAM wParam;
        std::string state; // buttons held, moves tracked, a wheel callback or a key handler set
        Events events;
        LPARAM lParam = MAKELPARAM(-3, 41);
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
        {WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), "wheel", wheel(WHEEL_DELTA)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), "wheel", wheel(-WHEEL_DELTA)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, 15), "wheel", wheel(15)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, -7), "wheel", wheel(-7)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, 360), "wheel", wheel(360)},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, 0), "wheel", {}},
        {WM_KEYDOWN, VK_SPACE, "", {"keydown 0 " + std::to_string(VK_SPACE) + " 1"}},
        {WM_SYSKEYUP, VK_MENU, "", {"keyup 0 " + std::to_string(VK_MENU) + " 0"}},
        {WM_KEYDOWN, VK_LEFT, "handler", {key(VK_LEFT, 1)}},
        {WM_KEYUP, VK_LEFT, "handler", {key(VK_LEFT, 0)}},
        {WM_KEYDOWN, VK_SPACE, "handler", {key(VK_SPACE, 1), atHost(WM_KEYDOWN, VK_SPACE)}},
        {WM_KEYUP, VK_SPACE, "handler", {key(VK_SPACE, 0), atHost(WM_KEYUP, VK_SPACE)}},
        {WM_SYSKEYDOWN, 'S', "handler", {key('S', 1), atHost(WM_SYSKEYDOWN, 'S')}},
        {WM_CAPTURECHANGED, 0, "", {"lost"}, reinterpret_cast<LPARAM>(host)},
        {WM_CAPTURECHANGED, 0, "", {"lost"}, 0},
        {WM_CAPTURECHANGED, 0, "", {}, reinterpret_cast<LPARAM>(child)},
        {WM_CANCELMODE, 0, "", {"lost"}, 0},
        {WM_KILLFOCUS, 0, "", {"lost"}, 0},
    };
    for (const auto& input : cases)
    {
        SCOPED_TRACE(::testing::Message()
                     << "message " << input.message << " " << input.wParam << " " << input.state);
        SetFocus(host);
        gEvents.clear();
        const auto has = [&input](const char* word) { return input.state.find(word) != std::string::npos; };
        EXPECT_EQ(kit->setTrackMouseMoves(slot, has("tracked")), slot);
        kit->setMouseWheelCallback(slot, has("wheel") ? record<kWheel> : nullptr);
        kit->setKeyHandler(slot, has("handler") ? onKey : nullptr);
        setMouseButtons(has("left"), has("right"));
        send(slot, input.message, input.wParam, input.lParam);
        EXPECT_EQ(gEvents, input.events);
        if (input.message == WM_LBUTTONDOWN || input.message == WM_RBUTTONDOWN)
        {
            EXPECT_EQ(GetFocus(), child);
        }
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
    // A memory context's own bitmap is black and white, all the test needs.
    HDC canvas = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(canvas, 8, 8);
    SelectObject(canvas, bitmap);
    const RECT whole{0, 0, 8, 8};

    FillRect(canvas, &whole, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    send(slot, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas), 0);
    EXPECT_EQ(GetPixel(canvas, 4, 4), RGB(0, 0, 0));

    FillRect(canvas, &whole, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    EXPECT_EQ(send(slot, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas), 0), 1);
    EXPECT_EQ(GetPixel(canvas, 4, 4), RGB(255, 255, 255));

    DeleteDC(canvas);
    DeleteObject(bitmap);
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

    gMayClose = true;
    send(slot, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(child));
    EXPECT_EQ(kit->slot(slot).inUse, 0);
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

// The editor takes dropped files without a callback for them: a drop is still finished (its memory
// freed).
TEST_F(WindowKit, DropsAreFinished)
{
    const int slot = openChild();
    kit->acceptDroppedFiles(slot);
    EXPECT_NE(GetWindowLongA(kit->windowHandle(slot), GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
    HGLOBAL drop = makeDrop({"C:\\one.vlm", "C:\\two.vlm"});
    send(slot, WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
    EXPECT_EQ(GlobalSize(drop), 0u);
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

    kit->destroyWindow(7);
    EXPECT_FALSE(IsWindow(windows[7]));
    EXPECT_EQ(kit->createChildWindow(0, 0, 4, 4, 1.0f, host, nullptr), 7);
    windows[7] = kit->windowHandle(7);

    kit->teardown();
    for (HWND window : windows)
        EXPECT_FALSE(IsWindow(window));
    for (int i = 0; i < CPlatformWindows::kSlotCount; ++i)
        EXPECT_EQ(kit->slot(i).inUse, 0);
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
