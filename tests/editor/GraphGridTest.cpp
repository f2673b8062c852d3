// Grid lines and labels of both axes and of the spectrum scale, as built and as drawn.

#include "editor/GraphGrid.h"
#include "editor/RecordingPainter.h"
#include "editor/ResponseGraph.h"

#include <gtest/gtest.h>

#include <string>
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
