#include "ShaderPrograms.h"

#include "ErrorBox.h"
#include "ShaderSources.h"

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace velmoran::platform
{

namespace
{

const std::array<ProgramDescription, 5> kDescriptions{{
    {kProgramCircle, kCircleVertexSource, kCircleFragmentSource, "CircleFragColour", "circle_pos",
     "circle_colour", 4},
    {kProgramFlat, kPositionColourVertexSource, kFlatFragmentSource, "FragColour", "pos", "colour", 4},
    {kProgramTextured, kTexturedVertexSource, kTexturedFragmentSource, "finalColour", "vertPos",
     "vertTexCoord", 2},
    {kProgramScanline, kPositionColourVertexSource, kScanlineFragmentSource, "FragColour", "pos", "colour",
     4},
    {kProgramGrid, kPositionColourVertexSource, kGridFragmentSource, "FragColour", "pos", "colour", 4},
}};

constexpr std::array<int, 5> kBuildOrder{kProgramTextured, kProgramFlat, kProgramCircle, kProgramScanline,
                                         kProgramGrid};

constexpr const char* kDriverAdvice =
    "This could be a graphics driver compatibility issue or lack of driver / "
    "hardware support for OpenGL3.x GLSL 1.5 or later.";

std::array<std::unique_ptr<ProgramRecord>, 5> gPrograms;

std::string shaderName(const char* kind, int number)
{
    char name[32];
    std::snprintf(name, sizeof(name), "GFX-%sSHDR-%02d", kind, number);
    return name;
}

// The three-part text of an error box: what failed, the driver's log and the advice.
void showBuildError(const char* firstLineFormat, const std::string& name, const std::vector<char>& log)
{
    char firstLine[1024];
    std::snprintf(firstLine, sizeof(firstLine), firstLineFormat, name.c_str());
    std::vector<char> text(log.size() + 1024);
    std::snprintf(text.data(), text.size(), "%s\n%s\n%s", firstLine, log.data(), kDriverAdvice);
    showErrorBox(kOpenGLErrorCaption, text.data());
}

std::vector<char> shaderLog(GLuint shader)
{
    GLint length = 0;
    gGL.glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    std::vector<char> log(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
    gGL.glGetShaderInfoLog(shader, length, nullptr, log.data());
    return log;
}

std::vector<char> programLog(GLuint program)
{
    GLint length = 0;
    gGL.glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    std::vector<char> log(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
    gGL.glGetProgramInfoLog(program, length, nullptr, log.data());
    return log;
}

// Compiles one stage; false (after its box) when the driver rejects it.
bool compileShader(GLuint shader, const char* source, const std::string& name)
{
    gGL.glShaderSource(shader, 1, &source, nullptr);
    gGL.glCompileShader(shader);
    GLint status = GL_FALSE;
    gGL.glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    if (status == GL_TRUE)
        return true;
    showBuildError("Velmoran:Error: %s failed to compile", name, shaderLog(shader));
    return false;
}

void lookUpUniforms(ProgramRecord& record)
{
    const GLuint program = record.program;
    record.projectionMatrix = gGL.glGetUniformLocation(program, "LProjectionMatrix");
    record.modelViewMatrix = gGL.glGetUniformLocation(program, "LModelViewMatrix");
    record.saturation = gGL.glGetUniformLocation(program, "fSaturation");
    record.texture = gGL.glGetUniformLocation(program, "tex");
    record.textureColour = gGL.glGetUniformLocation(program, "texColour");
    record.width = gGL.glGetUniformLocation(program, "fWidth");
    record.height = gGL.glGetUniformLocation(program, "fHeight");
    record.gamma = gGL.glGetUniformLocation(program, "fGamma");
    record.circleCentre = gGL.glGetUniformLocation(program, "CircleCentre");
    record.circleRadiusOuter = gGL.glGetUniformLocation(program, "CircleRadOuter");
    record.circleRadiusInner = gGL.glGetUniformLocation(program, "CircleRadInner");
    record.lineWidth = gGL.glGetUniformLocation(program, "fLineWidth");
    record.gridSize = gGL.glGetUniformLocation(program, "fGridSize");
}

// Full colour, no tint and a neutral gamma until a primitive says otherwise: the circle primitive
// and the dash quads never load some of these themselves.
void setNeutralUniforms(const ProgramRecord& record)
{
    static const GLfloat kWhite[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    gGL.glUniform1f(record.saturation, 1.0f);
    gGL.glUniform1f(record.gamma, 1.0f);
    gGL.glUniform4fv(record.textureColour, 1, kWhite);
}

void bindAttribute(GLuint program, const char* name, GLuint buffer, GLint components)
{
    const GLint location = gGL.glGetAttribLocation(program, name);
    if (location < 0)
        return;
    gGL.glEnableVertexAttribArray(static_cast<GLuint>(location));
    gGL.glBindBuffer(GL_ARRAY_BUFFER, buffer);
    gGL.glVertexAttribPointer(static_cast<GLuint>(location), components, GL_FLOAT, GL_FALSE, 0, nullptr);
}

void createVertexState(const ProgramDescription& description, ProgramRecord& record)
{
    const bool textured = description.secondComponents == 2;
    GLuint& secondBuffer = textured ? record.texCoordBuffer : record.colourBuffer;
    if (record.positionBuffer == 0)
        gGL.glGenBuffers(1, &record.positionBuffer);
    if (secondBuffer == 0)
        gGL.glGenBuffers(1, &secondBuffer);
    if (record.vertexArray != 0)
        return;
    gGL.glGenVertexArrays(1, &record.vertexArray);
    gGL.glBindVertexArray(record.vertexArray);
    bindAttribute(record.program, description.positionAttribute, record.positionBuffer, 2);
    bindAttribute(record.program, description.secondAttribute, secondBuffer, description.secondComponents);
    gGL.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gGL.glBindVertexArray(0);
}

} // namespace

const ProgramDescription& programDescription(int number)
{
    return kDescriptions[static_cast<size_t>(number - 1)];
}

ProgramRecord* sharedProgram(int number)
{
    if (number < kProgramCircle || number > kProgramGrid)
        return nullptr;
    return gPrograms[static_cast<size_t>(number - 1)].get();
}

bool buildProgram(const ProgramDescription& description, ProgramRecord& record)
{
    bool built = true;
    const GLuint vertexShader = gGL.glCreateShader(GL_VERTEX_SHADER);
    if (!compileShader(vertexShader, description.vertexSource, shaderName("VX", description.number)))
        built = false;
    const GLuint fragmentShader = gGL.glCreateShader(GL_FRAGMENT_SHADER);
    if (!compileShader(fragmentShader, description.fragmentSource, shaderName("PX", description.number)))
        built = false;

    record.program = gGL.glCreateProgram();
    gGL.glAttachShader(record.program, vertexShader);
    gGL.glAttachShader(record.program, fragmentShader);
    gGL.glBindFragDataLocation(record.program, 0, description.fragmentOutput);
    gGL.glLinkProgram(record.program);
    GLint linked = GL_FALSE;
    gGL.glGetProgramiv(record.program, GL_LINK_STATUS, &linked);
    if (linked != GL_TRUE)
    {
        const std::vector<char> log = programLog(record.program);
        std::printf("%s\n\n", log.data());
        std::fflush(stdout);
        showBuildError("Velmoran:Error: %s failed to link", shaderName("UN", description.number), log);
        built = false;
    }
    gGL.glDetachShader(record.program, vertexShader);
    gGL.glDetachShader(record.program, fragmentShader);
    gGL.glDeleteShader(fragmentShader);
    gGL.glDeleteShader(vertexShader);

    gGL.glUseProgram(record.program);
    lookUpUniforms(record);
    if (linked == GL_TRUE)
        setNeutralUniforms(record);
    createVertexState(description, record);
    gGL.glUseProgram(0);
    return built;
}

int buildPrograms()
{
    int result = 0;
    for (const int number : kBuildOrder)
    {
        std::unique_ptr<ProgramRecord>& slot = gPrograms[static_cast<size_t>(number - 1)];
        if (slot != nullptr)
        {
            ++slot->useCount;
            continue;
        }
        slot = std::make_unique<ProgramRecord>();
        if (!buildProgram(programDescription(number), *slot))
            result = 1;
    }
    return result;
}

void releaseProgram(int number)
{
    if (number < kProgramCircle || number > kProgramGrid)
        return;
    std::unique_ptr<ProgramRecord>& slot = gPrograms[static_cast<size_t>(number - 1)];
    if (slot == nullptr || --slot->useCount > 0)
        return;
    for (GLuint* buffer : {&slot->positionBuffer, &slot->texCoordBuffer, &slot->colourBuffer})
    {
        if (*buffer != 0)
            gGL.glDeleteBuffers(1, buffer);
    }
    gGL.glDeleteProgram(slot->program);
    slot.reset();
}

} // namespace velmoran::platform
