#include "editor/mbx/MBXWindow.h"

#include "editor/mbx/MBXComposer.h"
#include "editor/mbx/MBXLayout.h"
#include "editor/mbx/MBXManager.h"
#include "platform/window/CPlatformWindows.h"

#include <shellapi.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace Steinberg::Vst::Velmoran
{

namespace
{

using velmoran::platform::CPlatformWindows;

// How long the modal loop sleeps when no message is waiting, in ms; it wakes at once for input.
constexpr DWORD kIdleWaitMilliseconds = 50;

// One box on screen: its window in the kit, the composed picture the window shows, and what the
// pointer and keys do to it.
class MBXWindow
{
public:
    MBXWindow(const MBXObject& box, CPlatformWindows& kit, float scale)
        : mBox(box), mKit(kit), mLayout(layoutBox(box)), mScale(scale),
          mWidth(static_cast<int>(static_cast<float>(mLayout.width) * scale + 0.5f)),
          mHeight(static_cast<int>(static_cast<float>(mLayout.height) * scale + 0.5f))
    {
    }
    ~MBXWindow() { close(); }

    MBXWindow(const MBXWindow&) = delete;
    MBXWindow& operator=(const MBXWindow&) = delete;

    // Opens the window and runs the modal loop; gives the chosen button.
    int run()
    {
        if (!open())
            return mBox.defaultButton();
        while (mChosen < 0 && windowAlive())
        {
            mKit.pumpMessages();
            if (mChosen < 0 && windowAlive())
                MsgWaitForMultipleObjects(0, nullptr, FALSE, kIdleWaitMilliseconds, QS_ALLINPUT);
        }
        close();
        return mChosen >= 0 ? mChosen : mBox.cancelButton();
    }

private:
    static MBXWindow& of(void* user) { return *static_cast<MBXWindow*>(user); }

    static void onPaint(int left, int top, int width, int height, int slot, void* user)
    {
        MBXWindow& window = of(user);
        window.mKit.blitBitmap(slot, window.mBitmap, window.mWidth, window.mHeight, left, top, width, height,
                               left, top);
    }

    static void onMouseDown(int x, int y, int button, int, void* user)
    {
        if (button == velmoran::platform::kButtonLeft)
            of(user).press(of(user).boxX(x), of(user).boxY(y));
    }

    static void onMouseUp(int x, int y, int button, int, void* user)
    {
        if (button == velmoran::platform::kButtonLeft)
            of(user).release(of(user).boxX(x), of(user).boxY(y));
    }

    static void onMouseMove(int x, int y, int, int, void* user)
    {
        of(user).hover(of(user).boxX(x), of(user).boxY(y));
    }

    // Window pixels to the box's own.
    int boxX(int x) const { return static_cast<int>(static_cast<float>(x) / mScale); }
    int boxY(int y) const { return static_cast<int>(static_cast<float>(y) / mScale); }

    static void onKeyDown(int, int virtualKey, int, int, void* user)
    {
        MBXWindow& window = of(user);
        if (virtualKey == VK_RETURN)
            window.mChosen = window.mBox.defaultButton();
        else if (virtualKey == VK_ESCAPE)
            window.mChosen = window.mBox.cancelButton();
    }

    // Closing the window answers like Escape; the loop then destroys it.
    static bool onCloseQuery(int, void* user)
    {
        MBXWindow& window = of(user);
        window.mChosen = window.mBox.cancelButton();
        return false;
    }

    bool open()
    {
        mSlot = mKit.createSplashWindow(mLayout.width, mLayout.height, mScale, this);
        if (mSlot < 0)
            return false;
        mWindow = mKit.windowHandle(mSlot);
        if (mWindow == nullptr || !createBitmap())
        {
            mKit.destroyWindow(mSlot);
            mSlot = -1;
            return false;
        }
        registerCallbacks();
        render();
        mKit.setWindowTitle(mSlot, mBox.title().c_str());
        ownByActiveWindow();
        mKit.showWindow(mSlot);
        SetForegroundWindow(mWindow);
        mKit.giveFocus(mSlot);
        return true;
    }

    void registerCallbacks()
    {
        mKit.setPaintCallback(mSlot, onPaint);
        mKit.setMouseDownCallback(mSlot, onMouseDown);
        mKit.setMouseUpCallback(mSlot, onMouseUp);
        mKit.setMouseMoveCallback(mSlot, onMouseMove);
        mKit.setKeyDownCallback(mSlot, onKeyDown);
        mKit.setCloseQueryCallback(mSlot, onCloseQuery);
        mKit.setTrackMouseMoves(mSlot, true);
    }

    // Owned by the host's window, the box stays above it and goes when it is minimised.
    void ownByActiveWindow()
    {
        HWND active = GetActiveWindow();
        HWND owner = active != nullptr ? GetAncestor(active, GA_ROOT) : nullptr;
        if (owner != nullptr && owner != mWindow)
            SetWindowLongPtrA(mWindow, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
    }

    bool createBitmap()
    {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = mWidth;
        info.bmiHeader.biHeight = -mHeight; // top row first, as the canvas
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        mBitmap = CreateDIBSection(mKit.slot(mSlot).windowDc, &info, DIB_RGB_COLORS, &mBits, nullptr, 0);
        return mBitmap != nullptr && mBits != nullptr;
    }

    // Composes the box for the pointer's state into the window's bitmap, stretched to the editors'
    // scale, and asks for a repaint.
    void render()
    {
        const velmoran::platform::CanvasBuffer canvas = composeBox(mBox, mLayout, mPointer);
        auto* bits = static_cast<std::uint8_t*>(mBits);
        for (int y = 0; y < mHeight; ++y)
            for (int x = 0; x < mWidth; ++x)
            {
                std::uint8_t* bgra = bits + (static_cast<std::size_t>(y) * mWidth + x) * 4;
                sampleCanvas(canvas, (static_cast<float>(x) + 0.5f) / mScale - 0.5f,
                             (static_cast<float>(y) + 0.5f) / mScale - 0.5f, bgra);
            }
        mKit.invalidate(mSlot, 0, 0, mWidth, mHeight);
    }

    // The canvas between its pixels (linear in both directions), as a window's BGRA pixel.
    void sampleCanvas(const velmoran::platform::CanvasBuffer& canvas, float x, float y,
                      std::uint8_t* bgra) const
    {
        const float clampedX = std::clamp(x, 0.0f, static_cast<float>(mLayout.width - 1));
        const float clampedY = std::clamp(y, 0.0f, static_cast<float>(mLayout.height - 1));
        const int left = static_cast<int>(clampedX);
        const int top = static_cast<int>(clampedY);
        const int right = std::min(left + 1, mLayout.width - 1);
        const int bottom = std::min(top + 1, mLayout.height - 1);
        const float fx = clampedX - static_cast<float>(left);
        const float fy = clampedY - static_cast<float>(top);
        for (int channel = 0; channel < 3; ++channel)
        {
            const float upper =
                canvas.pixel(left, top)[channel] * (1.0f - fx) + canvas.pixel(right, top)[channel] * fx;
            const float lower =
                canvas.pixel(left, bottom)[channel] * (1.0f - fx) + canvas.pixel(right, bottom)[channel] * fx;
            bgra[2 - channel] = static_cast<std::uint8_t>(upper * (1.0f - fy) + lower * fy + 0.5f);
        }
        bgra[3] = 255;
    }

    void press(int x, int y)
    {
        mLinkPressed = linkAt(mLayout, x, y);
        mHeldButton = buttonAt(mLayout, x, y);
        if (mHeldButton >= 0)
            mKit.captureMouse(mSlot);
        hover(x, y);
    }

    // A button counts when the press and the release are both on it.
    void release(int x, int y)
    {
        if (mHeldButton >= 0)
        {
            mKit.releaseCapture();
            if (buttonAt(mLayout, x, y) == mHeldButton)
                mChosen = mHeldButton;
        }
        if (mLinkPressed && linkAt(mLayout, x, y))
            openLink();
        mHeldButton = -1;
        mLinkPressed = false;
        hover(x, y);
    }

    void hover(int x, int y)
    {
        const int button = buttonAt(mLayout, x, y);
        const bool onLink = linkAt(mLayout, x, y);
        // A real pointer move brings the class cursor back, so the hand is asked for on every move
        // over the link. The normal cursor goes back before each later ask, or the hand itself would
        // be saved; and it is the normal one, not just the saved one, that comes back off the link,
        // since a thread the pointer never visited had no cursor to save.
        if (onLink && mPointer.linkHovered)
            mKit.restoreNormalCursor();
        if (onLink)
            mKit.showHandCursor(true);
        else if (mPointer.linkHovered)
            mKit.restoreNormalCursor();
        // A held button looks pressed only while the pointer is on it.
        setPointer({button, button >= 0 && button == mHeldButton ? button : -1, onLink});
    }

    void setPointer(const MBXPointerState& pointer)
    {
        const bool changed = pointer.hoveredButton != mPointer.hoveredButton ||
                             pointer.pressedButton != mPointer.pressedButton ||
                             pointer.linkHovered != mPointer.linkHovered;
        mPointer = pointer;
        if (changed)
            render();
    }

    void openLink() const
    {
        const std::string& target = mLayout.linkTarget;
        const std::string address = target.rfind("http", 0) == 0 ? target : "https://" + target;
        ShellExecuteA(nullptr, "open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    }

    bool windowAlive() const
    {
        return CPlatformWindows::instance(false) == &mKit && mSlot >= 0 && mKit.slot(mSlot).inUse != 0 &&
               mKit.windowHandle(mSlot) == mWindow;
    }

    void close()
    {
        if (windowAlive())
        {
            if (mPointer.linkHovered)
                mKit.restoreNormalCursor();
            if (mHeldButton >= 0)
                mKit.releaseCapture();
            mKit.destroyWindow(mSlot);
        }
        mPointer = {};
        mHeldButton = -1;
        mSlot = -1;
        if (mBitmap != nullptr)
            DeleteObject(mBitmap);
        mBitmap = nullptr;
        mBits = nullptr;
    }

    const MBXObject& mBox;
    CPlatformWindows& mKit;
    MBXBoxLayout mLayout;
    // Window pixels per box pixel, and the window's size in its own pixels.
    float mScale;
    int mWidth;
    int mHeight;
    MBXPointerState mPointer;
    int mHeldButton = -1;
    bool mLinkPressed = false;
    int mSlot = -1;
    HWND mWindow = nullptr;
    HBITMAP mBitmap = nullptr;
    void* mBits = nullptr;
    int mChosen = -1;
};

} // namespace

int presentInWindow(const MBXObject& box)
{
    CPlatformWindows* kit = CPlatformWindows::instance(false);
    if (kit == nullptr)
        return box.defaultButton();
    MBXWindow window(box, *kit, MBXManager::instance().boxScale());
    return window.run();
}

void useBoxWindows(bool use)
{
    MBXManager::instance().setWindowPresenter(use ? presentInWindow : nullptr);
}

} // namespace Steinberg::Vst::Velmoran
