// velmoran-gl-snapshot OUTPUT.png
// Opens an editor-sized child window through the window kit inside a stand-in host window, draws
// one frame with every drawing primitive, stored images and text through the OpenGL renderer, and
// saves the frame as a PNG. Shader failures are printed instead of shown, so it never waits.
#include "../contact_sheet/PngWriter.h"

#include "platform/render/CGLRenderer.h"
#include "platform/render/ErrorBox.h"
#include "platform/render/TextureLoader.h"
#include "platform/render/images/SoftwareImage.h"
#include "platform/render/text/FontDescriptor.h"
#include "platform/render/text/TextContext.h"
#include "platform/window/CPlatformWindows.h"
#include "resources/ResourceIds.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

using velmoran::platform::CGLRenderer;
using velmoran::platform::Colour;
using velmoran::platform::CPlatformWindows;
using velmoran::platform::GLTexture;
namespace ids = velmoran::resources;

namespace
{

constexpr int kWidth = 998;
constexpr int kHeight = 634;

void printBox(const char* caption, const char* text)
{
    std::printf("%s: %s\n", caption, text);
}

HWND createHostWindow()
{
    WNDCLASSA hostClass{};
    hostClass.lpfnWndProc = DefWindowProcA;
    hostClass.hInstance = GetModuleHandleA(nullptr);
    hostClass.lpszClassName = "VelmoranSnapshotHost";
    RegisterClassA(&hostClass);
    RECT frame{0, 0, kWidth, kHeight};
    AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
    HWND host = CreateWindowExA(0, "VelmoranSnapshotHost", "Velmoran snapshot", WS_OVERLAPPEDWINDOW, 0, 0,
                                frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
    ShowWindow(host, SW_SHOW);
    return host;
}

// Background panels: a shaded plate with scanlines and a dot grid over the graph area.
void drawPanels(CGLRenderer& renderer)
{
    renderer.fillRectVerticalGradient(0, 0, kWidth, kHeight, {0.16f, 0.17f, 0.19f, 1.0f},
                                      {0.07f, 0.07f, 0.08f, 1.0f});
    renderer.setColour(10, 12, 14);
    renderer.fillRect(20, 70, 700, 400);
    renderer.setColour(255, 176, 0, 40);
    renderer.drawGridRect(20, 70, 700, 400, 16.0f);
    renderer.setColour(40, 60, 80, 0);
    renderer.drawScanlineRect(20, 70, 700, 400);
    renderer.setColour(255, 176, 0, 90);
    for (int line = 0; line < 5; ++line)
        renderer.drawDashedLineHorizontal(20, 110.0f + line * 80.0f, 700, 1, 0);
    for (int line = 0; line < 7; ++line)
        renderer.drawDashedLineVertical(120.0f + line * 100.0f, 70, 400, 1, 0);
}

// A filled response curve made of triangles from a growable vertex array, with its outline.
void drawCurve(CGLRenderer& renderer)
{
    velmoran::platform::VertexArray vertices;
    const Colour top{1.0f, 0.69f, 0.0f, 0.45f};
    const Colour bottom{1.0f, 0.69f, 0.0f, 0.05f};
    const float baseline = 270.0f;
    float previousX = 20.0f;
    float previousY = baseline;
    for (int step = 1; step <= 140; ++step)
    {
        const float x = 20.0f + step * 5.0f;
        const float t = step / 140.0f;
        const float y = baseline - 90.0f * std::exp(-std::pow((t - 0.3f) / 0.08f, 2.0f)) +
                        60.0f * std::exp(-std::pow((t - 0.75f) / 0.12f, 2.0f));
        vertices.add(previousX, previousY, top);
        vertices.add(x, y, top);
        vertices.add(previousX, baseline, bottom);
        vertices.add(x, y, top);
        vertices.add(x, baseline, bottom);
        vertices.add(previousX, baseline, bottom);
        previousX = x;
        previousY = y;
    }
    renderer.drawTriangles(vertices);
}

// Band handles: discs with rings, as the graph shows them.
void drawHandles(CGLRenderer& renderer)
{
    const float handles[4][2] = {{230, 183}, {345, 268}, {545, 328}, {640, 262}};
    const int colours[4][3] = {{255, 176, 0}, {90, 200, 250}, {140, 230, 120}, {240, 90, 90}};
    for (int i = 0; i < 4; ++i)
    {
        renderer.setColour(colours[i][0], colours[i][1], colours[i][2], 70);
        renderer.drawCircle(handles[i][0], handles[i][1], 16.0f, 0.0f);
        renderer.setColour(colours[i][0], colours[i][1], colours[i][2]);
        renderer.drawCircle(handles[i][0], handles[i][1], 11.0f, 8.5f);
        renderer.drawCircle(handles[i][0], handles[i][1], 3.5f, 0.0f);
    }
}

// The flat primitives side by side: rectangles, quads with corner colours, triangles and the
// three strip-shape styles.
void drawShapes(CGLRenderer& renderer)
{
    const float y = 490.0f;
    renderer.setColour(200, 60, 60);
    renderer.fillRect(20, y, 60, 40);
    const float quad[8] = {100, y, 170, y + 8, 160, y + 40, 95, y + 34};
    const Colour corners[4] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}, {1, 1, 1, 1}};
    renderer.fillQuad(quad, corners);
    const float triangle[6] = {190, y + 40, 220, y, 250, y + 40};
    const float triangleColours[12] = {0.2f, 0.6f, 1, 1, 1, 1, 1, 1, 0.2f, 0.6f, 1, 1};
    renderer.drawTriangles(triangle, triangleColours, 1);
    renderer.setColour(70, 74, 82);
    renderer.drawStripShape(270, y, 80, 40, 0.0f);
    renderer.drawStripShape(360, y, 80, 40, 1.0f);
    renderer.setColour(255, 176, 0);
    renderer.drawStripShape(450, y, 80, 40, 2.0f);
    renderer.setColour(90, 200, 250, 150);
    renderer.drawScanlineRect(540, y, 80, 40);
    // The same disc at full and at no saturation.
    renderer.setColour(240, 90, 90);
    renderer.drawCircle(650, y + 20, 18, 0);
    const float previous = renderer.setSaturation(0.0f);
    renderer.fillRect(680, y, 40, 40);
    renderer.setSaturation(previous);
}

