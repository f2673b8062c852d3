#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

#include <utility>

using velmoran::platform::ProgramDescription;
using velmoran::platform::ProgramRecord;
using velmoran::platform::sharedProgram;

namespace
{

constexpr const char* kAdvice =
    "This could be a graphics driver compatibility issue or lack of driver / hardware "
    "support for OpenGL3.x GLSL 1.5 or later.";

constexpr const char* kGoodVertex = "#version 150\n"
                                    "in vec2 pos;\n"
                                    "in vec4 colour;\n"
                                    "out vec4 VertColour;\n"
                                    "void main ()\n"
                                    "{\n"
                                    "VertColour = colour;\n"
                                    "gl_Position = vec4(pos, 0.0, 1.0);\n"
                                    "}";

using ShaderPrograms = velmoran::test::RendererTest;

TEST_F(ShaderPrograms, EveryProgramLinksWithItsBindings)
{
    EXPECT_TRUE(velmoran::test::recordedBoxes().empty());
    const ProgramRecord* textured = sharedProgram(velmoran::platform::kProgramTextured);
    EXPECT_GE(textured->texture, 0);
    EXPECT_GE(textured->gamma, 0);
    EXPECT_NE(textured->texCoordBuffer, 0u);
    EXPECT_EQ(textured->colourBuffer, 0u);
    const ProgramRecord* circle = sharedProgram(velmoran::platform::kProgramCircle);
    EXPECT_GE(circle->circleCentre, 0);
    EXPECT_GE(circle->circleRadiusInner, 0);
    EXPECT_NE(circle->colourBuffer, 0u);
    EXPECT_GE(sharedProgram(velmoran::platform::kProgramScanline)->lineWidth, 0);
    EXPECT_GE(sharedProgram(velmoran::platform::kProgramGrid)->gridSize, 0);
    for (int number = 1; number <= 5; ++number)
    {
        const ProgramRecord* record = sharedProgram(number);
        EXPECT_GE(record->projectionMatrix, 0) << number;
        EXPECT_GE(record->modelViewMatrix, 0) << number;
        EXPECT_GE(record->saturation, 0) << number;
        EXPECT_NE(record->vertexArray, 0u) << number;
    }
}

// A shader that does not compile is reported by name with the driver's log and the advice, and so
// is its program's link; stages that compile but cannot run fail at link.
TEST_F(ShaderPrograms, FailuresAreReportedWithTheNameAndTheDriverLog)
{
    // The boxes of one failed build, taken from the recorder.
    const auto failedBuild = [](int number, const char* vertex, const char* fragment)
    {
        ProgramRecord record;
        EXPECT_FALSE(velmoran::platform::buildProgram(
            {number, vertex, fragment, "FragColour", "pos", "colour", 4}, record));
        velmoran::platform::gGL.glDeleteProgram(record.program);
        return std::exchange(velmoran::test::recordedBoxes(), {});
    };
    const std::vector<std::string> broken = failedBuild(
        3, kGoodVertex,
        "#version 150\nout vec4 FragColour;\nvoid main ()\n{\n    FragColour = undefinedColour;\n}");
    ASSERT_EQ(broken.size(), 2u);
    EXPECT_TRUE(velmoran::test::boxStartsWith(broken[0], "GFX-PXSHDR-03 failed to compile")) << broken[0];
    EXPECT_NE(broken[0].find("undefinedColour"), std::string::npos) << broken[0];
    EXPECT_EQ(broken[0].substr(broken[0].size() - std::string(kAdvice).size() - 1),
              std::string("\n") + kAdvice);
    EXPECT_TRUE(velmoran::test::boxStartsWith(broken[1], "GFX-UNSHDR-03 failed to link")) << broken[1];

    const std::vector<std::string> unmatched =
        failedBuild(5, "#version 150\nin vec2 pos;\nvoid helper ()\n{\n}",
                    "#version 150\nout vec4 FragColour;\nvoid main ()\n{\n"
                    "    FragColour = vec4(1.0);\n}");
    ASSERT_EQ(unmatched.size(), 1u);
    EXPECT_TRUE(velmoran::test::boxStartsWith(unmatched[0], "GFX-UNSHDR-05 failed to link")) << unmatched[0];
    EXPECT_NE(unmatched[0].find("main"), std::string::npos) << unmatched[0];
}

TEST_F(ShaderPrograms, ReleaseDeletesAProgramOnlyAtTheLastUse)
{
    const ProgramRecord* flat = sharedProgram(velmoran::platform::kProgramFlat);
    const GLuint program = flat->program;
    EXPECT_EQ(velmoran::platform::buildPrograms(), 0);
    EXPECT_EQ(flat->useCount, 2);
    EXPECT_TRUE(velmoran::test::recordedBoxes().empty());
    for (int number = 1; number <= 5; ++number)
        velmoran::platform::releaseProgram(number);
    EXPECT_EQ(sharedProgram(velmoran::platform::kProgramFlat), flat);
    EXPECT_EQ(flat->useCount, 1);
    EXPECT_EQ(flat->program, program);
}

} // namespace
