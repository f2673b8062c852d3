#pragma once

// A stand-in for the plug-in's editor view, built like it on the window kit and the OpenGL
// renderer: a child window of the kit inside the host's window, drawn blue with a red square at
// its top left on every paint, recording the IPlugView calls and the input the kit reports.

#include "platform/render/CGLRenderer.h"
#include "platform/window/CPlatformWindows.h"

#include "pluginterfaces/gui/iplugview.h"

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

namespace velmoran::test
{

class StandInView : public Steinberg::IPlugView
{
public:
    static constexpr int kWidth = 240;
    static constexpr int kHeight = 160;
    static constexpr int kSquareSize = 40;

    // One input call of the kit: mouse (x, y, button code) or key (0, virtual key, down).
    struct Input
    {
        std::string kind;
        int a;
        int b;
        int code;

        bool operator==(const Input& other) const
        {
            return kind == other.kind && a == other.a && b == other.b && code == other.code;
        }
    };

    virtual ~StandInView() = default;

    std::vector<std::string> calls; // IPlugView calls, in order
    std::vector<Input> inputs;
    Steinberg::IPlugFrame* frame = nullptr;

    using tresult = Steinberg::tresult;

    tresult PLUGIN_API isPlatformTypeSupported(Steinberg::FIDString type) override
    {
        return std::strcmp(type, Steinberg::kPlatformTypeHWND) == 0 ? Steinberg::kResultTrue
                                                                    : Steinberg::kResultFalse;
    }

    tresult PLUGIN_API attached(void* parent, Steinberg::FIDString /*type*/) override
    {
        calls.push_back("attached");
        platform::CPlatformWindows* kit = platform::CPlatformWindows::instance(false);
        mSlot = kit->createChildWindow(0, 0, mSize.getWidth(), mSize.getHeight(), 1.0f,
                                       static_cast<HWND>(parent), this);
        if (mSlot < 0)
        {
            return Steinberg::kResultFalse;
        }
        kit->setPaintCallback(mSlot, paint);
        kit->setMouseDownCallback(mSlot, record<kDown>);
        kit->setMouseUpCallback(mSlot, record<kUp>);
        kit->setMouseMoveCallback(mSlot, record<kMove>);
        kit->setDoubleClickCallback(mSlot, record<kDouble>);
        kit->setKeyDownCallback(mSlot, record<kKeyDown>);
        kit->setKeyUpCallback(mSlot, record<kKeyUp>);
        kit->showWindow(mSlot);
        const int result = mRenderer.initialise(kit->windowHandle(mSlot), mSize.getWidth(), mSize.getHeight(),
                                                mSize.getWidth(), mSize.getHeight());
        return result == platform::CGLRenderer::kOk ? Steinberg::kResultOk : Steinberg::kResultFalse;
    }

    tresult PLUGIN_API removed() override
    {
        calls.push_back("removed");
        mRenderer.teardown();
        platform::CPlatformWindows::instance(false)->destroyWindow(mSlot);
        mSlot = -1;
        return Steinberg::kResultOk;
    }

    tresult PLUGIN_API onWheel(float /*distance*/) override { return Steinberg::kResultFalse; }
    tresult PLUGIN_API onKeyDown(Steinberg::char16, Steinberg::int16, Steinberg::int16) override
    {
        return Steinberg::kResultFalse;
    }
    tresult PLUGIN_API onKeyUp(Steinberg::char16, Steinberg::int16, Steinberg::int16) override
    {
        return Steinberg::kResultFalse;
    }

    tresult PLUGIN_API getSize(Steinberg::ViewRect* size) override
    {
        *size = mSize;
        return Steinberg::kResultOk;
    }

    tresult PLUGIN_API onSize(Steinberg::ViewRect* newSize) override
    {
        calls.push_back("onSize");
        mSize = *newSize;
        return Steinberg::kResultOk;
    }

    tresult PLUGIN_API onFocus(Steinberg::TBool /*state*/) override { return Steinberg::kResultOk; }

    tresult PLUGIN_API setFrame(Steinberg::IPlugFrame* newFrame) override
    {
        calls.push_back(newFrame != nullptr ? "setFrame" : "setFrame(null)");
        frame = newFrame;
        return Steinberg::kResultOk;
    }

    tresult PLUGIN_API canResize() override { return Steinberg::kResultFalse; }
    tresult PLUGIN_API checkSizeConstraint(Steinberg::ViewRect* /*rect*/) override
    {
        return Steinberg::kResultOk;
    }

    tresult PLUGIN_API queryInterface(const Steinberg::TUID /*iid*/, void** object) override
    {
        *object = nullptr;
        return Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return ++mReferences; }
    Steinberg::uint32 PLUGIN_API release() override
    {
        const Steinberg::uint32 left = --mReferences;
        if (left == 0)
        {
            delete this;
        }
        return left;
    }

private:
    enum Kind
    {
        kDown,
        kUp,
        kMove,
        kDouble,
        kKeyDown,
        kKeyUp
    };

    template <Kind kind> static void record(int a, int b, int code, int /*slot*/, void* user)
    {
        static const char* const kNames[] = {"down", "up", "move", "double", "keydown", "keyup"};
        static_cast<StandInView*>(user)->inputs.push_back({kNames[kind], a, b, code});
    }

    static void paint(int, int, int, int, int /*slot*/, void* user)
    {
        platform::CGLRenderer& renderer = static_cast<StandInView*>(user)->mRenderer;
        renderer.makeCurrent();
        renderer.beginFrame();
        renderer.setClearColour(0, 0, 255);
        renderer.clear();
        renderer.setColour(255, 0, 0);
        renderer.fillRect(0, 0, kSquareSize, kSquareSize);
        renderer.present();
    }

    Steinberg::ViewRect mSize{0, 0, kWidth, kHeight};
    platform::CGLRenderer mRenderer;
    int mSlot = -1;
    std::atomic<Steinberg::uint32> mReferences{1};
};

} // namespace velmoran::test
