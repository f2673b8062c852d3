#pragma once

// A controller made and initialised as a host makes it, for the suites that open the view on the
// Windows window kit under Wine. The suite names how its message boxes are answered.

#include "editor/CPlugEditorView.h"
#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXObject.h"
#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"
#include "plugin/PlugController.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <optional>

namespace velmoran::test
{

// A box answered at once with its first button, as a user who clicks it away.
inline int acceptBox(const Steinberg::Vst::Velmoran::MBXObject&)
{
    return 0;
}

// One controller as a host makes it, terminated and released with this object.
struct HostedController
{
    HostedController() { controller->initialize(&host); }
    ~HostedController()
    {
        controller->terminate();
        controller->release();
    }
    HostedController(const HostedController&) = delete;
    HostedController& operator=(const HostedController&) = delete;

    // The view the host's createView("editor") gives.
    Steinberg::IPtr<Steinberg::Vst::Velmoran::CPlugEditorView> createView() const
    {
        return Steinberg::owned(static_cast<Steinberg::Vst::Velmoran::CPlugEditorView*>(
            controller->createView(Steinberg::Vst::ViewType::kEditor)));
    }

    Steinberg::Vst::HostApplication host;
    Steinberg::Vst::Velmoran::CPlugController* const controller =
        static_cast<Steinberg::Vst::Velmoran::CPlugController*>(static_cast<Steinberg::Vst::IEditController*>(
            Steinberg::Vst::Velmoran::CPlugController::createInstance(nullptr)));
};

template <int (*Presenter)(const Steinberg::Vst::Velmoran::MBXObject&), typename Base = ::testing::Test>
class EditorControllerFixture : public Base
{
protected:
    static void SetUpTestSuite()
    {
        platform::CPlatformWindows::instance(true)->setClassNames(kTestToken);
        Steinberg::Vst::Velmoran::MBXManager::instance().setPresenter(Presenter);
    }
    static void TearDownTestSuite()
    {
        Steinberg::Vst::Velmoran::MBXManager::instance().setPresenter(nullptr);
        closeAllWindows();
    }
    void SetUp() override
    {
        mHosted.emplace();
        controller = mHosted->controller;
    }
    void TearDown() override
    {
        controller = nullptr;
        mHosted.reset();
    }

    Steinberg::IPtr<Steinberg::Vst::Velmoran::CPlugEditorView> createView() const
    {
        return mHosted->createView();
    }
    // Embeds the view in the stand-in for the host's frame.
    static Steinberg::tresult attach(Steinberg::Vst::Velmoran::CPlugEditorView* view)
    {
        return view->attached(testHostWindow(), Steinberg::kPlatformTypeHWND);
    }
    static HWND windowOf(const Steinberg::Vst::Velmoran::CPlugEditorView& view)
    {
        return platform::CPlatformWindows::instance(false)->windowHandle(view.windowSlot());
    }

    Steinberg::Vst::Velmoran::CPlugController* controller = nullptr;

private:
    std::optional<HostedController> mHosted;
};

} // namespace velmoran::test
