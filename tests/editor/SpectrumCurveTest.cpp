// The live spectrum as the graph draws it: a sine read at its level and frequency, the slope and
// the fade when it is switched off.

#include "editor/RecordingPainter.h"
#include "editor/ResponseGraph.h"

#include "dsp/SpectrumAnalyser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
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

// What the graph shows of a sine of the given peak level (dBFS) and frequency, analysed as the
// engine analyses it until the display has settled.
ResponseGraph GraphOfSine(float levelDbfs, float hz, float rate, bool sloped)
{
    velmoran::dsp::SpectrumAnalyser analyser;
    analyser.setSampleRate(rate);
    const float amplitude = std::pow(10.0f, levelDbfs / 20.0f);
    std::vector<float> sine(static_cast<std::size_t>(2 * rate));
    for (std::size_t i = 0; i < sine.size(); ++i)
        sine[i] = amplitude * static_cast<float>(std::sin(2.0 * 3.14159265358979 * hz * i / rate));
    analyser.feed(sine.data(), static_cast<int>(sine.size()));
    ResponseGraph graph;
    graph.layout();
    graph.setSpectrumOn(true);
    graph.setSpectrumSlope(sloped);
    graph.setSpectrum(analyser.magnitudes(), velmoran::dsp::SpectrumAnalyser::kBinCount,
                      analyser.sampleRate(), analyser.size());
    graph.update();
    return graph;
}

// The highest level the curve reaches within a sixth of an octave of hz: the peak a user reads.
float PeakNear(const ResponseGraph& graph, float hz)
{
    const ResponseCurve& curve = graph.spectrum().curve();
    float peak = -200.0f;
    for (int k = 0; k < curve.size(); ++k)
        if (std::fabs(std::log2(curve[k].frequencyHz / hz)) < 1.0f / 6.0f)
            peak = std::max(peak, curve[k].responseDb);
    return peak;
}

struct SineCase
{
    float levelDbfs;
    float hz;
    float rate;
};

using SpectrumCalibration = ::testing::TestWithParam<SineCase>;

// With the slope flat a sine's peak reads its own level on the 0 .. -72 dB scale, and is drawn
// highest at the x of its frequency.
TEST_P(SpectrumCalibration, ASineReadsItsLevelAtItsFrequency)
{
    const SineCase& c = GetParam();
    const ResponseGraph graph = GraphOfSine(c.levelDbfs, c.hz, c.rate, false);
    EXPECT_NEAR(PeakNear(graph, c.hz), c.levelDbfs, 1.0f);
    const std::vector<ColouredVertex> vertices = SpectrumVertices(graph);
    ASSERT_FALSE(vertices.empty());
    const auto highest =
        std::min_element(vertices.begin(), vertices.end(),
                         [](const ColouredVertex& a, const ColouredVertex& b) { return a.y < b.y; });
    EXPECT_NEAR(graph.frequencyForX(highest->x) / c.hz, 1.0f, 0.05f);
}

INSTANTIATE_TEST_SUITE_P(
    Sines, SpectrumCalibration,
    ::testing::Values(SineCase{-6.0f, 1000.0f, 48000.0f}, SineCase{-12.0f, 1000.0f, 48000.0f},
                      SineCase{-24.0f, 100.0f, 44100.0f}, SineCase{-36.0f, 5000.0f, 96000.0f},
                      SineCase{-48.0f, 12000.0f, 48000.0f}, SineCase{-12.0f, 250.0f, 192000.0f}));

// The 3 dB per octave slope pivots at 1 kHz: a tone there reads the same, two octaves up 6 dB
// more, three octaves down 9 dB less.
TEST(SpectrumLevels, TheSlopePivotsAtOneKilohertz)
{
    for (const auto& [hz, tiltDb] :
         {std::pair{1000.0f, 0.0f}, std::pair{4000.0f, 6.0f}, std::pair{125.0f, -9.0f}})
    {
        const float flat = PeakNear(GraphOfSine(-24.0f, hz, 48000.0f, false), hz);
        EXPECT_NEAR(PeakNear(GraphOfSine(-24.0f, hz, 48000.0f, true), hz) - flat, tiltDb, 0.25f) << hz;
    }
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
