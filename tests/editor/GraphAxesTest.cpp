// The graph's axes: ranges that follow the sample rate, the frozen layout, zoom and pan.

#include "editor/ResponseGraph.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using velmoran::editor::GraphAxes;
using velmoran::editor::Rect;
using velmoran::editor::ResponseGraph;

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

// Unzoomed the plot shows the full gain range, at zoom 2 half of it. The value under the mouse stays
// put until a pan limit holds it; zoom stays within 1..2 and the view within the full ranges.
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
    EXPECT_FLOAT_EQ(graph.gainForY(plot.y + 2.0f), 24.0f);
    EXPECT_FLOAT_EQ(graph.gainForY(plot.bottom() - 2.0f), -24.0f);
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

} // namespace
