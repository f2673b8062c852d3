#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

using velmoran::platform::ProgramRecord;

namespace
{

using ShaderPrograms = velmoran::test::RendererTest;

// Stages that compile but cannot run together fail at link, reported by name with the driver's log.
// A stage that fails to compile is reported by ShaderProgramsOldDriverTest.cpp.
TEST_F(ShaderPrograms, LinkFailureIsReportedWithTheNameAndTheDriverLog)
{
    ProgramRecord record;
    EXPECT_FALSE(velmoran::platform::buildProgram({5, "#version 150\nin vec2 pos;\nvoid helper ()\n{\n}",
                                                   "#version 150\nout vec4 FragColour;\nvoid main ()\n{\n"
                                                   "    FragColour = vec4(1.0);\n}",
                                                   "FragColour", "pos", "colour", 4},
                                                  record));
    velmoran::platform::gGL.glDeleteProgram(record.program);
    const std::vector<std::string>& boxes = velmoran::test::recordedBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_TRUE(velmoran::test::boxStartsWith(boxes[0], "GFX-UNSHDR-05 failed to link")) << boxes[0];
    EXPECT_NE(boxes[0].find("main"), std::string::npos) << boxes[0];
}

} // namespace
