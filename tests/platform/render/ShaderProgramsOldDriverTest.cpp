// Runs with Mesa told to offer only OpenGL 3.0 and GLSL 1.30, like a driver too old for the
// editor's GLSL 1.50 programs.
#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

using velmoran::platform::CGLRenderer;

namespace
{

TEST(OldDriver, EveryStageReportsAndInitialiseGivesTwo)
{
    velmoran::platform::setErrorBoxFunction(velmoran::test::recordBox);
    CGLRenderer first;
    ASSERT_EQ(first.initialise(velmoran::test::openChildWindow(64, 64), 64, 64, 64, 64),
              CGLRenderer::kShaderFailure);
    const auto& boxes = velmoran::test::recordedBoxes();
    // Ten shaders fail to compile and five programs to link, in build order 03, 02, 01, 04, 05.
    ASSERT_EQ(boxes.size(), 15u) << ::testing::PrintToString(boxes);
    EXPECT_EQ(boxes[0].rfind("Velmoran: OpenGL Error|Velmoran:Error: GFX-VXSHDR-03 failed to compile\n", 0),
              0u)
        << boxes[0];
    EXPECT_EQ(boxes[1].rfind("Velmoran: OpenGL Error|Velmoran:Error: GFX-PXSHDR-03 failed to compile\n", 0),
              0u);
    EXPECT_EQ(boxes[2].rfind("Velmoran: OpenGL Error|Velmoran:Error: GFX-UNSHDR-03 failed to link\n", 0), 0u);
    EXPECT_EQ(boxes[3].rfind("Velmoran: OpenGL Error|Velmoran:Error: GFX-VXSHDR-02 failed to compile\n", 0),
              0u);
    EXPECT_EQ(boxes[14].rfind("Velmoran: OpenGL Error|Velmoran:Error: GFX-UNSHDR-05 failed to link\n", 0),
              0u);
    EXPECT_NE(boxes[0].find("1.50"), std::string::npos) << "the driver's log names the version: " << boxes[0];

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
