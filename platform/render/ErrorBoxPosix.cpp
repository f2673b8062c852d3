#include "ErrorBox.h"

#include <cstdio>

namespace velmoran::platform
{

void showSystemErrorBox(const char* caption, const char* text)
{
    std::fprintf(stderr, "%s: %s\n", caption, text);
}

} // namespace velmoran::platform
