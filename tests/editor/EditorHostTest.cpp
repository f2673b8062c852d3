// The editor test host against the built module, started as a DAW starts it (the module's path is
// the program's first argument): the editor in the host's frame showing what it draws, opened again,
// and its gestures through the window messages Windows sends when a host, a dialogue or the user takes
// the mouse away mid-gesture.

#include "support/EditGestures.h"
#include "support/ModulePath.h"
#include "support/WaitFor.h"
#include "tools/editor_host/EditorSession.h"
#include "tools/editor_host/FrameWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmoran::test
{
namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;
using editorhost::Screenshot;

// One session for a whole test suite: the built module started as a DAW starts it, processing
// active, and the editor opened in the host's frame. The suite's tests share it, in their order, and
// each fails, with the reason, when the editor did not open.
class EditorHostFixture : public ::testing::Test
{
public:
    static void SetUpTestSuite()
    {
        sProblem.clear();
        sSession = editorhost::EditorSession::start(modulePath(), sProblem);
        if (sSession)
            sSession->openEditor(sProblem);
    }
    static void TearDownTestSuite() { sSession.reset(); }

protected:
    void SetUp() override
    {
        ASSERT_NE(sSession, nullptr) << sProblem;
        ASSERT_EQ(sProblem, "") << "the editor did not open";
        ASSERT_NE(session().editorWindow(), nullptr) << "the view made no window inside the frame";
    }

    static editorhost::EditorSession& session() { return *sSession; }

    // Runs the session's message loop and audio until done() holds, failing the test when a block
    // fails or done() never comes.
    template <typename Done> static void runUntil(Done done)
    {
        std::string error;
        bool played = true;
        const bool came =
            waitFor([&] { return !played || done(); }, [&] { played = sSession->run(0.02, error); });
        ASSERT_TRUE(played) << error;
        EXPECT_TRUE(came) << "it never came";
    }
    // Runs them until the processor has taken the given number of blocks more.
    static void runBlocks(std::int64_t blocks)
    {
        const std::int64_t until = sSession->processedBlocks() + blocks;
        runUntil([until] { return sSession->processedBlocks() >= until; });
    }

private:
    static inline std::unique_ptr<editorhost::EditorSession> sSession;
    static inline std::string sProblem;
};

// Band 6's handle in the default program (1 kHz, 0 dB) at the editor's default size.
constexpr int kHandleX = 585;
constexpr int kHandleY = 288;
constexpr ParamID kFrequency06 = 22;
constexpr ParamID kGain06 = 32;

// Whether a screenshot shows band 6's handle, the right way up: its ring in the band's orange 10
// pixels above and below the handle's point.
bool showsBand6Handle(const Screenshot& screenshot)
{
    for (const int y : {kHandleY - 10, kHandleY + 10})
    {
        const std::uint8_t* pixel =
            &screenshot.rgba[(static_cast<std::size_t>(y) * screenshot.width + kHandleX) * 4];
        if (!(pixel[0] > pixel[1] + 30 && pixel[1] > pixel[2] + 30))
            return false;
    }
    return true;
}

using EditorView = EditorHostFixture;

// Inside the host's frame the editor shows what it draws, band 6's handle the right way up, at the
// editor's size.
TEST_F(EditorView, OpensInsideTheFrameAndShowsWhatItDraws)
{
    EXPECT_EQ(GetParent(session().editorWindow()), session().frameWindow());
    Screenshot screenshot;
    runUntil(
        [&screenshot]
        {
            screenshot = session().screenshot();
            return showsBand6Handle(screenshot);
        });
    EXPECT_EQ(screenshot.width, 998);
    EXPECT_EQ(screenshot.height, 634);
}

// Removed from the frame and attached again, the editor shows what it drew before.
TEST_F(EditorView, OpensAgainAfterItWasRemoved)
{
    std::string error;
    ASSERT_TRUE(session().reopenEditor(error)) << error;
    EXPECT_NE(session().editorWindow(), nullptr);
    runUntil([] { return showsBand6Handle(session().screenshot()); });
}

int performedSince(const std::vector<EditCall>& log)
{
    return static_cast<int>(std::count_if(
        log.begin(), log.end(), [](const EditCall& call) { return call.kind == EditCall::kPerform; }));
}

struct Loss
{
    const char* name;
    std::function<void(editorhost::EditorSession&)> happen;
};

// Each case starts with band 6 where the default program has it and puts it back afterwards.
class Band6InPlace : public EditorHostFixture
{
protected:
    void SetUp() override
    {
        EditorHostFixture::SetUp();
        if (HasFatalFailure())
            return;
        mInPlace = true;
        mFrequency = session().plugin().controller->getParamNormalized(kFrequency06);
        mGain = session().plugin().controller->getParamNormalized(kGain06);
        session().handler().clearEditLog();
    }
    void TearDown() override
    {
        if (!mInPlace)
            return;
        session().setParameter(kFrequency06, mFrequency);
        session().setParameter(kGain06, mGain);
        runBlocks(5);
    }

private:
    bool mInPlace = false;
    ParamValue mFrequency = 0.0;
    ParamValue mGain = 0.0;
};

class EditorGestureHost : public Band6InPlace, public ::testing::WithParamInterface<Loss>
{
};

// A drag whose release never reaches the editor: the host is told the gesture ended at the loss,
// and the handle no longer follows the mouse.
TEST_P(EditorGestureHost, EndsTheDragWhenTheMouseIsTakenAway)
{
    session().input().leftDown(kHandleX, kHandleY);
    session().input().moveTo(kHandleX + 10, kHandleY - 20);
    ASSERT_GT(performedSince(session().handler().editLog()), 0) << "the drag did not start";
    ASSERT_NE(session().handler().openEdits(), 0);
    GetParam().happen(session());
    EXPECT_EQ(session().handler().openEdits(), 0) << "a beginEdit was left without its endEdit";
    session().handler().clearEditLog();
    session().input().moveTo(kHandleX + 40, kHandleY - 60);
    EXPECT_EQ(performedSince(session().handler().editLog()), 0) << "the handle still follows the mouse";
    session().input().leftUp(kHandleX + 40, kHandleY - 60);
    runBlocks(5);
}

INSTANTIATE_TEST_SUITE_P(EveryWayTheReleaseIsLost, EditorGestureHost,
                         ::testing::Values(Loss{"CaptureTakenByTheHost",
                                                [](editorhost::EditorSession& session)
                                                { session.input().captureTakenBy(session.frameWindow()); }},
                                           Loss{"ModeCancelled", [](editorhost::EditorSession& session)
                                                { session.input().cancelMode(); }},
                                           Loss{"FocusTakenByTheHost", [](editorhost::EditorSession& session)
                                                { session.input().focusTakenBy(session.frameWindow()); }},
                                           Loss{"MoveWithoutTheButton",
                                                [](editorhost::EditorSession& session)
                                                {
                                                    session.input().leftReleasedElsewhere();
                                                    session.input().moveTo(kHandleX + 20, kHandleY - 30);
                                                }},
                                           Loss{"EditorClosed",
                                                [](editorhost::EditorSession& session)
                                                {
                                                    std::string error;
                                                    EXPECT_TRUE(session.reopenEditor(error)) << error;
                                                }}),
                         [](const ::testing::TestParamInfo<Loss>& info)
                         { return std::string(info.param.name); });

using EditorGesturesInHost = Band6InPlace;

// The wheel turned over the handle while it is dragged: the Q changes as a gesture of its own and
// the drag goes on to the release.
TEST_F(EditorGesturesInHost, WheelDuringADragLeavesTheDragGoing)
{
    constexpr ParamID kQ06 = 42;
    session().input().leftDown(kHandleX, kHandleY);
    session().input().moveTo(kHandleX + 10, kHandleY);
    session().input().wheel(kHandleX + 10, kHandleY, 1);
    session().input().moveTo(kHandleX + 40, kHandleY);
    session().input().leftUp(kHandleX + 40, kHandleY);
    const std::vector<EditCall> log = session().handler().editLog();
    EXPECT_EQ(gestureOf(log, kFrequency06), "begin perform... end");
    EXPECT_EQ(gestureOf(log, kQ06), "begin perform... end");
    const auto endOf = [&log](ParamID tag) {
        return std::find(log.begin(), log.end(), EditCall{EditCall::kEnd, tag, 0.0}) - log.begin();
    };
    EXPECT_GT(endOf(kFrequency06), endOf(kQ06)) << "the drag ends at the release, after the wheel's edit";
}

// A double-click on an empty spot (left of 20 Hz, +12 dB) adds one band where the first click put
// it; the double-click resets nothing and adds no second band.
TEST_F(EditorGesturesInHost, DoubleClickOnAnEmptySpotAddsOneBand)
{
    constexpr ParamID kFirstTypeTag = 2;
    constexpr ParamID kFirstGainTag = 27;
    constexpr int kBands = 10;
    session().input().doubleClick(110, 181);
    std::vector<ParamID> addedTypes;
    for (const EditCall& call : session().handler().editLog())
        if (call.kind == EditCall::kPerform && call.tag >= kFirstTypeTag &&
            call.tag < kFirstTypeTag + kBands && call.value > 0.0)
            addedTypes.push_back(call.tag);
    ASSERT_EQ(addedTypes.size(), 1u) << "one band added";
    const ParamID gain = kFirstGainTag + (addedTypes[0] - kFirstTypeTag);
    EXPECT_NEAR(session().plugin().controller->getParamNormalized(gain), (12.0 + 18.0) / 36.0, 0.03)
        << "the band keeps the gain where the pointer was";
    session().setParameter(addedTypes[0], 0.0);
}

// A right press on band 6's handle opens its menu beside it; moving down to "Low Pass" with the
// button held and letting go there chooses it, as in the host's own menus.
TEST_F(EditorGesturesInHost, RightPressMoveReleaseChoosesTheMenuEntry)
{
    constexpr ParamID kType06 = 7;
    constexpr ParamValue kLowPass = 9.0 / 20.0;
    const ParamValue typeBefore = session().plugin().controller->getParamNormalized(kType06);
    session().input().rightDown(kHandleX, kHandleY);
    session().input().moveTo(kHandleX + 75, kHandleY + 203);
    session().input().rightUp(kHandleX + 75, kHandleY + 203);
    EXPECT_NEAR(session().plugin().controller->getParamNormalized(kType06), kLowPass, 1e-6);
    session().setParameter(kType06, typeBefore);
}

// A touchpad's four small turns of 30 over band 6 move its Q as far as one notch of 120 would.
TEST_F(EditorGesturesInHost, SmallWheelDeltasAddUpToOneNotch)
{
    constexpr ParamID kQ06 = 42;
    constexpr double kQPerNotch = 0.025;
    const ParamValue qBefore = session().plugin().controller->getParamNormalized(kQ06);
    for (int turn = 0; turn < 4; ++turn)
        session().input().wheelDelta(kHandleX, kHandleY, WHEEL_DELTA / 4);
    EXPECT_NEAR(session().plugin().controller->getParamNormalized(kQ06) - qBefore, kQPerNotch, 1e-4);
    session().setParameter(kQ06, qBefore);
}

// Once the editor has the focus, the keys it does not use still reach the host's window (the space
// bar keeps the transport); the arrows move the selected band and stay with the editor. Keys the
// host passes through IPlugView are answered the same way, and none acts without the focus.
TEST_F(EditorGesturesInHost, KeysTheEditorDoesNotUseReachTheHost)
{
    constexpr int16 kHostSpace = 7;
    constexpr int16 kHostLeft = 11;
    constexpr int16 kHostRight = 13;
    const auto frequency = [this] { return session().plugin().controller->getParamNormalized(kFrequency06); };
    session().input().leftClick(kHandleX, kHandleY);
    ASSERT_EQ(GetFocus(), session().editorWindow()) << "a click gives the editor the focus";
    editorhost::forgetKeysPressedOnFrames();
    session().input().keyDown(VK_SPACE);
    session().input().keyUp(VK_SPACE);
    EXPECT_EQ(editorhost::keysPressedOnFrames(), std::vector<int>{VK_SPACE});

    const ParamValue before = frequency();
    session().input().keyDown(VK_LEFT);
    session().input().keyUp(VK_LEFT);
    EXPECT_EQ(editorhost::keysPressedOnFrames(), std::vector<int>{VK_SPACE}) << "the editor keeps its keys";
    EXPECT_LT(frequency(), before);

    IPlugView& view = *session().view();
    EXPECT_EQ(view.onKeyDown(' ', kHostSpace, 0), kResultFalse);
    EXPECT_EQ(view.onKeyUp(' ', kHostSpace, 0), kResultFalse);
    EXPECT_EQ(view.onKeyDown(0, kHostRight, 0), kResultTrue);
    EXPECT_EQ(view.onKeyUp(0, kHostRight, 0), kResultTrue);
    EXPECT_NEAR(frequency(), before, 1e-4);

    session().input().focusTakenBy(session().frameWindow());
    EXPECT_EQ(view.onKeyDown(0, kHostLeft, 0), kResultFalse);
    session().input().keyDown(VK_DELETE);
    session().input().keyUp(VK_DELETE);
    EXPECT_NEAR(frequency(), before, 1e-4) << "without the focus the arrows do nothing";
    EXPECT_EQ(editorhost::keysPressedOnFrames(), (std::vector<int>{VK_SPACE, VK_DELETE}));
    EXPECT_GT(session().plugin().controller->getParamNormalized(7), 0.0) << "band 6 is still there";
}

} // namespace
} // namespace velmoran::test