// Stored images: switch faces, icons, handles, plates and multi-frame buttons.
void drawImages(CGLRenderer& renderer, std::vector<std::unique_ptr<GLTexture>>& keep)
{
    auto load = [&](int id, int frames) -> const GLTexture*
    {
        keep.push_back(velmoran::platform::loadTexture(renderer, id, frames));
        return keep.back().get();
    };
    if (const GLTexture* wordmark = load(ids::kWordmark, 1))
        renderer.drawImage(*wordmark, 0, 0, 20, 20, 128, 32);
    if (const GLTexture* emblem = load(ids::kEmblem, 1))
        renderer.drawImage(*emblem, 0, 0, 156, 20, 32, 32);
    if (const GLTexture* plate = load(ids::kStatusPlate, 1))
        renderer.drawImage(*plate, 0, 0, 20, 570, 256, 32);
    if (const GLTexture* maker = load(ids::kMakerPlate, 1))
        renderer.drawImage(*maker, 0, 0, 290, 570, 128, 32);
    for (int i = 0; i < 6; ++i)
        if (const GLTexture* toggle = load(ids::kEffectSwitch + i, 2))
            renderer.drawImageFrame(*toggle, 64, 43, i % 2, 740.0f + (i % 3) * 80.0f,
                                    70.0f + (i / 3) * 60.0f);
    for (int i = 0; i < 15; ++i)
        if (const GLTexture* icon = load(ids::kIconLowPass + i, 1))
            renderer.drawImage(*icon, 0, 0, 740.0f + (i % 5) * 28.0f, 196.0f + (i / 5) * 28.0f, 16, 16);
    const int pieces[] = {ids::kPanelCorner, ids::kScrew,      ids::kLamp,           ids::kBandHandle,
                          ids::kIdleHandle,  ids::kSoloHandle, ids::kPolarityButton, ids::kTitleButton,
                          ids::kSoloButton,  ids::kInfoButton};
    for (int i = 0; i < 10; ++i)
        if (const GLTexture* piece = load(pieces[i], 2))
            for (int frame = 0; frame < 2; ++frame)
                renderer.drawImageFrame(*piece, 32, 32, frame, 740.0f + (i % 5) * 44.0f,
                                        290.0f + (i / 5) * 80.0f + frame * 36.0f);
    if (const GLTexture* mode = load(ids::kChannelModeButton, 3))
        for (int frame = 0; frame < 3; ++frame)
            renderer.drawImageFrame(*mode, 32, 32, frame, 740.0f + frame * 40.0f, 460.0f);
    if (const GLTexture* selector = load(ids::kAutoLockSelector, 5))
        for (int frame = 0; frame < 5; ++frame)
            renderer.drawImageFrame(*selector, 32, 32, frame, 740.0f + frame * 40.0f, 500.0f);
    if (const GLTexture* toggle = load(ids::kSpectrumSwitch, 2))
    {
        const float previous = renderer.setSaturation(0.0f);
        renderer.drawImageFrame(*toggle, 64, 43, 1, 900, 560, 0.8f);
        renderer.setSaturation(previous);
        renderer.drawImageScaled(*toggle, 0, 0, 64, 43, 800, 556, 96, 64);
    }
}

