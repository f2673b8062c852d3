// Band curves, the summed responses, the handles and the graph's vertex buffers; a curve's
// anti-aliased stroke and its fill.

#include "editor/ResponseGraph.h"
#include "editor/ResponseCurve.h"
#include "support/FilterResponse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

using namespace velmoran::editor;
using velmoran::test::Design;
using velmoran::test::GainDbAt;

struct Band
{
    int type;
    float hz;
    float db;
    float q;
};

void SetBand(ResponseGraph& graph, int slot, const Band& band, unsigned routing = 0, bool active = true)
{
    graph.setBand(slot, band.hz, band.db, band.q, band.type, routing, active);
}

// Gain in dB that the drawn curve shows at pixel column x, between its two nearest points.
float CurveGainAt(const ResponseGraph& graph, const ResponseCurve& curve, float x)
{
    int k = 1;
    while (k < curve.size() - 1 && curve[k].x < x)
        ++k;
    const float t = (x - curve[k - 1].x) / (curve[k].x - curve[k - 1].x);
    return graph.gainForY(curve[k - 1].y + t * (curve[k].y - curve[k - 1].y));
}

using CurveAtHandleTest = ::testing::TestWithParam<std::tuple<Band, float>>;

// What the curve shows at the handle is what the design gives there at the graph's rate, set
// before or after the band, zoomed in or not. Pass filters keep their handle on 0 dB.
TEST_P(CurveAtHandleTest, ShowsTheDesignedGainAtTheHandle)
{
    const auto [band, rate] = GetParam();
    ResponseGraph graph;
    graph.layout();
    SetBand(graph, 4, band);
    graph.update();
    graph.setSampleRate(rate);
    graph.update();
    const double expectedDb = GainDbAt(Design(band.type, band.hz, band.db, band.q, rate), band.hz, rate);
    const GraphSlot& slot = graph.slot(4);
    EXPECT_NEAR(CurveGainAt(graph, graph.bandCurve(4), slot.handleX), expectedDb, 0.05);
    EXPECT_FLOAT_EQ(slot.handleY, graph.yForGain(band.type >= 9 ? 0.0f : band.db));

    graph.wheelZoom(6.0f, slot.handleX, slot.handleY);
    graph.update();
    EXPECT_NEAR(CurveGainAt(graph, graph.bandCurve(4), slot.handleX), expectedDb, 0.05);
}

INSTANTIATE_TEST_SUITE_P(Bands, CurveAtHandleTest,
                         ::testing::Values(std::tuple{Band{2, 1000.0f, 9.0f, 1.0f}, 44100.0f},
                                           std::tuple{Band{3, 120.0f, -12.0f, 4.0f}, 44100.0f},
                                           std::tuple{Band{6, 15000.0f, 15.0f, 0.5f}, 44100.0f},
                                           std::tuple{Band{7, 300.0f, 6.0f, 1.0f}, 48000.0f},
                                           std::tuple{Band{8, 6000.0f, -9.0f, 2.0f}, 96000.0f},
                                           std::tuple{Band{9, 2500.0f, 12.0f, 5.0f}, 44100.0f},
                                           std::tuple{Band{10, 80.0f, -6.0f, 0.3f}, 192000.0f},
                                           std::tuple{Band{11, 700.0f, 3.0f, 2.0f}, 44100.0f}));

// The editor may hand over every band on each paint: only a change costs a new curve.
TEST(BandCurve, IsEvaluatedAgainOnlyWhenSomethingChanged)
{
    ResponseGraph graph;
    graph.layout();
    SetBand(graph, 3, {4, 800.0f, -7.0f, 2.0f}, 1);
    graph.update();
    SetBand(graph, 3, {4, 800.0f, -7.0f, 2.0f}, 1);
    graph.setSampleRate(44100.0f);
    EXPECT_FALSE(graph.slot(3).dirty);
    SetBand(graph, 3, {4, 800.0f, -7.0f, 2.0f}, 2);
    EXPECT_TRUE(graph.slot(3).dirty);
}

struct RoutingCase
{
    unsigned routingA;
    bool activeA;
    unsigned routingB;
    bool secondSumDrawn;
    float shares[2][2]; // how much of A and of B each channel's sum takes
};

using SumTest = ::testing::TestWithParam<RoutingCase>;

