#pragma once

namespace velmoran::platform
{

// Shows a caption and a text to the user.
using ErrorBoxFunction = void (*)(const char* caption, const char* text);

// Shows a failure the user must see through the current box (the system box unless replaced).
void showErrorBox(const char* caption, const char* text);
// The platform's own box: a modal MessageBoxA with the exclamation icon on Windows, a line on the
// standard error stream elsewhere.
void showSystemErrorBox(const char* caption, const char* text);
// Routes every error box to this function (null: back to the system box); gives the previous one.
ErrorBoxFunction setErrorBoxFunction(ErrorBoxFunction function);

} // namespace velmoran::platform
