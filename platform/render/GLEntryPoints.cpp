#include "GLEntryPoints.h"

#include "GLPlatform.h"

namespace velmoran::platform
{

GLEntryPoints gGL;

bool loadGLEntryPoints(GLEntryPoints& table)
{
#define VELMORAN_GL_LOAD(type, name, tested)                                                                 \
    if (table.name == nullptr)                                                                               \
        table.name = reinterpret_cast<type>(glFunction(#name));
    VELMORAN_GL_ENTRY_POINTS(VELMORAN_GL_LOAD)
#undef VELMORAN_GL_LOAD
    return requiredEntryPointsMissing(table);
}

bool requiredEntryPointsMissing(const GLEntryPoints& table)
{
    bool missing = false;
#define VELMORAN_GL_CHECK(type, name, tested)                                                                \
    if (tested && table.name == nullptr)                                                                     \
        missing = true;
    VELMORAN_GL_ENTRY_POINTS(VELMORAN_GL_CHECK)
#undef VELMORAN_GL_CHECK
    return missing;
}

} // namespace velmoran::platform
