#pragma once

#include "platform/render/CGLRenderer.h"
#include "platform/render/ErrorBox.h"
#include "platform/window/TestHostWindow.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

namespace velmoran::test
{

// One RGBA pixel read back from the frame being drawn.
struct Pixel
{
    int r = 0;
    int g = 0;
    int b = 0;
    int a = 0;
};

// Error boxes land here instead of on the screen.
inline std::vector<std::string>& recordedBoxes()
{
    static std::vector<std::string> boxes;
    return boxes;
}

inline void recordBox(const char* caption, const char* text)
{
    recordedBoxes().push_back(std::string(caption) + "|" + text);
}

// Routes error boxes to recordedBoxes() (emptied first) while it lives: a failure the test does not
// expect is then reported instead of opening a modal box that stalls the run.
class BoxRecorder
{
public:
    BoxRecorder() : mPrevious(platform::setErrorBoxFunction(recordBox)) { recordedBoxes().clear(); }
    ~BoxRecorder() { platform::setErrorBoxFunction(mPrevious); }
    BoxRecorder(const BoxRecorder&) = delete;
    BoxRecorder& operator=(const BoxRecorder&) = delete;

private:
    platform::ErrorBoxFunction mPrevious;
};

// Whether a recorded error box has the OpenGL error caption and starts with this first line.
inline bool boxStartsWith(const std::string& box, const std::string& firstLine)
{
    return box.rfind("Velmoran: OpenGL Error|Velmoran:Error: " + firstLine + "\n", 0) == 0;
}

// An editor-like child window inside the stand-in host, made through the window kit and shown.
inline HWND openChildWindow(int width, int height)
{
    auto* kit = platform::CPlatformWindows::instance(true);
    kit->setClassNames(kTestToken);
    const int slot = kit->createChildWindow(0, 0, width, height, 1.0f, testHostWindow(), nullptr);
    kit->showWindow(slot);
    return kit->windowHandle(slot);
}

// A renderer on a fresh child window of width x height device pixels showing the logical area
// (the window's own size unless given), current and cleared to black.
inline bool openClearedRenderer(platform::CGLRenderer& renderer, int width, int height,
                                double logicalWidth = 0, double logicalHeight = 0)
{
    if (renderer.initialise(openChildWindow(width, height), logicalWidth > 0 ? logicalWidth : width,
                            logicalHeight > 0 ? logicalHeight : height, width, height) != 0)
        return false;
    renderer.makeCurrent();
    renderer.beginFrame();
    renderer.setClearColour(0, 0, 0);
    renderer.clear();
    return true;
}

// The pixel at (x, y) from the top left of the frame being drawn, in device pixels.
inline Pixel pixelAt(int x, int y, int viewportHeight)
{
    std::array<unsigned char, 4> rgba{};
    glReadPixels(x, viewportHeight - 1 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    return {rgba[0], rgba[1], rgba[2], rgba[3]};
}

// Whether a pixel matches (r, g, b) within tolerance in every channel, naming both if not.
inline ::testing::AssertionResult looksLike(const Pixel& pixel, int r, int g, int b, int tolerance = 2)
{
    if (std::abs(pixel.r - r) <= tolerance && std::abs(pixel.g - g) <= tolerance &&
        std::abs(pixel.b - b) <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixel (" << pixel.r << ", " << pixel.g << ", " << pixel.b
                                         << ") is not (" << r << ", " << g << ", " << b << ")";
}

// A point of the frame and the colour expected there.
struct Probe
{
    int x;
    int y;
    int r;
    int g;
    int b;
};

// A renderer on a fresh 200 x 100 child window, current and cleared to black, with error boxes
// recorded; renderer and windows go at the end.
class RendererTest : public ::testing::Test
{
protected:
    static constexpr int kWidth = 200;
    static constexpr int kHeight = 100;

    void SetUp() override { ASSERT_TRUE(openClearedRenderer(renderer, kWidth, kHeight)); }
    void TearDown() override
    {
        renderer.teardown();
        closeAllWindows();
    }

    Pixel at(int x, int y) const { return pixelAt(x, y, kHeight); }
    void expectPixels(std::initializer_list<Probe> probes, int tolerance = 2) const
    {
        for (const Probe& probe : probes)
            EXPECT_TRUE(looksLike(at(probe.x, probe.y), probe.r, probe.g, probe.b, tolerance))
                << "at " << probe.x << ", " << probe.y;
    }

    BoxRecorder boxes;
    platform::CGLRenderer renderer;
};

} // namespace velmoran::test
