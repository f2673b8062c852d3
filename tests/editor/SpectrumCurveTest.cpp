// The live spectrum as the graph draws it: where a tone's peak lands, the level scale, the slope
// and the fade when it is switched off.

#include "editor/RecordingPainter.h"
#include "editor/ResponseGraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

using namespace velmoran::editor;
using velmoran::test::RecordingPainter;

// The solid spectrum vertices a draw left behind.
std::vector<ColouredVertex> SpectrumVertices(const ResponseGraph& graph)
{
    RecordingPainter painter;
    graph.draw(painter);
    std::vector<ColouredVertex> found;
    for (const ColouredVertex& v : painter.triangles)
        if (v.colour.r == SpectrumCurve::kColour.r && v.colour.g == SpectrumCurve::kColour.g &&
            v.colour.b == SpectrumCurve::kColour.b && v.colour.a > 0)
            found.push_back(v);
    return found;
}

// The level the spectrum curve shows at the point nearest `hz`.
float LevelNear(const ResponseGraph& graph, float hz)
{
    const ResponseCurve& curve = graph.spectrum().curve();
    const auto distance = [hz](const CurvePoint& p) { return std::fabs(std::log(p.frequencyHz / hz)); };
    return std::min_element(&curve[0], &curve[0] + curve.size(),
                            [&](const CurvePoint& a, const CurvePoint& b)
                            { return distance(a) < distance(b); })
        ->responseDb;
}

struct PeakCase
{
    float sampleRate;
    int transformSize;
    int bin;
};

using SpectrumPeakTest = ::testing::TestWithParam<PeakCase>;

TEST_P(SpectrumPeakTest, DrawsAPeakBinAtTheXOfItsFrequency)
{
    const PeakCase& c = GetParam();
    std::vector<float> frame(2048, 0.0f);
    frame[c.bin] = 0.5f;
    ResponseGraph graph;
    graph.layout();
    graph.setSpectrumOn(true);
    graph.setSpectrum(frame.data(), 2048, c.sampleRate, c.transformSize);
    graph.update();
    const std::vector<ColouredVertex> vertices = SpectrumVertices(graph);
    ASSERT_FALSE(vertices.empty());
    const float binHz = c.bin * c.sampleRate / c.transformSize;
    const auto highest =
        std::min_element(vertices.begin(), vertices.end(),
                         [](const ColouredVertex& a, const ColouredVertex& b) { return a.y < b.y; });
    EXPECT_NEAR(highest->x, graph.xForFrequency(binHz), 3.0f) << binHz;
}

INSTANTIATE_TEST_SUITE_P(Bins, SpectrumPeakTest,
                         ::testing::Values(PeakCase{44100.0f, 4096, 12}, PeakCase{44100.0f, 4096, 93},
                                           PeakCase{44100.0f, 4096, 1500}, PeakCase{96000.0f, 8192, 40},
                                           PeakCase{96000.0f, 8192, 1800}));

// The spectrum scale puts -36 dB on the row of 0 dB gain; with the slope a flat spectrum rises
// 3 dB per octave and stays put at 1 kHz.
TEST(SpectrumLevels, FollowTheScaleAndTheSlope)
{
    const std::vector<float> flat(2048, std::pow(10.0f, -36.0f / 20.0f));
    ResponseGraph graph;
    graph.layout();
    graph.setSpectrumOn(true);
    graph.setSpectrum(flat.data(), 2048, 44100.0f, 4096);
    graph.update();
    const ResponseCurve& curve = graph.spectrum().curve();
    EXPECT_NEAR(curve[200].y, graph.yForGain(0.0f), 0.1f);
    EXPECT_NEAR(LevelNear(graph, 4000.0f), -36.0f, 0.01f);

    graph.setSpectrumSlope(true);
    graph.update();
    EXPECT_NEAR(LevelNear(graph, 1000.0f), -36.0f, 0.05f);
    EXPECT_NEAR(LevelNear(graph, 4000.0f), -30.0f, 0.05f);
    EXPECT_NEAR(LevelNear(graph, 125.0f), -45.0f, 0.05f);
}

// Switched off, the spectrum ignores frames and fades out over a few frames; switched on again it
// shows nothing stale and waits for the analyser's next frame.
TEST(SpectrumSwitch, FadesOutWhenOffAndWaitsForAFreshFrameWhenOn)
{
    const std::vector<float> frame(2048, 0.05f);
    ResponseGraph graph;
    graph.layout();
    graph.setSpectrum(frame.data(), 2048, 44100.0f, 4096);
    graph.update();
    EXPECT_TRUE(SpectrumVertices(graph).empty());
    graph.setSpectrumOn(true);
    graph.setSpectrum(frame.data(), 2048, 44100.0f, 4096);
    EXPECT_FALSE(graph.update());
    ASSERT_FALSE(SpectrumVertices(graph).empty());

    graph.setSpectrumOn(false);
    int frames = 0;
    for (; graph.update(); ++frames)
        EXPECT_FALSE(SpectrumVertices(graph).empty());
    EXPECT_GE(frames, 2);
    EXPECT_LE(frames, 6);
    EXPECT_TRUE(SpectrumVertices(graph).empty());

    // Back on in the middle of a fade.
    graph.setSpectrumOn(true);
    graph.setSpectrum(frame.data(), 2048, 44100.0f, 4096);
    graph.update();
    graph.setSpectrumOn(false);
    graph.update();
    graph.setSpectrumOn(true);
    graph.update();
    EXPECT_TRUE(SpectrumVertices(graph).empty());
    graph.setSpectrum(frame.data(), 2048, 44100.0f, 4096);
    graph.update();
    EXPECT_FALSE(SpectrumVertices(graph).empty());
}

} // namespace
