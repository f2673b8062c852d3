// Grid lines and labels of both axes and of the spectrum scale, as built and as drawn.

#include "editor/GraphGrid.h"
#include "editor/RecordingPainter.h"
#include "editor/ResponseGraph.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace
{

using namespace velmoran::editor;
using velmoran::test::RecordingPainter;

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

constexpr Rgba kOrange{255, 176, 0, 255};
constexpr Rgba kGrey{159, 159, 159, 255};

std::tuple<int, int, int, int> Components(Rgba colour)
{
    return {colour.r, colour.g, colour.b, colour.a};
}

TEST(GainGrid, LabelsEverySixDecibelsWithTheSpectrumScaleBeside)
{
    struct Row
    {
        float db;
        const char* label;
        Rgba colour;
        const char* spectrumLabel;
    };
    const std::vector<Row> expected = {
        {-24.0f, "-24", kGrey, "-72"}, {-18.0f, "-18", kGrey, "-63"}, {-12.0f, "-12", kGrey, "-54"},
        {-6.0f, "-6", kOrange, "-45"}, {0.0f, "0dB", kOrange, "-36"}, {6.0f, "+6", kOrange, "-27"},
        {12.0f, "+12", kGrey, "-18"},  {18.0f, "+18", kGrey, "-9"},   {24.0f, "+24", kGrey, "0dB"}};
    const std::vector<GainGridLine> lines = gainGridLines(-24.0f, 24.0f);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        EXPECT_EQ(lines[i].db, expected[i].db);
        EXPECT_EQ(lines[i].label, expected[i].label);
        EXPECT_EQ(Components(lines[i].labelColour), Components(expected[i].colour)) << lines[i].label;
        EXPECT_EQ(lines[i].spectrumLabel, expected[i].spectrumLabel);
    }
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
    EXPECT_EQ(Components(unity.style.colour), Components(kOrange));
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
