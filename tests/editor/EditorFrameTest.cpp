// The editor test host's frame, input and screenshots, driven with a stand-in view that is built
// like the editor on the window kit and the OpenGL renderer.

#include "StandInView.h"

#include "tools/editor_host/EditorFrame.h"
#include "tools/editor_host/EditorInput.h"
#include "tools/editor_host/MessagePump.h"
#include "tools/editor_host/WindowCapture.h"

#include "platform/render/ErrorBox.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>

namespace velmoran::test
{
namespace
{

using editorhost::EditorFrame;
using editorhost::EditorInput;
using editorhost::Screenshot;
using Input = StandInView::Input;

// Names the stand-in's window classes; not the plug-in's.
constexpr const char* kStandInToken = "3C5D7E9F1A2B";

void printBox(const char* caption, const char* text)
{
    std::printf("%s: %s\n", caption, text);
}

// Handles window messages for a while, so that the view paints.
void settle()
{
    editorhost::pumpMessagesUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(100));
}

SIZE clientSizeOf(HWND window)
{
    RECT client{};
    GetClientRect(window, &client);
    return {client.right - client.left, client.bottom - client.top};
}

// Red, green and blue of one pixel.
std::vector<int> colourAt(const Screenshot& screenshot, int x, int y)
{
    const std::size_t at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(screenshot.width) + x) * 4;
    return {screenshot.rgba[at], screenshot.rgba[at + 1], screenshot.rgba[at + 2]};
}

class EditorFrameTest : public ::testing::Test
{
public:
    static void SetUpTestSuite()
    {
        platform::setErrorBoxFunction(printBox);
        platform::initWindowKit(kStandInToken);
    }

    static void TearDownTestSuite() { platform::exitWindowKit(); }

protected:
    void SetUp() override
    {
        view = Steinberg::owned(new StandInView());
        frame = std::make_unique<EditorFrame>("stand-in", StandInView::kWidth, StandInView::kHeight);
        std::string error;
        ASSERT_TRUE(frame->attach(view, error)) << error;
        settle();
    }

    Steinberg::IPtr<StandInView> view;
    std::unique_ptr<EditorFrame> frame;
};

TEST_F(EditorFrameTest, GivesTheViewItsFrameAndHoldsTheViewsWindow)
{
    EXPECT_EQ(view->calls, (std::vector<std::string>{"setFrame", "attached"}));
    ASSERT_NE(frame->viewWindow(), nullptr);
    EXPECT_EQ(GetParent(frame->viewWindow()), frame->window());
    const SIZE client = clientSizeOf(frame->window());
    EXPECT_EQ(client.cx, StandInView::kWidth);
    EXPECT_EQ(client.cy, StandInView::kHeight);
}

TEST_F(EditorFrameTest, CapturesTheOpenGlFrameTheViewPresented)
{
    const Screenshot screenshot = editorhost::captureWindow(frame->viewWindow());
    ASSERT_EQ(screenshot.width, StandInView::kWidth);
    ASSERT_EQ(screenshot.height, StandInView::kHeight);
    EXPECT_EQ(colourAt(screenshot, 2, 2), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(colourAt(screenshot, StandInView::kSquareSize - 2, StandInView::kSquareSize - 2),
              (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(colourAt(screenshot, StandInView::kSquareSize + 2, 2), (std::vector<int>{0, 0, 255}));
    EXPECT_EQ(colourAt(screenshot, StandInView::kWidth - 2, StandInView::kHeight - 2),
              (std::vector<int>{0, 0, 255}));
}

// Each gesture reaches the view's window as the messages Windows sends, and the kit reports it:
// moves with the left button held carry code 1, the wheel is reported where the cursor is.
TEST_F(EditorFrameTest, SendsInputAsTheWindowMessagesOfEachGesture)
{
    const struct
    {
        const char* name;
        std::function<void(EditorInput&)> gesture;
        std::vector<Input> expected;
    } cases[] = {
        {"click",
         [](EditorInput& input) { input.leftClick(10, 20); },
         {{"down", 10, 20, 0}, {"up", 10, 20, 0}}},
        {"right click",
         [](EditorInput& input)
         {
             input.rightDown(30, 40);
             input.rightUp(31, 41);
         },
         {{"down", 30, 40, 1}, {"up", 31, 41, 1}}},
        {"move without a button", [](EditorInput& input) { input.moveTo(50, 60); }, {}},
        {"drag",
         [](EditorInput& input) { input.drag(10, 10, 50, 30, 2); },
         {{"down", 10, 10, 0}, {"move", 30, 20, 1}, {"move", 50, 30, 1}, {"up", 50, 30, 0}}},
        {"double-click",
         [](EditorInput& input) { input.doubleClick(7, 8); },
         {{"down", 7, 8, 0}, {"up", 7, 8, 0}, {"double", 7, 8, 0}, {"up", 7, 8, 0}}},
        {"wheel away",
         [](EditorInput& input) { input.wheel(60, 70, 1); },
         {{"down", 60, 70, 2}, {"up", 60, 70, 2}}},
        {"wheel towards",
         [](EditorInput& input) { input.wheel(61, 71, -2); },
         {{"down", 61, 71, 3}, {"up", 61, 71, 2}, {"down", 61, 71, 3}, {"up", 61, 71, 2}}},
        {"key",
         [](EditorInput& input)
         {
             input.keyDown(VK_SPACE);
             input.keyUp(VK_SPACE);
         },
         {{"keydown", 0, VK_SPACE, 1}, {"keyup", 0, VK_SPACE, 0}}},
    };
    EditorInput input(frame->viewWindow());
    for (const auto& gesture : cases)
    {
        SCOPED_TRACE(gesture.name);
        view->inputs.clear();
        gesture.gesture(input);
        EXPECT_EQ(view->inputs, gesture.expected);
    }
}

TEST_F(EditorFrameTest, ReopensTheViewWithRemovedThenAttached)
{
    std::string error;
    ASSERT_TRUE(frame->reopen(error)) << error;
    settle();
    EXPECT_EQ(view->calls, (std::vector<std::string>{"setFrame", "attached", "removed", "attached"}));
    ASSERT_NE(frame->viewWindow(), nullptr);
    const Screenshot screenshot = editorhost::captureWindow(frame->viewWindow());
    EXPECT_EQ(colourAt(screenshot, 2, 2), (std::vector<int>{255, 0, 0}));
}

TEST_F(EditorFrameTest, DetachingRemovesTheViewAndTakesTheFrameBack)
{
    frame->detach();
    EXPECT_EQ(view->calls, (std::vector<std::string>{"setFrame", "attached", "removed", "setFrame(null)"}));
    EXPECT_EQ(frame->viewWindow(), nullptr);
    EXPECT_EQ(frame->view(), nullptr);
}

TEST_F(EditorFrameTest, AResizeRequestResizesTheFrameAndTellsTheView)
{
    ASSERT_NE(view->frame, nullptr);
    Steinberg::ViewRect larger(0, 0, 300, 200);
    EXPECT_EQ(view->frame->resizeView(view, &larger), Steinberg::kResultOk);
    const SIZE client = clientSizeOf(frame->window());
    EXPECT_EQ(client.cx, 300);
    EXPECT_EQ(client.cy, 200);
    EXPECT_EQ(view->calls.back(), "onSize");
}

} // namespace
} // namespace velmoran::test
