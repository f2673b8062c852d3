// The graph's axes: ranges that follow the sample rate, the frozen layout, zoom and pan; grid lines
// and labels of both axes and of the spectrum scale, as built and as drawn.

#include "editor/GraphGrid.h"
#include "editor/RecordingPainter.h"
#include "editor/ResponseGraph.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace
{

using namespace velmoran::editor;
using velmoran::test::RecordingPainter;

struct RateTop
{
    float sampleRate;
    float requestedTopHz;
    float topHz;
};

using AxisTopTest = ::testing::TestWithParam<RateTop>;

// The axis ends 50 Hz below Nyquist at most. A host rate under 44.1 kHz (32 kHz would give
// 15,950 Hz) is taken as 44.1 kHz, and rates above 192 kHz as 192 kHz.
TEST_P(AxisTopTest, StaysBelowNyquistOfTheClampedRate)
{
    ResponseGraph graph;
    graph.setSampleRate(GetParam().sampleRate);
    graph.setFrequencyRange(10.0f, GetParam().requestedTopHz);
    graph.layout();
    EXPECT_FLOAT_EQ(graph.axes().fullMaxHz(), GetParam().topHz);
    EXPECT_NEAR(graph.frequencyForX(graph.plotRect().right() - 2.0f), GetParam().topHz, 0.05);
}

INSTANTIATE_TEST_SUITE_P(
    Rates, AxisTopTest,
    ::testing::Values(RateTop{44100.0f, 22000.0f, 22000.0f}, RateTop{32000.0f, 22000.0f, 22000.0f},
                      RateTop{std::numeric_limits<float>::quiet_NaN(), 22000.0f, 22000.0f},
                      RateTop{44100.0f, 1e6f, 22000.0f}, RateTop{48000.0f, 1e6f, 23950.0f},
                      RateTop{96000.0f, 1e6f, 47950.0f}, RateTop{384000.0f, 1e6f, 95950.0f}));

TEST(GraphRanges, AreFrozenByTheFirstLayoutButNeverReachNyquist)
{
    ResponseGraph graph;
    graph.setSampleRate(96000.0f);
    graph.setFrequencyRange(0.01f, 40000.0f);
    graph.setGainRange(-30.0f, 30.0f);
    graph.layout();
    EXPECT_FLOAT_EQ(graph.axes().fullMinHz(), 0.1f);
    graph.setFrequencyRange(20.0f, 20000.0f);
    graph.setGainRange(-12.0f, 12.0f);
    EXPECT_FLOAT_EQ(graph.axes().fullMaxHz(), 40000.0f);
    EXPECT_FLOAT_EQ(graph.axes().fullMaxDb(), 30.0f);
    EXPECT_EQ(graph.frequencyGrid().back().hz, 40000.0f);

    graph.setSampleRate(44100.0f);
    EXPECT_FLOAT_EQ(graph.axes().fullMaxHz(), 22000.0f);
    EXPECT_EQ(graph.frequencyGrid().back().hz, 20000.0f);
}

// Mouse position as fractions of the plot's width and height.
struct MousePoint
{
    float x;
    float y;
};

using WheelTest = ::testing::TestWithParam<MousePoint>;

// At zoom 2 the plot shows half the full gain range. The value under the mouse stays put until a pan
// limit holds it; zoom stays within 1..2 and the view within the full ranges.
TEST_P(WheelTest, ZoomsAboutTheMouseWithinTheLimits)
{
    ResponseGraph graph;
    graph.layout();
    const Rect plot = graph.plotRect();
    const float x = plot.x + GetParam().x * plot.width;
    const float y = plot.y + GetParam().y * plot.height;
    const bool insidePlot =
        GetParam().x > 0.0f && GetParam().x < 1.0f && GetParam().y > 0.0f && GetParam().y < 1.0f;
    const float hz = graph.frequencyForX(x);
    const float db = graph.gainForY(y);
    for (float delta : {3.0f, 2.0f, -1.0f})
    {
        graph.wheelZoom(delta, x, y);
        if (insidePlot)
        {
            EXPECT_NEAR(graph.frequencyForX(x) / hz, 1.0f, 1e-4) << delta;
            EXPECT_NEAR(graph.gainForY(y), db, 1e-3) << delta;
        }
    }
    for (float delta : {4.0f, 7.0f})
        graph.wheelZoom(delta, x, y);
    const GraphAxes& axes = graph.axes();
    EXPECT_FLOAT_EQ(graph.zoom(), 2.0f);
    EXPECT_FLOAT_EQ(graph.gainForY(plot.y + 2.0f) - graph.gainForY(plot.bottom() - 2.0f), 24.0f);
    EXPECT_GE(axes.viewMinHz(), axes.fullMinHz() * 0.9999f);
    EXPECT_LE(axes.viewMaxHz(), axes.fullMaxHz() * 1.0001f);
    EXPECT_GE(axes.viewMinDb(), -24.0001f);
    EXPECT_LE(axes.viewMaxDb(), 24.0001f);

    graph.wheelZoom(-20.0f, x, y);
    EXPECT_FLOAT_EQ(graph.zoom(), 1.0f);
    EXPECT_EQ(axes.panX(), 0.0f);
    EXPECT_EQ(axes.panY(), 0.0f);
}

INSTANTIATE_TEST_SUITE_P(Positions, WheelTest,
                         ::testing::Values(MousePoint{0.5f, 0.5f}, MousePoint{0.1f, 0.9f},
                                           MousePoint{0.97f, 0.03f}, MousePoint{0.0f, 0.0f},
                                           MousePoint{1.0f, 1.0f}, MousePoint{-0.2f, 1.3f}));

std::vector<std::string> LabelsOf(const std::vector<FrequencyGridLine>& lines)
{
    std::vector<std::string> labels;
    for (const FrequencyGridLine& line : lines)
        if (line.label != " ")
            labels.push_back(line.label);
    return labels;
}

TEST(FrequencyGrid, HasALineAtEveryMultipleOfAPowerOfTenAndLabelsThePowers)
{
    const std::vector<FrequencyGridLine> lines = frequencyGridLines(10.0f, 22000.0f);
    EXPECT_EQ(LabelsOf(lines), (std::vector<std::string>{"10", "100", "1k", "10k"}));
    ASSERT_EQ(lines.size(), 29u); // 10..90, 100..900, 1k..9k, 10k, 20k
    EXPECT_EQ(lines[1].hz, 20.0f);
    EXPECT_EQ(lines.back().hz, 20000.0f);
    // From 0.1 Hz the lines start at the first whole hertz.
    EXPECT_EQ(LabelsOf(frequencyGridLines(0.1f, 95950.0f)),
              (std::vector<std::string>{"1", "10", "100", "1k", "10k"}));
}

TEST(GainGrid, LabelsEverySixDecibelsWithTheSpectrumScaleBeside)
{
    std::vector<std::string> labels;
    std::vector<std::string> spectrumLabels;
    for (const GainGridLine& line : gainGridLines(-24.0f, 24.0f))
    {
        labels.push_back(line.label);
        spectrumLabels.push_back(line.spectrumLabel);
    }
    EXPECT_EQ(labels,
              (std::vector<std::string>{"-24", "-18", "-12", "-6", "0dB", "+6", "+12", "+18", "+24"}));
    EXPECT_EQ(spectrumLabels,
              (std::vector<std::string>{"-72", "-63", "-54", "-45", "-36", "-27", "-18", "-9", "0dB"}));
}

// Labels stand beside their lines; the spectrum scale shows only with the spectrum.
TEST(GraphLabels, AreDrawnBesideTheirLines)
{
    ResponseGraph graph;
    graph.layout();
    RecordingPainter painter;
    graph.draw(painter);
    const RecordingPainter::Text kilohertz = painter.textsEqualTo("1k").front();
    EXPECT_NEAR(kilohertz.x, graph.xForFrequency(1000.0f), 12.0f);
    EXPECT_GT(kilohertz.y, graph.plotRect().bottom());
    const RecordingPainter::Text unity = painter.textsEqualTo("0dB").front();
    EXPECT_NEAR(unity.y, graph.yForGain(0.0f), 8.0f);
    EXPECT_LT(unity.x, graph.plotRect().x);
    EXPECT_FALSE(painter.drewText("-36"));

    const float frame[4] = {0.0f, 0.01f, 0.01f, 0.0f};
    graph.setSpectrumOn(true);
    graph.setSpectrum(frame, 4, 44100.0f, 8);
    graph.update();
    painter.clear();
    graph.draw(painter);
    ASSERT_TRUE(painter.drewText("-36"));
    EXPECT_GT(painter.textsEqualTo("-36").front().x, graph.plotRect().right());
}

} // namespace
