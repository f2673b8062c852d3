// Runs with Mesa told to offer only OpenGL 3.0 and GLSL 1.30, like a driver too old for the
// editor's GLSL 1.50 programs.
#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

#include <string>

using velmoran::platform::CGLRenderer;
using velmoran::test::boxStartsWith;

namespace
{

TEST(OldDriver, EveryStageReportsAndInitialiseGivesTwo)
{
    const velmoran::test::BoxRecorder recorder;
    CGLRenderer first;
    ASSERT_EQ(first.initialise(velmoran::test::openChildWindow(64, 64), 64, 64, 64, 64),
              CGLRenderer::kShaderFailure);
    const auto& boxes = velmoran::test::recordedBoxes();
    // Ten shaders fail to compile and five programs to link, in build order 03, 02, 01, 04, 05.
    ASSERT_EQ(boxes.size(), 15u) << ::testing::PrintToString(boxes);
    EXPECT_TRUE(boxStartsWith(boxes[0], "GFX-VXSHDR-03 failed to compile")) << boxes[0];
    EXPECT_TRUE(boxStartsWith(boxes[2], "GFX-UNSHDR-03 failed to link"));
    EXPECT_TRUE(boxStartsWith(boxes[3], "GFX-VXSHDR-02 failed to compile"));
    EXPECT_TRUE(boxStartsWith(boxes[14], "GFX-UNSHDR-05 failed to link"));
    EXPECT_NE(boxes[0].find("1.50"), std::string::npos) << "the driver's log names the version: " << boxes[0];
    const std::string advice = "\nThis could be a graphics driver compatibility issue or lack of driver / "
                               "hardware support for OpenGL3.x GLSL 1.5 or later.";
    EXPECT_EQ(boxes[0].substr(boxes[0].size() - advice.size()), advice);

    // A second editor finds the programs already there: no building, no box.
    CGLRenderer second;
    EXPECT_EQ(second.initialise(velmoran::test::openChildWindow(64, 64), 64, 64, 64, 64), CGLRenderer::kOk);
    EXPECT_EQ(boxes.size(), 15u);
    EXPECT_EQ(CGLRenderer::sharedContextUsers(), 2);

    second.teardown();
    first.teardown();
    EXPECT_EQ(CGLRenderer::sharedContext(), nullptr);
    EXPECT_EQ(velmoran::platform::sharedProgram(velmoran::platform::kProgramTextured), nullptr);
    velmoran::test::closeAllWindows();
}

} // namespace
