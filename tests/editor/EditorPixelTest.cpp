// What the editor puts on the screen, read back from its window under Wine: a band's curve passes
// through the pixel of its frequency and gain, and a sine's spectrum peaks at the sine's frequency.

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
    int brightness() const { return r + g + b; }
};

class EditorPixels : public velmoran::test::EditorControllerFixture<velmoran::test::acceptBox>
{
protected:
    void SetUp() override
    {
        EditorControllerFixture::SetUp();
        // Every band off but the one a test sets, so nothing else draws a curve.
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

    // Lets the graph settle (its fades run on the ticks), draws a frame and keeps its pixels.
    void drawFrame(int ticks = 30)
    {
        for (int tick = 0; tick < ticks; ++tick)
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
    // The row (design pixels) of the brightest pixel of column x between rows top and bottom.
    int brightestRow(int x, int top, int bottom) const
    {
        int best = top;
        for (int y = top; y <= bottom; ++y)
            if (at(x, y).brightness() > at(x, best).brightness())
                best = y;
        return best;
    }

    static constexpr int kWidth = 998;
    static constexpr int kHeight = 634;
    IPtr<CPlugEditorView> view;
    std::array<unsigned char, kWidth * kHeight * 3> pixels{};
};

// A +12 dB peak at 1 kHz: the brightest pixel of the 1 kHz column away from the handle's ring is
// the curve at the row of +12 dB.
TEST_F(EditorPixels, BandCurvePassesThroughItsFrequencyAndGain)
{
    controller->setParamNormalized(filterTypeTag(4), 2.0 / 20.0);
    controller->setParamNormalized(frequencyTag(4), (1000.0 - 20.0) / 19980.0);
    controller->setParamNormalized(gainTag(4), (12.0 + 18.0) / 36.0);
    controller->setParamNormalized(qTag(4), normalisedQ(2.0f));
    drawFrame();
    const auto& graph = view->screen()->graph();
    const float peakX = graph.xForFrequency(1000.0f);
    const float peakY = graph.yForGain(12.0f);
    // The handle's ring covers the peak itself: look just beside it, where the curve has fallen by
    // what the design says.
    const int x = static_cast<int>(peakX + 14.0f);
    const float hz = graph.frequencyForX(static_cast<float>(x) + 0.5f);
    const int row = brightestRow(x, static_cast<int>(peakY) - 30, static_cast<int>(graph.yForGain(0.0f)) - 4);
    const float shownDb = graph.gainForY(static_cast<float>(row) + 0.5f);
    EXPECT_GT(shownDb, 9.0f) << "at " << hz << " Hz";
    EXPECT_LT(shownDb, 12.5f) << "at " << hz << " Hz";
    const int peakColumnRow =
        brightestRow(static_cast<int>(peakX), static_cast<int>(peakY) - 20, static_cast<int>(peakY) + 20);
    EXPECT_NEAR(static_cast<float>(peakColumnRow), peakY, 10.0f) << "handle and curve sit at +12 dB";
}

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
        drawFrame(2);
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
