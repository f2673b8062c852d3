#pragma once

// A controller made and initialised as a host makes it, for the suites that open the view on the
// Windows window kit under Wine. The suite names how its message boxes are answered.

#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXObject.h"
#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"
#include "plugin/PlugController.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

namespace velmoran::test
{

// A box answered at once with its first button, as a user who clicks it away.
inline int acceptBox(const Steinberg::Vst::Velmoran::MBXObject&)
{
    return 0;
}

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
        controller = static_cast<Steinberg::Vst::Velmoran::CPlugController*>(
            static_cast<Steinberg::Vst::IEditController*>(
                Steinberg::Vst::Velmoran::CPlugController::createInstance(nullptr)));
        controller->initialize(&host);
    }
    void TearDown() override
    {
        controller->terminate();
        controller->release();
    }

    Steinberg::Vst::HostApplication host;
    Steinberg::Vst::Velmoran::CPlugController* controller = nullptr;
};

} // namespace velmoran::test
