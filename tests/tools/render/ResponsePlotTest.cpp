#include "RenderTestSupport.h"

#include "tools/render/ResponsePlot.h"

#include <gtest/gtest.h>

#include <cmath>

namespace velmoran::render
{
namespace
{

// A bell of +6 dB at 1 kHz on the measured curve; the right channel as given.
ResponseCurves bellCurves(double rightOffsetDb)
{
    ResponseCurves curves;
    curves.frequenciesHz = responseFrequencies(48000.0);
    for (double frequency : curves.frequenciesHz)
    {
        const double octaves = std::log2(frequency / 1000.0);
        const double bell = 6.0 * std::exp(-octaves * octaves);
        curves.measuredDb[0].push_back(bell);
        curves.measuredDb[1].push_back(bell + rightOffsetDb);
        curves.designedDb[0].push_back(bell);
        curves.designedDb[1].push_back(bell);
    }
    return curves;
}

// Designed and measured curves over the audio band on a log axis under the title (quotes doubled);
// channels that differ get a measured curve each.
TEST(ResponsePlot, ScriptDrawsTheCurvesOverTheAudioBandOnALogAxis)
{
    const std::string same = plotScript(bellCurves(0.0), "x", "/tmp/x.png");
    for (const char* part : {"set logscale x", "set xrange [20:20000]", "title 'designed'",
                             "title 'measured through the plug-in'"})
        EXPECT_TRUE(test::contains(same, part));
    EXPECT_EQ(same.find("measured, right"), std::string::npos);
    const std::string differing = plotScript(bellCurves(-3.0), "it's a title", "/tmp/x.png");
    for (const char* part : {"measured, left", "measured, right", "'it''s a title'"})
        EXPECT_TRUE(test::contains(differing, part));
}

} // namespace
} // namespace velmoran::render
