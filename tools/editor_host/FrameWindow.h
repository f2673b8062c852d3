#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace velmoran::editorhost
{

// A shown top-level window without a caption at the screen's top left whose client area is width x
// height pixels, painted grey where nothing covers it; null when it cannot be made.
HWND openFrameWindow(const std::string& title, int width, int height);
// Virtual-key codes of the key presses that reached any frame window, in their order: the keys a
// plug-in's window handed on to the host.
const std::vector<int>& keysPressedOnFrames();
void forgetKeysPressedOnFrames();
// Gives window a client area of width x height pixels, keeping its position.
void setClientSize(HWND window, int width, int height);

} // namespace velmoran::editorhost
