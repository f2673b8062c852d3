#pragma once

#include "platform/render/images/SoftwareImage.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace velmoran::editorhost
{

// The pixels of a window's client area, RGBA and opaque, top row first.
struct Screenshot
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;

    // The pixels as an image for the PNG writer.
    platform::SoftwareImage image() const { return {width, height, width * 4, 4, rgba.data()}; }
};

// The client area of window as it shows it. A window that draws with OpenGL gives the frame it
// presented last, read through an OpenGL context of the host's own on the window's device context:
// Wine renders an OpenGL child window off the screen, where neither the screen nor the window's
// device context sees it. Any other window gives the screen's pixels under its client area.
Screenshot captureWindow(HWND window);
// Writes the screenshot as a PNG file; false when the file cannot be written.
bool saveScreenshot(const Screenshot& screenshot, const std::string& path);

} // namespace velmoran::editorhost
