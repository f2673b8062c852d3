#include "RenderTestWindow.h"

#include "platform/render/ShaderPrograms.h"

#include <gtest/gtest.h>

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

TEST_F(ShaderPrograms, BrokenShaderIsReportedWithItsNameAndTheDriverLog)
{
    const ProgramDescription broken{3,
                                    kGoodVertex,
                                    "#version 150\nout vec4 FragColour;\nvoid main ()\n{\n"
                                    "    FragColour = undefinedColour;\n}",
                                    "FragColour",
                                    "pos",
                                    "colour",
                                    4};
    ProgramRecord record;
    EXPECT_FALSE(velmoran::platform::buildProgram(broken, record));
    const auto& boxes = velmoran::test::recordedBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    const std::string compileBox = boxes[0];
    EXPECT_TRUE(velmoran::test::boxStartsWith(compileBox, "GFX-PXSHDR-03 failed to compile")) << compileBox;
    EXPECT_NE(compileBox.find("undefinedColour"), std::string::npos) << compileBox;
    EXPECT_EQ(compileBox.substr(compileBox.size() - std::string(kAdvice).size() - 1),
              std::string("\n") + kAdvice);
    EXPECT_TRUE(velmoran::test::boxStartsWith(boxes[1], "GFX-UNSHDR-03 failed to link")) << boxes[1];
    velmoran::platform::gGL.glDeleteProgram(record.program);
}

TEST_F(ShaderPrograms, StagesThatCompileButCannotRunFailAtLink)
{
    const ProgramDescription unmatched{5,
                                       "#version 150\nin vec2 pos;\nvoid helper ()\n{\n}",
                                       "#version 150\nout vec4 FragColour;\nvoid main ()\n{\n"
                                       "    FragColour = vec4(1.0);\n}",
                                       "FragColour",
                                       "pos",
                                       "colour",
                                       4};
    ProgramRecord record;
    EXPECT_FALSE(velmoran::platform::buildProgram(unmatched, record));
    const auto& boxes = velmoran::test::recordedBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_TRUE(velmoran::test::boxStartsWith(boxes[0], "GFX-UNSHDR-05 failed to link")) << boxes[0];
    EXPECT_NE(boxes[0].find("main"), std::string::npos) << boxes[0];
    velmoran::platform::gGL.glDeleteProgram(record.program);
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
