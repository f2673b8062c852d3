// The editor's gestures in the editor test host, through the window messages Windows sends when a
// host, a dialogue or the user takes the mouse away mid-gesture.

#include "EditorHostFixture.h"

#include <functional>
#include <ostream>
#include <string>

namespace velmoran::test
{
namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;

// Band 6's handle in the default program (1 kHz, 0 dB) at the editor's default size.
constexpr int kHandleX = 585;
constexpr int kHandleY = 288;
constexpr ParamID kFrequency06 = 22;
constexpr ParamID kGain06 = 32;

int performedSince(const std::vector<EditCall>& log)
{
    int count = 0;
    for (const EditCall& call : log)
        count += call.kind == EditCall::kPerform ? 1 : 0;
    return count;
}

struct Loss
{
    const char* name;
    std::function<void(editorhost::EditorSession&)> happen;
};

void PrintTo(const Loss& loss, std::ostream* out)
{
    *out << loss.name;
}

class EditorGestureHost : public OpenEditorFixture, public ::testing::WithParamInterface<Loss>
{
protected:
    void SetUp() override
    {
        OpenEditorFixture::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        mFrequency = session().plugin().controller->getParamNormalized(kFrequency06);
        mGain = session().plugin().controller->getParamNormalized(kGain06);
    }
    void TearDown() override
    {
        if (IsSkipped())
            return;
        // Band 6 back where the next case expects its handle.
        session().setParameter(kFrequency06, mFrequency);
        session().setParameter(kGain06, mGain);
        run(0.1);
    }

private:
    ParamValue mFrequency = 0.0;
    ParamValue mGain = 0.0;
};

// A drag whose release never reaches the editor: the host is told the gesture ended at the loss,
// and the handle no longer follows the mouse.
TEST_P(EditorGestureHost, EndsTheDragWhenTheMouseIsTakenAway)
{
    session().handler().clearEditLog();
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
    run(0.1);
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

} // namespace
} // namespace velmoran::test