// Each channel's sum adds the decibels of the bands routed to it, as the designs give them.
TEST_P(SumTest, AddsTheDecibelsOfTheBandsRoutedToEachChannel)
{
    const RoutingCase& c = GetParam();
    const Band a{2, 200.0f, 9.0f, 0.7f};
    const Band b{8, 3000.0f, -6.0f, 1.0f};
    ResponseGraph graph;
    graph.layout();
    SetBand(graph, 0, a, c.routingA, c.activeA);
    SetBand(graph, 5, b, c.routingB);
    graph.update();
    EXPECT_EQ(graph.drawsSecondSum(), c.secondSumDrawn);
    for (int k = 0; k < ResponseGraph::kPointCount; k += 23)
    {
        const float hz = graph.sumCurve(0)[k].frequencyHz;
        const double dbA = GainDbAt(Design(a.type, a.hz, a.db, a.q, 44100.0f), hz, 44100.0);
        const double dbB = GainDbAt(Design(b.type, b.hz, b.db, b.q, 44100.0f), hz, 44100.0);
        for (int channel : {0, 1})
            EXPECT_NEAR(graph.sumCurve(channel)[k].responseDb,
                        c.shares[channel][0] * dbA + c.shares[channel][1] * dbB, 1e-3)
                << channel << " " << hz;
    }
}

INSTANTIATE_TEST_SUITE_P(Routings, SumTest,
                         ::testing::Values(RoutingCase{0, true, 0, false, {{1, 1}, {1, 1}}},
                                           RoutingCase{1, true, 2, true, {{1, 0}, {0, 1}}},
                                           RoutingCase{0, true, 2, true, {{1, 0}, {1, 1}}},
                                           RoutingCase{2, true, 0, true, {{0, 1}, {1, 1}}},
                                           RoutingCase{0, false, 0, false, {{0, 1}, {0, 1}}}));

TEST(FirstFreeBand, IsTheLowestBandNotInUseAndNoneWhenAllTenAre)
{
    ResponseGraph graph;
    for (int band : {0, 1, 3})
        SetBand(graph, band, {2, 500.0f, 3.0f, 1.0f});
    EXPECT_EQ(graph.firstFreeBand(), 2);
    for (int band = 0; band < 10; ++band)
        SetBand(graph, band, {1, 500.0f, 0.0f, 1.0f}, 0, band % 2 == 0);
    graph.setFrequencyMarker(1000.0f, true);
    EXPECT_EQ(graph.firstFreeBand(), -1);
    SetBand(graph, 6, {0, 500.0f, 0.0f, 1.0f});
    EXPECT_EQ(graph.firstFreeBand(), 6);
}

// Of two handles in reach the lower slot wins; the hit selects it alone, lights it to half its
// alpha and restarts its drag at the handle.
TEST(HandleHit, TakesTheLowerSlotAndStartsItsGesture)
{
    ResponseGraph graph;
    graph.layout();
    SetBand(graph, 7, {2, 1000.0f, 2.0f, 1.0f});
    SetBand(graph, 3, {2, 1030.0f, 1.0f, 1.0f});
    ASSERT_EQ(graph.hitTest(graph.slot(7).handleX, graph.slot(7).handleY), 7);
    graph.setDragged(3, true);
    graph.setDragPosition(3, 10.0f, 10.0f);
    EXPECT_EQ(graph.hitTest((graph.slot(7).handleX + graph.slot(3).handleX) / 2.0f,
                            (graph.slot(7).handleY + graph.slot(3).handleY) / 2.0f),
              3);
    const GraphSlot& hit = graph.slot(3);
    EXPECT_TRUE(hit.selected && !hit.dragged && !graph.slot(7).selected);
    EXPECT_EQ(hit.highlight, 127u);
    EXPECT_EQ(hit.dragX, hit.handleX);
    EXPECT_EQ(hit.dragY, hit.handleY);
}

TEST(HandleHit, ReachesEightPixelsInclusiveAndOnlyVisibleSlots)
{
    ResponseGraph graph;
    graph.layout();
    SetBand(graph, 1, {2, 1000.0f, 0.0f, 1.0f});
    const float x = graph.slot(1).handleX;
    const float y = graph.slot(1).handleY;
    for (auto [dx, dy, slot] :
         {std::tuple{8.0f, 8.0f, 1}, std::tuple{-8.0f, 0.0f, 1}, std::tuple{0.0f, -8.0f, 1},
          std::tuple{8.1f, 0.0f, -1}, std::tuple{0.0f, -8.1f, -1}})
        EXPECT_EQ(graph.hitTest(x + dx, y + dy), slot) << dx << " " << dy;
    SetBand(graph, 1, {0, 1000.0f, 0.0f, 1.0f});
    EXPECT_EQ(graph.hitTest(x, y), -1);
    graph.setGainMarker(ResponseGraph::kOutputGainMarker, -3.0f);
    EXPECT_EQ(graph.hitTest(graph.slot(10).handleX, graph.yForGain(-3.0f)), 10) << "a gain marker is dragged";
    SetBand(graph, 1, {2, graph.slot(10).freqHz, -3.0f, 1.0f});
    EXPECT_EQ(graph.hitTest(graph.slot(10).handleX, graph.yForGain(-3.0f)), 1) << "a band lies over a marker";
}

