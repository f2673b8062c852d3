// The editor driven as a user drives it: real mouse and keyboard messages sent to its child window
// under Wine, with a host's component handler logging every edit in its order. What each input does
// to the screen is EditorScreenTest's; here the window's messages reach it.

#include "EditorControllerFixture.h"

#include "editor/CPlugEditorView.h"
#include "editor/EditorScreen.h"
#include "plugin/PlugParameters.h"
#include "sdk/hosting/ComponentHandler.h"
#include "support/EditGestures.h"

#include <gtest/gtest.h>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editor::EditorScreen;
using velmoran::editor::ResponseGraph;
using velmoran::test::gestureOf;

namespace
{

class EditorInput : public velmoran::test::EditorControllerFixture<velmoran::test::acceptBox>
{
protected:
    void SetUp() override
    {
        EditorControllerFixture::SetUp();
        controller->setComponentHandler(handler);
        view = createView();
        ASSERT_EQ(attach(view), kResultOk);
        ASSERT_TRUE(view->isOpen());
        window = windowOf(*view);
    }
    void TearDown() override
    {
        view->removed();
        view = nullptr;
        EditorControllerFixture::TearDown();
    }

    EditorScreen& screen() { return *view->screen(); }
    void send(UINT message, WPARAM wParam, int x, int y)
    {
        SendMessageA(window, message, wParam, MAKELPARAM(x, y));
    }
    void rightClick(POINT at)
    {
        send(WM_RBUTTONDOWN, MK_RBUTTON, at.x, at.y);
        send(WM_RBUTTONUP, 0, at.x, at.y);
    }
    void click(POINT at)
    {
        send(WM_LBUTTONDOWN, MK_LBUTTON, at.x, at.y);
        send(WM_LBUTTONUP, 0, at.x, at.y);
    }
    static POINT centreOf(const velmoran::editor::Rect& bounds)
    {
        return {static_cast<LONG>(bounds.x + bounds.width / 2.0f),
                static_cast<LONG>(bounds.y + bounds.height / 2.0f)};
    }
    void drag(POINT from, int dx, int dy)
    {
        send(WM_LBUTTONDOWN, MK_LBUTTON, from.x, from.y);
        for (int step = 1; step <= 4; ++step)
            send(WM_MOUSEMOVE, MK_LBUTTON, from.x + dx * step / 4, from.y + dy * step / 4);
        send(WM_LBUTTONUP, 0, from.x + dx, from.y + dy);
    }
    void key(int virtualKey)
    {
        SendMessageA(window, WM_KEYDOWN, static_cast<WPARAM>(virtualKey), 1);
        SendMessageA(window, WM_KEYUP, static_cast<WPARAM>(virtualKey), 1 | (LPARAM(3) << 30));
    }
    // The editor reads the modifier keys from the thread's key state, as a user's key press sets it.
    static void holdControl(bool held)
    {
        BYTE keys[256];
        GetKeyboardState(keys);
        keys[VK_CONTROL] = held ? 0x80 : 0;
        SetKeyboardState(keys);
    }
    POINT handleOf(int slot)
    {
        return {static_cast<LONG>(screen().graph().slot(slot).handleX + 0.5f),
                static_cast<LONG>(screen().graph().slot(slot).handleY + 0.5f)};
    }
    // A point inside line `line` of band's info box.
    POINT infoLine(int band, int line)
    {
        const auto& box = screen().bandInfoBox(band);
        const float x = box.bounds().x + box.bounds().width / 2.0f;
        for (float y = box.bounds().y; y < box.bounds().bottom(); y += 1.0f)
            if (box.lineAt(x, y) == line && box.lineAt(x, y + 4.0f) == line)
                return {static_cast<LONG>(x), static_cast<LONG>(y + 2.0f)};
        return {-1, -1};
    }
    int bandsInUse()
    {
        int count = 0;
        for (int band = 0; band < kBandCount; ++band)
            count += screen().band(band).inUse() ? 1 : 0;
        return count;
    }
    double value(ParamID tag) { return controller->getParamNormalized(tag); }

    IPtr<ComponentHandler> handler = owned(new ComponentHandler());
    IPtr<CPlugEditorView> view;
    HWND window = nullptr;
};

// Band 3's menu from a right click: "High Pass" writes code 10; "Delete" frees the band and the next
// click and drag on an empty spot takes it again.
TEST_F(EditorInput, BandMenuSetsTypeAndDeleteFreesTheBand)
{
    controller->setParamNormalized(filterTypeTag(3), 2.0 / 20.0);
    const POINT handle = handleOf(2);
    rightClick(handle);
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
    click(highPass);
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(3)))), 10);
    EXPECT_EQ(gestureOf(handler->editLog(), filterTypeTag(3)), "begin perform... end");

    rightClick({handle.x, handleOf(2).y});
    click(entryPoint(0));
    EXPECT_EQ(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(3)))), 0);
    EXPECT_FALSE(screen().graph().slot(2).visible);

    const int free = screen().graph().firstFreeBand();
    const auto plot = screen().graph().plotRect();
    drag({static_cast<LONG>(plot.x + plot.width * 0.75f), static_cast<LONG>(plot.y + plot.height * 0.25f)},
         10, 10);
    EXPECT_TRUE(screen().graph().slot(free).visible);
    EXPECT_NE(filterTypeCode(static_cast<float>(controller->getParamNormalized(filterTypeTag(free + 1)))), 0);
}

