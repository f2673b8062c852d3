#include "RenderTestSupport.h"

#include "tools/render/AtomicFile.h"
#include "tools/render/RenderError.h"
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

TEST(ResponsePlot, ScriptDrawsBothCurvesOverTheAudioBandOnALogAxis)
{
    const std::string script = plotScript(bellCurves(0.0), "Velmoran: test", "/tmp/x.png");
    EXPECT_NE(script.find("set logscale x"), std::string::npos);
    EXPECT_NE(script.find("set xrange [20:20000]"), std::string::npos);
    EXPECT_NE(script.find("title 'designed'"), std::string::npos);
    EXPECT_NE(script.find("title 'measured through the plug-in'"), std::string::npos);
    EXPECT_EQ(script.find("measured, right"), std::string::npos);
    EXPECT_NE(script.find("set title 'Velmoran: test'"), std::string::npos);
}

TEST(ResponsePlot, ChannelsThatDifferGetACurveEach)
{
    const std::string script = plotScript(bellCurves(-3.0), "it's a title", "/tmp/x.png");
    EXPECT_NE(script.find("measured, left"), std::string::npos);
    EXPECT_NE(script.find("measured, right"), std::string::npos);
    EXPECT_NE(script.find("'it''s a title'"), std::string::npos);
}

TEST(ResponsePlot, WritesAPngImage)
{
    test::ScratchFolder folder;
    writeResponsePlot(bellCurves(0.0), "Velmoran: bell", folder.file("bell.png"));
    const std::vector<char> bytes = readFileBytes(folder.file("bell.png"));
    ASSERT_GT(bytes.size(), 1000u);
    EXPECT_EQ(std::string(bytes.begin() + 1, bytes.begin() + 4), "PNG");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"bell.png"});
}

TEST(ResponsePlot, AnUnwritablePathIsNamed)
{
    try
    {
        writeResponsePlot(bellCurves(0.0), "x", "/nonexistent-folder/plot.png");
        FAIL();
    }
    catch (const RenderError& error)
    {
        EXPECT_NE(std::string(error.what()).find("/nonexistent-folder/plot.png"), std::string::npos);
    }
}

} // namespace
} // namespace velmoran::render
