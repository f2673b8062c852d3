#pragma once

namespace velmoran::platform
{

// Shows a caption and a text to the user.
using ErrorBoxFunction = void (*)(const char* caption, const char* text);

// Shows a failure the user must see through the current box (a modal MessageBoxA with the
// exclamation icon unless replaced).
void showErrorBox(const char* caption, const char* text);
// Routes every error box to this function (null: back to MessageBoxA); gives the previous one.
ErrorBoxFunction setErrorBoxFunction(ErrorBoxFunction function);

} // namespace velmoran::platform
