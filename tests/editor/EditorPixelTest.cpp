// What the editor puts on the screen, read back from its window under Wine: the spectrum of a frame
// the processor sends peaks at the sine's frequency. Band curves reach the screen through the same
// triangles, whose geometry the native graph tests check.

#include "EditorControllerFixture.h"

#include "editor/EditorScreen.h"
#include "plugin/PlugParameters.h"
#include "plugin/SpectrumFrame.h"

#include <gtest/gtest.h>

#include <GL/gl.h>

#include <array>
#include <cmath>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;

namespace
{

struct Pixel
{
    int r;
    int g;
    int b;
};

class EditorPixels : public velmoran::test::EditorControllerFixture<velmoran::test::acceptBox>
{
protected:
    void SetUp() override
    {
        EditorControllerFixture::SetUp();
        // Every band off, so no curve covers the spectrum.
        for (int band = 1; band <= kBandCount; ++band)
            controller->setParamNormalized(filterTypeTag(band), 0.0);
        view = createView();
        ASSERT_EQ(attach(view), kResultOk);
        ASSERT_TRUE(view->isOpen());
    }
    void TearDown() override
    {
        view->removed();
        view = nullptr;
        EditorControllerFixture::TearDown();
    }

    // Lets the graph take the frame (on the ticks), draws and keeps the pixels.
    void drawFrame()
    {
        for (int tick = 0; tick < 2; ++tick)
            view->tick();
        view->paint();
        glReadBuffer(GL_BACK);
        glReadPixels(0, 0, kWidth, kHeight, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    }
    Pixel at(int x, int y) const
    {
        const size_t index = (static_cast<size_t>(kHeight - 1 - y) * kWidth + static_cast<size_t>(x)) * 3;
        return {pixels[index], pixels[index + 1], pixels[index + 2]};
    }
    static constexpr int kWidth = 998;
    static constexpr int kHeight = 634;
    IPtr<CPlugEditorView> view;
    std::array<unsigned char, kWidth * kHeight * 3> pixels{};
};

// A frame with a single line at 2 kHz: the spectrum's fill reaches highest in that column.
TEST_F(EditorPixels, SpectrumOfSinePeaksAtItsFrequency)
{
    controller->setParamNormalized(kFftTag, 1.0);
    controller->setParamNormalized(kFftSlopeTag, 0.0);
    auto frame = makeSpectrumFrame();
    frame->sampleRate = 48000.0f;
    frame->transformSize = 4096;
    const int bin = static_cast<int>(2000.0f * 4096.0f / 48000.0f + 0.5f);
    for (int k = 0; k < kAnalyserMagnitudeCount; ++k)
        frame->magnitudes[k] = 1e-4f;
    frame->magnitudes[bin] = 0.5f;
    HostMessage message;
    message.setMessageID("BinaryMessage");
    message.getAttributes()->setBinary("FFTData", frame.get(), sizeof(SpectrumFrame));
    for (int copy = 0; copy < 8; ++copy)
    {
        controller->notify(&message);
        view->paint();
        drawFrame();
    }
    const auto& graph = view->screen()->graph();
    const float sineHz = static_cast<float>(bin) * 48000.0f / 4096.0f;
    const int plotTop = static_cast<int>(graph.plotRect().y) + 3;
    const int plotBottom = static_cast<int>(graph.plotRect().bottom()) - 3;
    // The top of the spectrum in a column: the first row from the top that differs from the plot.
    const auto spectrumTop = [&](int x)
    {
        const Pixel background = at(x, plotTop + 1);
        for (int y = plotTop + 2; y < plotBottom; ++y)
        {
            const Pixel p = at(x, y);
            if (std::abs(p.b - background.b) > 24 && p.b > p.r)
                return y;
        }
        return plotBottom;
    };
    int highestX = static_cast<int>(graph.plotRect().x) + 4;
    for (int x = highestX; x < static_cast<int>(graph.plotRect().right()) - 4; ++x)
        if (spectrumTop(x) < spectrumTop(highestX))
            highestX = x;
    EXPECT_NEAR(graph.frequencyForX(static_cast<float>(highestX)) / sineHz, 1.0f, 0.08f)
        << "peak drawn at " << graph.frequencyForX(static_cast<float>(highestX)) << " Hz";
}

} // namespace
