// What the editor puts on the screen, read back from its window under Wine: the spectrum of a frame
// the processor sends peaks at the sine's frequency. Band curves reach the screen through the same
// triangles, whose geometry the native graph tests check.

#include "EditorControllerFixture.h"

#include "editor/EditorScreen.h"
#include "plugin/PlugParameters.h"
#include "plugin/SpectrumFrame.h"

#include <gtest/gtest.h>

#include <GL/gl.h>

#include <cmath>
#include <utility>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;

namespace
{

using EditorPixels = velmoran::test::EditorControllerFixture<velmoran::test::acceptBox>;

// A frame with a single line at 2 kHz: the spectrum's fill reaches highest in that column.
TEST_F(EditorPixels, SpectrumOfSinePeaksAtItsFrequency)
{
    // Every band off, so no curve covers the spectrum.
    for (int band = 1; band <= kBandCount; ++band)
        controller->setParamNormalized(filterTypeTag(band), 0.0);
    IPtr<CPlugEditorView> view = createView();
    ASSERT_EQ(attach(view), kResultOk);
    ASSERT_TRUE(view->isOpen());
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
        view->tick();
        view->tick();
        view->paint();
    }
    constexpr int kWidth = 998;
    constexpr int kHeight = 634;
    std::vector<unsigned char> pixels(kWidth * kHeight * 3);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    // The red and blue of a pixel in design rows, from the top.
    const auto redBlue = [&pixels](int x, int y)
    {
        const unsigned char* rgb = &pixels[(static_cast<size_t>(kHeight - 1 - y) * kWidth + x) * 3];
        return std::pair<int, int>{rgb[0], rgb[2]};
    };

    const auto& graph = view->screen()->graph();
    const float sineHz = static_cast<float>(bin) * 48000.0f / 4096.0f;
    const int plotTop = static_cast<int>(graph.plotRect().y) + 3;
    const int plotBottom = static_cast<int>(graph.plotRect().bottom()) - 3;
    // The top of the spectrum in a column: the first row from the top that differs from the plot.
    const auto spectrumTop = [&](int x)
    {
        const int backgroundBlue = redBlue(x, plotTop + 1).second;
        for (int y = plotTop + 2; y < plotBottom; ++y)
        {
            const auto [red, blue] = redBlue(x, y);
            if (std::abs(blue - backgroundBlue) > 24 && blue > red)
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
    view->removed();
}

} // namespace
