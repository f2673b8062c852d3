#pragma once

#if defined(_WIN32)
#include <windows.h>
#endif

#include <GL/gl.h>
#include <GL/glext.h>

namespace velmoran::platform
{

// The OpenGL functions beyond 1.1, in the order they are requested from the driver, with whether
// their absence stops the renderer. The buffer and vertex-array functions are not tested, so that a
// driver lacking only those still opens the editor.
#define VELMORAN_GL_ENTRY_POINTS(X)                                                                          \
    X(PFNGLGENBUFFERSPROC, glGenBuffers, false)                                                              \
    X(PFNGLBINDBUFFERPROC, glBindBuffer, false)                                                              \
    X(PFNGLBUFFERDATAPROC, glBufferData, false)                                                              \
    X(PFNGLDELETEBUFFERSPROC, glDeleteBuffers, false)                                                        \
    X(PFNGLSHADERSOURCEPROC, glShaderSource, true)                                                           \
    X(PFNGLCOMPILESHADERPROC, glCompileShader, true)                                                         \
    X(PFNGLATTACHSHADERPROC, glAttachShader, true)                                                           \
    X(PFNGLDETACHSHADERPROC, glDetachShader, true)                                                           \
    X(PFNGLLINKPROGRAMPROC, glLinkProgram, true)                                                             \
    X(PFNGLCREATESHADERPROC, glCreateShader, true)                                                           \
    X(PFNGLDELETESHADERPROC, glDeleteShader, true)                                                           \
    X(PFNGLCREATEPROGRAMPROC, glCreateProgram, true)                                                         \
    X(PFNGLDELETEPROGRAMPROC, glDeleteProgram, true)                                                         \
    X(PFNGLUSEPROGRAMPROC, glUseProgram, true)                                                               \
    X(PFNGLGETUNIFORMLOCATIONPROC, glGetUniformLocation, true)                                               \
    X(PFNGLUNIFORMMATRIX4FVPROC, glUniformMatrix4fv, true)                                                   \
    X(PFNGLUNIFORM1FPROC, glUniform1f, true)                                                                 \
    X(PFNGLUNIFORM2FPROC, glUniform2f, true)                                                                 \
    X(PFNGLGETATTRIBLOCATIONPROC, glGetAttribLocation, true)                                                 \
    X(PFNGLBINDFRAGDATALOCATIONPROC, glBindFragDataLocation, true)                                           \
    X(PFNGLGETSHADERIVPROC, glGetShaderiv, true)                                                             \
    X(PFNGLGETPROGRAMIVPROC, glGetProgramiv, true)                                                           \
    X(PFNGLGETSHADERINFOLOGPROC, glGetShaderInfoLog, true)                                                   \
    X(PFNGLGETPROGRAMINFOLOGPROC, glGetProgramInfoLog, true)                                                 \
    X(PFNGLACTIVETEXTUREPROC, glActiveTexture, true)                                                         \
    X(PFNGLUNIFORM1IPROC, glUniform1i, true)                                                                 \
    X(PFNGLUNIFORM4FVPROC, glUniform4fv, true)                                                               \
    X(PFNGLGENVERTEXARRAYSPROC, glGenVertexArrays, false)                                                    \
    X(PFNGLBINDVERTEXARRAYPROC, glBindVertexArray, false)                                                    \
    X(PFNGLENABLEVERTEXATTRIBARRAYPROC, glEnableVertexAttribArray, true)                                     \
    X(PFNGLDISABLEVERTEXATTRIBARRAYPROC, glDisableVertexAttribArray, true)                                   \
    X(PFNGLVERTEXATTRIBPOINTERPROC, glVertexAttribPointer, true)

// The process's table of OpenGL entry points; filled once and never cleared.
struct GLEntryPoints
{
#define VELMORAN_GL_MEMBER(type, name, tested) type name = nullptr;
    VELMORAN_GL_ENTRY_POINTS(VELMORAN_GL_MEMBER)
#undef VELMORAN_GL_MEMBER
};

extern GLEntryPoints gGL;

// Requests every entry point whose slot is still empty (a context must be current); true when one
// of the tested set is missing.
bool loadGLEntryPoints(GLEntryPoints& table);
// True when an entry point of the tested set is null.
bool requiredEntryPointsMissing(const GLEntryPoints& table);

} // namespace velmoran::platform