// Automation from the host moves the handle and updates the band's info box.
TEST_F(EditorInput, HostAutomationMovesHandleAndInfoBox)
{
    controller->setParamNormalized(frequencyTag(6), (250.0 - 20.0) / 19980.0);
    EXPECT_NEAR(screen().graph().slot(5).handleX, screen().graph().xForFrequency(250.0f), 0.5f);
    EXPECT_TRUE(screen().bandInfoBox(5).visible());
    EXPECT_EQ(screen().bandInfoBox(5).lines()[0].text, "Freq 250.0 Hz");
}

// A band is switched on and off by a Control-click on its handle and by its info box's state line,
// each one edit of "Enable"; no click there adds a band or moves this one.
TEST_F(EditorInput, ControlClickAndTheInfoBoxSwitchABandOnAndOff)
{
    controller->setParamNormalized(enableTag(4), 0.0);
    const int inUse = bandsInUse();
    holdControl(true);
    click(handleOf(3));
    holdControl(false);
    EXPECT_EQ(value(enableTag(4)), 1.0);
    EXPECT_EQ(gestureOf(handler->editLog(), enableTag(4)), "begin perform... end");
    EXPECT_EQ(gestureOf(handler->editLog(), frequencyTag(4)), "") << "a Control-click drags nothing";

    ASSERT_TRUE(screen().bandInfoBox(3).visible());
    click(infoLine(3, velmoran::editor::BandInfoLines::kStateLine));
    EXPECT_EQ(value(enableTag(4)), 0.0);
    EXPECT_EQ(screen().bandInfoBox(3).lines()[velmoran::editor::BandInfoLines::kStateLine].text, "Off");
    click(infoLine(3, 0));
    EXPECT_EQ(value(enableTag(4)), 0.0);
    EXPECT_EQ(bandsInUse(), inUse) << "a click on the info box never reaches the graph";
}

struct GainMarker
{
    int slot;
    ParamID tag;
    const char* readout;
};

class GainMarkerDrag : public EditorInput, public ::testing::WithParamInterface<GainMarker>
{
};

// A gain marker dragged up raises its gain as one gesture and shows it; a double-click sets 0 dB.
TEST_P(GainMarkerDrag, SetsItsGainAndNothingElse)
{
    const int inUse = bandsInUse();
    drag(handleOf(GetParam().slot), 0, -40);
    const float db = ioGainDb(static_cast<float>(value(GetParam().tag)));
    EXPECT_GT(db, 3.0f);
    EXPECT_LE(db, 6.0f);
    EXPECT_EQ(gestureOf(handler->editLog(), GetParam().tag), "begin perform... end");
    EXPECT_EQ(bandsInUse(), inUse) << "dragging a marker adds no band";
    EXPECT_EQ(screen().outputGainBox().lines().at(0).text.rfind(GetParam().readout, 0), 0u);
    EXPECT_NEAR(screen().graph().slot(GetParam().slot).handleY, screen().graph().yForGain(db), 0.01f);

    const POINT marker = handleOf(GetParam().slot);
    click(marker);
    send(WM_LBUTTONDBLCLK, MK_LBUTTON, marker.x, marker.y);
    send(WM_LBUTTONUP, 0, marker.x, marker.y);
    EXPECT_DOUBLE_EQ(value(GetParam().tag), 0.5);
}

INSTANTIATE_TEST_SUITE_P(
    BothGains, GainMarkerDrag,
    ::testing::Values(GainMarker{ResponseGraph::kOutputGainMarker, kOutputGainTag, "Output Gain +"},
                      GainMarker{ResponseGraph::kInputGainMarker, kInputGainTag, "Input Gain +"}));

// The band drawn as selected is the one the keys act on: a new band takes the selection (and shows
// its info box), Delete removes only it and leaves nothing selected, and the lock set to Off drops
// the selection it shows.
TEST_F(EditorInput, KeysActOnTheBandShownSelected)
{
    const POINT band4 = handleOf(3);
    click(band4);
    EXPECT_EQ(screen().graph().selectedBand(), 3);
    const int added = screen().graph().firstFreeBand();
    const auto plot = screen().graph().plotRect();
    drag({static_cast<LONG>(plot.x + plot.width * 0.8f), static_cast<LONG>(plot.y + 40.0f)}, 5, 5);
    EXPECT_EQ(screen().graph().selectedBand(), added);
    EXPECT_TRUE(screen().bandInfoBox(added).visible()) << "a band dragged shows its info box";
    key(VK_DELETE);
    EXPECT_FALSE(screen().band(added).inUse());
    EXPECT_EQ(screen().graph().selectedBand(), -1);
    key(VK_DELETE);
    EXPECT_TRUE(screen().band(3).inUse()) << "Delete acts on no band that is not shown selected";

    click(band4);
    for (int clicks = 0; clicks < 4 && screen().graph().lockMode() != 0; ++clicks)
        click(centreOf(screen().lockSelector().bounds()));
    EXPECT_EQ(screen().graph().selectedBand(), screen().selectedBand());
}

// The solo button shows "Solo" in the band's info box and, switched off, the band's state again.
TEST_F(EditorInput, InfoBoxFollowsTheSoloButton)
{
    click(handleOf(3));
    const POINT solo = centreOf(screen().imageButton(EditorScreen::kSoloButton).bounds());
    const auto stateLine = [this]
    { return screen().bandInfoBox(3).lines().at(velmoran::editor::BandInfoLines::kStateLine).text; };
    click(solo);
    EXPECT_EQ(stateLine(), "Solo");
    click(solo);
    EXPECT_TRUE(screen().bandInfoBox(3).visible());
    EXPECT_EQ(stateLine(), "On");
}

} // namespace
