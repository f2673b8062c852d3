// An open editor whose processor sends no spectrum frames while "FFT" is on reminds it, through
// the controller, that an editor is open: a lost "EditorOpen" does not leave the display blank.
// The view runs under Wine with a stand-in processor at the controller's other end.

#include "editor/CPlugEditorView.h"
#include "editor/mbx/MBXManager.h"
#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CPlatformWindows;

namespace
{

// The processor's end of the connection: it sends nothing and keeps the "open" of every
// "EditorOpen" it is told.
class SilentProcessor : public IConnectionPoint
{
public:
    tresult PLUGIN_API connect(IConnectionPoint*) override { return kResultOk; }
    tresult PLUGIN_API disconnect(IConnectionPoint*) override { return kResultOk; }
    tresult PLUGIN_API notify(IMessage* message) override
    {
        int64 open = -1;
        if (message != nullptr && message->getMessageID() != nullptr &&
            std::strcmp(message->getMessageID(), "EditorOpen") == 0 && message->getAttributes() != nullptr &&
            message->getAttributes()->getInt("open", open) == kResultOk)
            editorOpen.push_back(open);
        return kResultOk;
    }
    tresult PLUGIN_API queryInterface(const TUID, void** object) override
    {
        *object = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

    std::vector<int64> editorOpen;
};

class EditorSpectrumReminder : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        CPlatformWindows::instance(true)->setClassNames(velmoran::test::kTestToken);
    }
    static void TearDownTestSuite() { velmoran::test::closeAllWindows(); }

    void SetUp() override
    {
        controller = static_cast<CPlugController*>(
            static_cast<IEditController*>(CPlugController::createInstance(nullptr)));
        controller->initialize(&host);
        controller->connect(&processor);
    }
    void TearDown() override
    {
        controller->disconnect(&processor);
        controller->terminate();
        controller->release();
    }

    HostApplication host;
    SilentProcessor processor;
    CPlugController* controller = nullptr;
};

// Spectrum off: the silence is expected and nothing is sent. Spectrum on: about a second of paints
// without a frame sends "EditorOpen" with open = 1 again.
TEST_F(EditorSpectrumReminder, SilentProcessorIsRemindedWhileTheSpectrumIsOn)
{
    IPtr<CPlugEditorView> view =
        owned(static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor)));
    ASSERT_EQ(view->attached(velmoran::test::testHostWindow(), kPlatformTypeHWND), kResultOk);
    ASSERT_FALSE(processor.editorOpen.empty());
    EXPECT_EQ(processor.editorOpen.back(), 1) << "the opening itself is told";
    processor.editorOpen.clear();

    controller->setParamNormalized(kFftTag, 0.0);
    for (int paint = 0; paint < 60; ++paint)
        view->paint();
    EXPECT_TRUE(processor.editorOpen.empty());

    controller->setParamNormalized(kFftTag, 1.0);
    for (int paint = 0; paint < 60; ++paint)
        view->paint();
    EXPECT_EQ(processor.editorOpen, (std::vector<int64>{1, 1}));
    view->removed();
}

} // namespace
