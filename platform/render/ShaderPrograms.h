#pragma once

#include "GLEntryPoints.h"

#include <cstdint>

namespace velmoran::platform
{

// Program numbers as their error-message names carry them ("GFX-UNSHDR-03").
enum ProgramNumber : int
{
    kProgramCircle = 1,
    kProgramFlat = 2,
    kProgramTextured = 3,
    kProgramScanline = 4,
    kProgramGrid = 5
};

// What a program is built from: its sources, its fragment output and its two vertex attributes.
struct ProgramDescription
{
    int number;
    const char* vertexSource;
    const char* fragmentSource;
    const char* fragmentOutput;
    const char* positionAttribute;
    const char* secondAttribute; // colour (4 floats) or texture coordinate (2 floats)
    int secondComponents;
};

// One shared, reference-counted program: its GL objects and uniform locations.
struct ProgramRecord
{
    GLuint program = 0;
    GLuint vertexArray = 0;
    GLuint positionBuffer = 0;
    GLuint texCoordBuffer = 0;
    GLuint colourBuffer = 0;
    GLint projectionMatrix = 0;
    GLint modelViewMatrix = 0;
    GLint saturation = 0;
    GLint texture = 0;
    GLint textureColour = 0;
    GLint width = 0;
    GLint height = 0;
    GLint gamma = 0;
    GLint circleCentre = 0;
    GLint circleRadiusOuter = 0;
    GLint circleRadiusInner = 0;
    GLint lineWidth = 0;
    GLint gridSize = 0;
    int32_t useCount = 1;
};

// Caption of every OpenGL failure box.
inline constexpr const char* kOpenGLErrorCaption = "Velmoran: OpenGL Error";

// The description of program 1..5.
const ProgramDescription& programDescription(int number);
// The shared record of program 1..5, or null before it was built or after its release.
ProgramRecord* sharedProgram(int number);
// Builds the five programs that do not exist yet (03, 02, 01, 04, 05), counts the others; 0 when
// every shader compiled and every program linked, 1 otherwise. The context must be current.
int buildPrograms();
// Compiles and links one program into a record, showing a box for each failing stage; false on
// any failure.
bool buildProgram(const ProgramDescription& description, ProgramRecord& record);
// Drops one use of a program; the last one deletes its buffers and program object.
void releaseProgram(int number);

} // namespace velmoran::platform
