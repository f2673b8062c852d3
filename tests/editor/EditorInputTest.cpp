// The editor driven as a user drives it: real mouse and keyboard messages sent to its child window
// under Wine, with a host's component handler recording every edit in its order.

#include "editor/CPlugEditorView.h"
#include "editor/EditorScreen.h"
#include "editor/EditorTexts.h"
#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXObject.h"
#include "platform/window/CPlatformWindows.h"
#include "platform/window/TestHostWindow.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editor::EditorScreen;
using velmoran::platform::CPlatformWindows;

namespace
{

// A host's handler that keeps every edit call as "begin 22", "perform 22", "end 22".
class RecordingHandler : public IComponentHandler
{
public:
    RecordingHandler() { FUNKNOWN_CTOR }
    virtual ~RecordingHandler(){FUNKNOWN_DTOR}

    tresult PLUGIN_API beginEdit(ParamID id) override
    {
        return record("begin", id);
    }
    tresult PLUGIN_API performEdit(ParamID id, ParamValue) override { return record("perform", id); }
    tresult PLUGIN_API endEdit(ParamID id) override { return record("end", id); }
    tresult PLUGIN_API restartComponent(int32) override { return kResultOk; }

    // The calls for one tag, in order, with the repeated performs folded into one "perform...".
    std::string gestureOf(ParamID id) const
    {
        std::string calls;
        const std::string suffix = " " + std::to_string(id);
        for (const std::string& call : log)
        {
            if (call.size() <= suffix.size() ||
                call.compare(call.size() - suffix.size(), suffix.size(), suffix) != 0)
                continue;
            const std::string name = call.substr(0, call.size() - suffix.size());
            if (name == "perform" && calls.size() >= 10 &&
                calls.compare(calls.size() - 10, 10, "perform...") == 0)
                continue;
            calls += (calls.empty() ? "" : " ") + (name == "perform" ? std::string("perform...") : name);
        }
        return calls;
    }

    std::vector<std::string> log;
    DECLARE_FUNKNOWN_METHODS

private:
    tresult record(const char* call, ParamID id)
    {
        log.push_back(std::string(call) + " " + std::to_string(id));
        return kResultOk;
    }
};
IMPLEMENT_FUNKNOWN_METHODS(RecordingHandler, IComponentHandler, IComponentHandler::iid)

int acceptBox(const MBXObject&)
{
    return 0;
}

class EditorInput : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        CPlatformWindows::instance(true)->setClassNames(velmoran::test::kTestToken);
        MBXManager::instance().setPresenter(acceptBox);
    }
    static void TearDownTestSuite()
    {
        MBXManager::instance().setPresenter(nullptr);
        velmoran::test::closeAllWindows();
    }

    void SetUp() override
    {
        controller = static_cast<CPlugController*>(
            static_cast<IEditController*>(CPlugController::createInstance(nullptr)));
        controller->initialize(&host);
        controller->setComponentHandler(handler);
        view = owned(static_cast<CPlugEditorView*>(controller->createView(ViewType::kEditor)));
        ASSERT_EQ(view->attached(velmoran::test::testHostWindow(), kPlatformTypeHWND), kResultOk);
        ASSERT_TRUE(view->isOpen());
        window = CPlatformWindows::instance(false)->windowHandle(view->windowSlot());
    }
    void TearDown() override
    {
        view->removed();
        view = nullptr;
        controller->terminate();
        controller->release();
    }

    EditorScreen& screen() { return *view->screen(); }
    void send(UINT message, WPARAM wParam, int x, int y)
    {
        SendMessageA(window, message, wParam, MAKELPARAM(x, y));
    }
    void click(int x, int y)
    {
        send(WM_LBUTTONDOWN, MK_LBUTTON, x, y);
        send(WM_LBUTTONUP, 0, x, y);
    }
    void clickWidget(const velmoran::editor::Widget& widget)
    {
        click(static_cast<int>(widget.bounds().x + widget.bounds().width / 2),
              static_cast<int>(widget.bounds().y + widget.bounds().height / 2));
    }
    void wheel(int x, int y, int delta)
    {
        POINT point{x, y};
        ClientToScreen(window, &point);
        SetCursorPos(point.x, point.y);
        SendMessageA(window, WM_MOUSEWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(point.x, point.y));
    }
    POINT handleOf(int band)
    {
        return {static_cast<LONG>(screen().graph().slot(band).handleX + 0.5f),
                static_cast<LONG>(screen().graph().slot(band).handleY + 0.5f)};
    }

    HostApplication host;
    IPtr<RecordingHandler> handler = owned(new RecordingHandler());
    CPlugController* controller = nullptr;
    IPtr<CPlugEditorView> view;
    HWND window = nullptr;
};

// Dragging band 6's handle writes "06 Freq" and "06 Gain" as one gesture each.
TEST_F(EditorInput, DragOfHandleIsOneGesturePerParameter)
{
    const POINT start = handleOf(5);
    send(WM_LBUTTONDOWN, MK_LBUTTON, start.x, start.y);
    for (int step = 1; step <= 6; ++step)
        send(WM_MOUSEMOVE, MK_LBUTTON, start.x + 12 * step, start.y - 9 * step);
    send(WM_LBUTTONUP, 0, start.x + 72, start.y - 54);
    EXPECT_EQ(handler->gestureOf(frequencyTag(6)), "begin perform... end");
    EXPECT_EQ(handler->gestureOf(gainTag(6)), "begin perform... end");
    EXPECT_GT(bandFrequencyHz(static_cast<float>(controller->getParamNormalized(frequencyTag(6)))), 1200.0f);
    EXPECT_GT(bandGainDb(static_cast<float>(controller->getParamNormalized(gainTag(6)))), 2.0f);
    EXPECT_TRUE(screen().bandInfoBox(5).visible());
}

