#include "ErrorBox.h"

#include <windows.h>

namespace velmoran::platform
{

void showSystemErrorBox(const char* caption, const char* text)
{
    MessageBoxA(nullptr, text, caption, MB_ICONEXCLAMATION);
}

} // namespace velmoran::platform
