#include "ErrorBox.h"

#include <windows.h>

namespace velmoran::platform
{

namespace
{

void messageBox(const char* caption, const char* text)
{
    MessageBoxA(nullptr, text, caption, MB_ICONEXCLAMATION);
}

ErrorBoxFunction gErrorBox = messageBox;

} // namespace

void showErrorBox(const char* caption, const char* text)
{
    gErrorBox(caption, text);
}

ErrorBoxFunction setErrorBoxFunction(ErrorBoxFunction function)
{
    const ErrorBoxFunction previous = gErrorBox;
    gErrorBox = function != nullptr ? function : messageBox;
    return previous;
}

} // namespace velmoran::platform