// Zoomed in, a handle moved out of the plot is not drawn, so it cannot be taken from the margin.
TEST(HandleHit, NeverTakesAHandleOutsideThePlot)
{
    ResponseGraph graph;
    graph.layout();
    SetBand(graph, 4, {2, 1000.0f, 0.0f, 1.0f});
    const Rect plot = graph.plotRect();
    for (int step = 0; step < 10; ++step)
        graph.wheelZoom(1.0f, plot.x + 1.0f, plot.y + 1.0f);
    const GraphSlot& band = graph.slot(4);
    ASSERT_FALSE(plot.contains(band.handleX, band.handleY));
    EXPECT_EQ(graph.hitTest(band.handleX, band.handleY), -1);
    EXPECT_EQ(graph.hitTest(plot.right() + 1.0f, std::clamp(band.handleY, plot.y, plot.bottom())), -1);
}

// Frames after the first reuse the vertex buffers: no allocation while the user plays.
TEST(GraphFrames, RebuildCurvesInTheBuffersOfTheFirstFrame)
{
    ResponseGraph graph;
    graph.layout();
    graph.setSpectrumOn(true);
    std::vector<float> frame(2048, 0.01f);
    SetBand(graph, 0, {7, 100.0f, 6.0f, 1.0f});
    graph.setSpectrum(frame.data(), 2048, 44100.0f, 4096);
    graph.update();
    const ColouredVertex* bandStroke = graph.bandCurve(0).strokeVertices().data();
    const ColouredVertex* sumFill = graph.sumCurve(0).fillVertices().data();
    const ColouredVertex* spectrum = graph.spectrum().curve().strokeVertices().data();
    for (int step = 0; step < 30; ++step)
    {
        SetBand(graph, 0, {7 + step % 4, 100.0f + 500.0f * step, -18.0f + step, 0.3f + 0.1f * step});
        frame[step] = 0.5f;
        graph.setSpectrum(frame.data(), 2048, 44100.0f, 4096);
        graph.wheelZoom(step < 15 ? 1.0f : -1.0f, 400.0f, 300.0f);
        graph.update();
    }
    EXPECT_EQ(graph.bandCurve(0).strokeVertices().data(), bandStroke);
    EXPECT_EQ(graph.sumCurve(0).fillVertices().data(), sumFill);
    EXPECT_EQ(graph.spectrum().curve().strokeVertices().data(), spectrum);
}

constexpr Rgba kColour{200, 100, 50, 255};

struct Slope
{
    float dx;
    float dy;
};

using StrokeTest = ::testing::TestWithParam<Slope>;

// Solid vertices lie halfWidth from the line on either side, the transparent ones a pixel further.
TEST_P(StrokeTest, HasASolidCoreAndAOnePixelFeather)
{
    ResponseCurve curve(20);
    for (int k = 0; k < curve.size(); ++k)
    {
        curve[k].x = 100.0f + GetParam().dx * k;
        curve[k].y = 200.0f + GetParam().dy * k;
    }
    curve.buildStroke(kColour, 0.7f);
    ASSERT_EQ(curve.strokeVertices().size(), 19u * 18u);
    const float length = std::hypot(GetParam().dx, GetParam().dy);
    for (const ColouredVertex& v : curve.strokeVertices())
    {
        const float distance =
            std::fabs((v.x - 100.0f) * GetParam().dy - (v.y - 200.0f) * GetParam().dx) / length;
        EXPECT_NEAR(distance, v.colour.a == 0 ? 1.7f : 0.7f, 1e-3);
        EXPECT_TRUE(v.colour.a == 0 || v.colour.a == 255);
        EXPECT_EQ(v.colour.r, kColour.r);
    }
}

INSTANTIATE_TEST_SUITE_P(Lines, StrokeTest,
                         ::testing::Values(Slope{1.5f, 0.0f}, Slope{1.5f, 1.5f}, Slope{1.5f, -40.0f}));

// Where the curve passes 0 dB the fill splits, so no triangle reaches across the baseline.
TEST(CurveFill, StaysOnOneSideOfTheBaselinePerTriangle)
{
    ResponseCurve curve(9);
    const float levels[9] = {6.0f, 4.0f, 1.0f, -2.0f, -5.0f, -1.0f, 3.0f, 0.0f, -0.5f};
    for (int k = 0; k < curve.size(); ++k)
    {
        curve[k].x = 10.0f * k;
        curve[k].responseDb = levels[k];
        curve[k].y = 100.0f - 5.0f * levels[k];
    }
    curve.flagZeroCrossings();
    curve.buildFill(100.0f, kColour, kColour);
    const std::vector<ColouredVertex>& fill = curve.fillVertices();
    ASSERT_EQ(fill.size(), 8u * 6u);
    for (std::size_t i = 0; i < fill.size(); i += 3)
    {
        const bool above = fill[i].y < 100.0f || fill[i + 1].y < 100.0f || fill[i + 2].y < 100.0f;
        const bool below = fill[i].y > 100.0f || fill[i + 1].y > 100.0f || fill[i + 2].y > 100.0f;
        EXPECT_FALSE(above && below) << "triangle " << i / 3;
    }
}

} // namespace