// Text composed into a software canvas by the distance-field text context and drawn as a texture,
// and labels in the renderer's bitmap font.
void drawText(CGLRenderer& renderer, std::vector<std::unique_ptr<GLTexture>>& keep)
{
    constexpr int kCanvasWidth = 512;
    constexpr int kCanvasHeight = 64;
    velmoran::platform::CanvasBuffer buffer(kCanvasWidth, kCanvasHeight);
    velmoran::platform::TextContext text(buffer.canvas());
    text.selectFont(velmoran::platform::kMichromaFont);
    text.setTextSize(20.0f);
    text.setColour(255, 176, 0, 255);
    text.setPen(4, 24);
    text.drawString("VELMORAN  10-BAND EQ");
    text.selectFont(velmoran::platform::kDejaVuSansFont);
    text.setTextSize(15.0f);
    text.setColour(230, 230, 230, 255);
    text.setPen(4, 52);
    text.drawString("03 Freq 1.20 kHz   Gain +3.5 dB   Q 0.71   Peak Asym");
    keep.push_back(renderer.createTexture(buffer.image().pixels, kCanvasWidth, kCanvasHeight));
    if (keep.back() != nullptr)
        renderer.drawImage(*keep.back(), 0, 0, 210, 4, kCanvasWidth, kCanvasHeight);

    // Labels in the renderer's own bitmap font.
    const char* const labels[] = {"20 Hz", "100", "1 kHz", "10 kHz", "20 kHz"};
    const float positions[] = {24, 120, 320, 520, 670};
    renderer.setColour(180, 180, 180);
    for (int i = 0; i < 5; ++i)
        renderer.drawBitmapString(positions[i], 450, labels[i]);
    renderer.setColour(255, 176, 0);
    renderer.drawBitmapString(30, 576, "03 Freq 1.20 kHz  Gain +3.5 dB");
}

// The frame being drawn as an image, top row first.
std::vector<uint8_t> readFrame()
{
    std::vector<uint8_t> bottomUp(static_cast<size_t>(kWidth * kHeight * 4));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, bottomUp.data());
    std::vector<uint8_t> topDown(bottomUp.size());
    const size_t row = static_cast<size_t>(kWidth * 4);
    for (int y = 0; y < kHeight; ++y)
        std::copy_n(&bottomUp[static_cast<size_t>(kHeight - 1 - y) * row], row,
                    &topDown[static_cast<size_t>(y) * row]);
    for (size_t i = 3; i < topDown.size(); i += 4)
        topDown[i] = 255;
    return topDown;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: velmoran-gl-snapshot OUTPUT.png\n");
        return 2;
    }
    velmoran::platform::setErrorBoxFunction(printBox);
    velmoran::platform::initWindowKit("5E1A0C3D9B27");
    CPlatformWindows* kit = CPlatformWindows::instance(false);
    HWND host = createHostWindow();
    const int slot = kit->createChildWindow(0, 0, kWidth, kHeight, 1.0f, host, nullptr);
    if (slot < 0)
    {
        std::fprintf(stderr, "velmoran-gl-snapshot: the window could not be created\n");
        return 1;
    }
    kit->showWindow(slot);

    CGLRenderer renderer;
    const int result = renderer.initialise(kit->windowHandle(slot), kWidth, kHeight, kWidth, kHeight);
    if (result != CGLRenderer::kOk)
    {
        std::fprintf(stderr, "velmoran-gl-snapshot: the renderer failed to initialise (%d)\n", result);
        return 1;
    }
    std::vector<std::unique_ptr<GLTexture>> textures;
    renderer.makeCurrent();
    renderer.beginFrame();
    renderer.setClearColour(0, 0, 0);
    renderer.clear();
    drawPanels(renderer);
    drawCurve(renderer);
    drawHandles(renderer);
    drawShapes(renderer);
    drawImages(renderer, textures);
    drawText(renderer, textures);

    std::vector<uint8_t> pixels = readFrame();
    renderer.present();
    textures.clear();
    renderer.teardown();
    velmoran::platform::exitWindowKit();
    DestroyWindow(host);

    const velmoran::platform::SoftwareImage frame{kWidth, kHeight, kWidth * 4, 4, pixels.data()};
    if (!velmoran::tools::writePng(argv[1], frame))
    {
        std::fprintf(stderr, "velmoran-gl-snapshot: %s could not be written\n", argv[1]);
        return 1;
    }
    std::printf("Snapshot written to %s\n", argv[1]);
    return 0;
}
