#include "WindowCapture.h"

#include "tools/contact_sheet/PngWriter.h"

#include <GL/gl.h>

#include <algorithm>

namespace velmoran::editorhost
{

namespace
{

constexpr std::size_t kBytesPerPixel = 4;

std::size_t rowBytes(const Screenshot& screenshot)
{
    return static_cast<std::size_t>(screenshot.width) * kBytesPerPixel;
}

// OpenGL rows run bottom-up.
void flipRows(Screenshot& screenshot)
{
    const std::size_t row = rowBytes(screenshot);
    for (int top = 0, bottom = screenshot.height - 1; top < bottom; ++top, --bottom)
    {
        std::swap_ranges(screenshot.rgba.begin() + static_cast<std::ptrdiff_t>(top * row),
                         screenshot.rgba.begin() + static_cast<std::ptrdiff_t>((top + 1) * row),
                         screenshot.rgba.begin() + static_cast<std::ptrdiff_t>(bottom * row));
    }
}

void makeOpaque(Screenshot& screenshot)
{
    for (std::size_t alpha = 3; alpha < screenshot.rgba.size(); alpha += kBytesPerPixel)
    {
        screenshot.rgba[alpha] = 255;
    }
}

// The back buffer of the window's OpenGL drawable, which keeps the last presented frame; false when
// the window has no pixel format (it does not draw with OpenGL) or the read fails.
bool readOpenGlFrame(HDC windowDc, Screenshot& screenshot)
{
    if (GetPixelFormat(windowDc) == 0)
    {
        return false;
    }
    HGLRC previousContext = wglGetCurrentContext();
    HDC previousDc = wglGetCurrentDC();
    HGLRC context = wglCreateContext(windowDc);
    bool read = false;
    if (context != nullptr && wglMakeCurrent(windowDc, context))
    {
        glReadBuffer(GL_BACK);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, screenshot.width, screenshot.height, GL_RGBA, GL_UNSIGNED_BYTE,
                     screenshot.rgba.data());
        read = glGetError() == GL_NO_ERROR;
    }
    wglMakeCurrent(previousDc, previousContext);
    if (context != nullptr)
    {
        wglDeleteContext(context);
    }
    if (read)
    {
        flipRows(screenshot);
        makeOpaque(screenshot);
    }
    return read;
}

// The screen's pixels under the window's client area.
void readScreen(HWND window, Screenshot& screenshot)
{
    POINT origin{0, 0};
    ClientToScreen(window, &origin);
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO format{};
    format.bmiHeader.biSize = sizeof(format.bmiHeader);
    format.bmiHeader.biWidth = screenshot.width;
    format.bmiHeader.biHeight = -screenshot.height; // top row first
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    format.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap != nullptr)
    {
        HGDIOBJ previous = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, screenshot.width, screenshot.height, screen, origin.x, origin.y, SRCCOPY);
        GdiFlush();
        const auto* bgra = static_cast<const std::uint8_t*>(bits);
        for (std::size_t pixel = 0; pixel < screenshot.rgba.size(); pixel += kBytesPerPixel)
        {
            screenshot.rgba[pixel] = bgra[pixel + 2];
            screenshot.rgba[pixel + 1] = bgra[pixel + 1];
            screenshot.rgba[pixel + 2] = bgra[pixel];
        }
        makeOpaque(screenshot);
        SelectObject(memory, previous);
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}

} // namespace

Screenshot captureWindow(HWND window)
{
    Screenshot screenshot;
    RECT client{};
    if (window == nullptr || !GetClientRect(window, &client))
    {
        return screenshot;
    }
    screenshot.width = client.right - client.left;
    screenshot.height = client.bottom - client.top;
    screenshot.rgba.assign(rowBytes(screenshot) * static_cast<std::size_t>(screenshot.height), 0);
    HDC windowDc = GetDC(window);
    if (!readOpenGlFrame(windowDc, screenshot))
    {
        readScreen(window, screenshot);
    }
    ReleaseDC(window, windowDc);
    return screenshot;
}

bool saveScreenshot(const Screenshot& screenshot, const std::string& path)
{
    return screenshot.width > 0 && screenshot.height > 0 && tools::writePng(path, screenshot.image());
}

} // namespace velmoran::editorhost