// Band 3's menu from a right click: "High Pass" writes code 10; "Delete" frees the band and the next
// click and drag on an empty spot takes it again.
TEST_F(EditorInput, BandMenuSetsTypeAndDeleteFreesTheBand)
{
    controller->setParamNormalized(filterTypeTag(3), 2.0 / 20.0);
    const POINT handle = handleOf(2);
    send(WM_RBUTTONDOWN, MK_RBUTTON, handle.x, handle.y);
    send(WM_RBUTTONUP, 0, handle.x, handle.y);
    ASSERT_EQ(screen().openMenuBand(), 2);
    const auto& menu = screen().bandMenu(2);
    auto entryPoint = [&menu](int code)
    {
        const float x = menu.bounds().x + menu.bounds().width / 2.0f;
        for (float y = menu.bounds().y; y < menu.bounds().bottom(); y += 1.0f)
        {
            const int entry = menu.entryAt(x, y);
            if (entry >= 0 && menu.entries()[static_cast<size_t>(entry)].code == code)
                return POINT{static_cast<LONG>(x), static_cast<LONG>(y + 6.0f)};
        }
        return POINT{-1, -1};
    };
    const POINT highPass = entryPoint(10);
    send(WM_MOUSEMOVE, 0, highPass.x, highPass.y);
    click(highPass.x, highPass.y);
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(3)))), 10);
    EXPECT_EQ(handler->gestureOf(filterTypeTag(3)), "begin perform... end");

    send(WM_RBUTTONDOWN, MK_RBUTTON, handle.x, handleOf(2).y);
    send(WM_RBUTTONUP, 0, handle.x, handleOf(2).y);
    const POINT remove = entryPoint(0);
    click(remove.x, remove.y);
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(3)))), 0);
    EXPECT_FALSE(screen().graph().slot(2).visible);

    const int free = screen().graph().firstFreeBand();
    const auto plot = screen().graph().plotRect();
    const int x = static_cast<int>(plot.x + plot.width * 0.75f);
    const int y = static_cast<int>(plot.y + plot.height * 0.25f);
    send(WM_LBUTTONDOWN, MK_LBUTTON, x, y);
    send(WM_MOUSEMOVE, MK_LBUTTON, x + 10, y + 10);
    send(WM_LBUTTONUP, 0, x + 10, y + 10);
    EXPECT_TRUE(screen().graph().slot(free).visible);
    EXPECT_NE(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(free + 1)))), 0);
}

TEST_F(EditorInput, WheelOnBandChangesQ)
{
    const double before = controller->getParamNormalized(qTag(6));
    const POINT handle = handleOf(5);
    wheel(handle.x, handle.y, WHEEL_DELTA);
    EXPECT_GT(controller->getParamNormalized(qTag(6)), before);
    wheel(handle.x, handle.y, -WHEEL_DELTA);
    wheel(handle.x, handle.y, -WHEEL_DELTA);
    EXPECT_LT(controller->getParamNormalized(qTag(6)), before);
    EXPECT_EQ(handler->gestureOf(qTag(6)), "begin perform... end begin perform... end begin perform... end");
}

// Every switch toggles its parameter and says so on the status line.
TEST_F(EditorInput, SwitchesToggleAndReport)
{
    struct Switch
    {
        int toggle;
        ParamID tag;
    };
    const Switch switches[] = {{EditorScreen::kEffectToggle, kEqTag},
                               {EditorScreen::kSpectrumToggle, kFftTag},
                               {EditorScreen::kSourceToggle, kFftSourceTag},
                               {EditorScreen::kSlopeToggle, kFftSlopeTag}};
    const velmoran::editor::SwitchKind kinds[] = {
        velmoran::editor::SwitchKind::Effect, velmoran::editor::SwitchKind::Spectrum,
        velmoran::editor::SwitchKind::SpectrumSource, velmoran::editor::SwitchKind::SpectrumSlope};
    for (int index = 0; index < 4; ++index)
    {
        const Switch& sw = switches[index];
        const double before = controller->getParamNormalized(sw.tag);
        clickWidget(screen().toggle(sw.toggle));
        const double after = controller->getParamNormalized(sw.tag);
        EXPECT_NE(before >= 0.5, after >= 0.5) << "tag " << sw.tag;
        EXPECT_EQ(screen().statusText(),
                  velmoran::editor::switchStatusText(kinds[index], static_cast<float>(after)));
        EXPECT_EQ(handler->gestureOf(sw.tag), "begin perform... end");
    }
    clickWidget(screen().imageButton(EditorScreen::kPolarityButton));
    EXPECT_EQ(controller->getParamNormalized(kPolarityTag), 1.0);
    EXPECT_EQ(screen().statusText(), "Polarity : Inverted");
}

// Automation from the host moves the handle and updates the band's info box.
TEST_F(EditorInput, HostAutomationMovesHandleAndInfoBox)
{
    controller->setParamNormalized(frequencyTag(6), (250.0 - 20.0) / 19980.0);
    EXPECT_NEAR(screen().graph().slot(5).handleX, screen().graph().xForFrequency(250.0f), 0.5f);
    EXPECT_TRUE(screen().bandInfoBox(5).visible());
    EXPECT_EQ(screen().bandInfoBox(5).lines()[0].text, "Freq 250.0 Hz");
}

TEST_F(EditorInput, DeleteKeyRemovesSelectedBand)
{
    const POINT handle = handleOf(5);
    click(handle.x, handle.y);
    send(WM_KEYDOWN, VK_DELETE, 0, 0);
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(6)))), 0);
}

} // namespace
