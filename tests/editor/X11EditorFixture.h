#pragma once

// The Linux editor tests' host: one controller as a host makes it, its view embedded by XEmbed into
// a host's window on the virtual display with the host's run loop as its frame, and every message
// box noted and shown in a box window as the module shows it.

// GoogleTest comes before the X11 headers, whose macros (None, Bool) would rename its types.
#include <gtest/gtest.h>

#include "X11TestWindow.h"

#include "editor/CPlugEditorView.h"
#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXObject.h"
#include "editor/mbx/MBXWindow.h"
#include "platform/window/WindowKit.h"
#include "plugin/PlugController.h"
#include "sdk/hosting/ComponentHandler.h"
#include "tools/editor_host/PollRunLoop.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <string>
#include <vector>

namespace velmoran::test
{

using Steinberg::Vst::Velmoran::CPlugEditorView;
using Steinberg::Vst::Velmoran::MBXManager;

// The boxes shown, as "title|text".
inline std::vector<std::string>& shownBoxes()
{
    static std::vector<std::string> boxes;
    return boxes;
}

inline int recordBox(const Steinberg::Vst::Velmoran::MBXObject& box)
{
    shownBoxes().push_back(box.title() + "|" + box.text());
    return Steinberg::Vst::Velmoran::presentInWindow(box);
}

// One controller as a host makes it, its edits recorded by the host's component handler.
struct X11Instance
{
    X11Instance()
    {
        controller->initialize(&host);
        controller->setComponentHandler(handler);
    }
    ~X11Instance()
    {
        controller->terminate();
        controller->release();
    }
    X11Instance(const X11Instance&) = delete;
    X11Instance& operator=(const X11Instance&) = delete;

    Steinberg::IPtr<CPlugEditorView> createView(Steinberg::ViewRect* rect = nullptr)
    {
        return Steinberg::owned(new CPlugEditorView(controller, rect));
    }

    Steinberg::Vst::HostApplication host;
    Steinberg::IPtr<Steinberg::Vst::ComponentHandler> handler =
        Steinberg::owned(new Steinberg::Vst::ComponentHandler());
    Steinberg::Vst::Velmoran::CPlugController* const controller =
        static_cast<Steinberg::Vst::Velmoran::CPlugController*>(static_cast<Steinberg::Vst::IEditController*>(
            Steinberg::Vst::Velmoran::CPlugController::createInstance(nullptr)));
};

class X11EditorFixture : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        keepGlDriverLoaded();
        platform::CPlatformWindows::instance(true);
        Steinberg::Vst::Velmoran::useBoxWindows(true);
        MBXManager::instance().setPresenter(recordBox);
    }
    static void TearDownTestSuite()
    {
        MBXManager::instance().setPresenter(nullptr);
        Steinberg::Vst::Velmoran::useBoxWindows(false);
        platform::CPlatformWindows::release();
    }
    void SetUp() override
    {
        ASSERT_TRUE(host.valid()) << "no X display";
        shownBoxes().clear();
    }

    static platform::CPlatformWindows& kit() { return *platform::CPlatformWindows::instance(false); }
    static Window editorWindow(const CPlugEditorView& view) { return kit().windowHandle(view.windowSlot()); }

    // Attaches the view to the host's window (or another one) with the run loop as its frame.
    Steinberg::tresult open(CPlugEditorView& view, const X11TestWindow* window = nullptr)
    {
        view.setFrame(runLoop);
        return view.attached((window != nullptr ? *window : host).parent(),
                             Steinberg::kPlatformTypeX11EmbedWindowID);
    }
    static void close(CPlugEditorView& view)
    {
        view.removed();
        view.setFrame(nullptr);
    }
    // Runs the host's loop until the editor's window shows a drawn screen, more than its black
    // background.
    bool drawn(const CPlugEditorView& view, const X11TestWindow* window = nullptr)
    {
        const X11TestWindow& parent = window != nullptr ? *window : host;
        return runLoop->runUntil([&] { return parent.distinctColours(editorWindow(view)) > 16; });
    }

    X11TestWindow host;
    Steinberg::IPtr<editorhost::PollRunLoop> runLoop = Steinberg::owned(new editorhost::PollRunLoop);
    X11Instance instance;
    Steinberg::IPtr<CPlugEditorView> view = instance.createView();
};

} // namespace velmoran::test
