// The host's display scale for the editor view (IPlugViewContentScaleSupport), set before or after
// attached: the view's size, the host frame's resize request and the window under Wine.

#include "editor/CPlugEditorView.h"
#include "editor/mbx/MBXManager.h"
#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"
#include "plugin/PlugController.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CPlatformWindows;

namespace
{

// A host's frame that grants every resize request and remembers the sizes asked for.
class RecordingFrame : public IPlugFrame
{
public:
    tresult PLUGIN_API resizeView(IPlugView* view, ViewRect* newSize) override
    {
        requests.push_back({newSize->getWidth(), newSize->getHeight()});
        return view->onSize(newSize);
    }
    tresult PLUGIN_API queryInterface(const TUID, void** object) override
    {
        *object = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

    std::vector<std::pair<int32, int32>> requests;
};

struct ScaleCase
{
    float scale;
    bool beforeAttached;
};

class EditorScale : public ::testing::TestWithParam<ScaleCase>
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
    }
    void TearDown() override
    {
        controller->terminate();
        controller->release();
    }

    HostApplication host;
    CPlugController* controller = nullptr;
    RecordingFrame frame;
};

// The view offers the interface; at each scale its size, the host's resize request and its window
// are the design size times the scale, and mouse positions map back onto the design.
TEST_P(EditorScale, SizeRequestAndWindowFollowTheScale)
{
    const ScaleCase& scaling = GetParam();
    IPtr<CPlugEditorView> view =
        owned(static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor)));
    ASSERT_TRUE(view);
    FUnknownPtr<IPlugViewContentScaleSupport> scaleSupport(static_cast<IPlugView*>(view.get()));
    ASSERT_TRUE(scaleSupport) << "the view offers IPlugViewContentScaleSupport";
    view->setFrame(&frame);
    if (scaling.beforeAttached)
    {
        ASSERT_EQ(scaleSupport->setContentScaleFactor(scaling.scale), kResultOk);
    }
    ASSERT_EQ(view->attached(velmoran::test::testHostWindow(), kPlatformTypeHWND), kResultOk);
    ASSERT_TRUE(view->isOpen());
    if (!scaling.beforeAttached)
    {
        ASSERT_EQ(scaleSupport->setContentScaleFactor(scaling.scale), kResultOk);
    }

    const int32 width = static_cast<int32>(998.0f * scaling.scale + 0.5f);
    const int32 height = static_cast<int32>(634.0f * scaling.scale + 0.5f);
    ViewRect size;
    ASSERT_EQ(view->getSize(&size), kResultOk);
    EXPECT_EQ(size.getWidth(), width);
    EXPECT_EQ(size.getHeight(), height);
    ASSERT_FALSE(frame.requests.empty());
    EXPECT_EQ(frame.requests.back(), std::make_pair(width, height));
    RECT client{};
    GetClientRect(CPlatformWindows::instance(false)->windowHandle(view->windowSlot()), &client);
    EXPECT_EQ(client.right, width);
    EXPECT_EQ(client.bottom, height);
    EXPECT_NEAR(view->scaleX(), 1.0f / scaling.scale, 0.002f);
    EXPECT_NEAR(view->scaleY(), 1.0f / scaling.scale, 0.002f);
    view->paint();
    EXPECT_EQ(scaleSupport->setContentScaleFactor(0.0f), kInvalidArgument);
    view->removed();
    view->setFrame(nullptr);
}

INSTANTIATE_TEST_SUITE_P(BeforeAndAfterAttached, EditorScale,
                         ::testing::Values(ScaleCase{1.0f, true}, ScaleCase{1.5f, true},
                                           ScaleCase{2.0f, true}, ScaleCase{1.0f, false},
                                           ScaleCase{1.5f, false}, ScaleCase{2.0f, false}));

} // namespace
