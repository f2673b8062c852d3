#include "ErrorBox.h"

namespace velmoran::platform
{

namespace
{

ErrorBoxFunction gErrorBox = showSystemErrorBox;

} // namespace

void showErrorBox(const char* caption, const char* text)
{
    gErrorBox(caption, text);
}

ErrorBoxFunction setErrorBoxFunction(ErrorBoxFunction function)
{
    const ErrorBoxFunction previous = gErrorBox;
    gErrorBox = function != nullptr ? function : showSystemErrorBox;
    return previous;
}

} // namespace velmoran::platform
