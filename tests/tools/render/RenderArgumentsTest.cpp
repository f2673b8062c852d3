#include "RenderTestSupport.h"

#include "tools/render/RenderArguments.h"

#include <gtest/gtest.h>

namespace velmoran::render
{
namespace
{

using test::contains;

TEST(RenderArguments, TakesFilesSettingsAndOptionsInOrder)
{
    RenderRequest request = parseArguments({"--preset", "03 - British EQ NV-3", "--set", "03 Gain=+6 dB",
                                            "--set=03 Filt Type=Peak +3dB", "in.wav", "out.flac"});
    EXPECT_EQ(request.inputPath, "in.wav");
    EXPECT_EQ(request.outputPath, "out.flac");
    EXPECT_EQ(request.preset.value_or(""), "03 - British EQ NV-3");
    ASSERT_EQ(request.assignments.size(), 2u);
    EXPECT_EQ(request.assignments[0].title + "|" + request.assignments[0].value, "03 Gain|+6 dB");
    EXPECT_EQ(request.assignments[1].title + "|" + request.assignments[1].value, "03 Filt Type|Peak +3dB");
    EXPECT_EQ(request.blockSize, 512);

    request = parseArguments({"--block-size", "64", "--format", "AIFF", "--sample-format", "float",
                              "--load-state", "a.state", "--save-state=b.state", "--response", "r.png", "-q",
                              "--dither", "none", "--allow-truncated", "in.wav", "out.aif"});
    EXPECT_EQ(request.blockSize, 64);
    EXPECT_EQ(request.container, Container::aiff);
    EXPECT_EQ(request.encoding, Encoding::float32);
    EXPECT_EQ(request.loadStatePath, "a.state");
    EXPECT_EQ(request.saveStatePath, "b.state");
    EXPECT_EQ(request.responsePath, "r.png");
    EXPECT_TRUE(request.quiet);
    EXPECT_EQ(request.dither, Dither::none);
    EXPECT_TRUE(request.allowTruncated);
    // An output of unknown extension is fine when --format names the container; - is standard output.
    EXPECT_EQ(parseArguments({"--format", "flac", "in.wav", "out.take2"}).container, Container::flac);
    EXPECT_EQ(parseArguments({"in.wav", "-"}).outputPath, "-");
}

// Help and the demo signal alone are run by the tool's own test.
TEST(RenderArguments, ResponseOrStateAloneNeedNoFiles)
{
    EXPECT_NO_THROW(parseArguments({"--preset", "1", "--response", "nv1.png"}));
    EXPECT_NO_THROW(parseArguments({"--preset", "1", "--save-state", "nv1.state"}));
}

// A bad command line is a usage error whose message names the culprit (more cases, run through
// the tool, in RenderToolTest.cpp).
TEST(RenderArguments, RefusesBadCommandLines)
{
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--block-size", "0", "a.wav", "b.wav"}, "1 to 8192"},
        {{"--block-size", "64k", "a.wav", "b.wav"}, "64k"},
        {{"--sample-format", "12", "a.wav", "b.wav"}, "16, 24, 32 or float"},
        {{"--set", "03 Gain", "a.wav", "b.wav"}, "TITLE=VALUE"},
        {{"a.wav"}, "no output file"},
        {{"a.wav", "b.wav", "c.wav"}, "c.wav"},
        {{"--response", "", "a.wav", "b.wav"}, "--response needs a value, not an empty one"},
        {{"--block-size", "64", "--block-size", "64", "a.wav", "b.wav"}, "--block-size is given twice"},
        {{"--dither", "rect", "a.wav", "b.wav"}, "--dither takes tpdf or none"},
        {{}, "--help"},
        {{"a.wav", "b.wav", "--preset"}, "--preset needs a value"},
    };
    for (const auto& [arguments, named] : cases)
    {
        SCOPED_TRACE(named);
        const test::Thrown thrown = test::thrownBy([&] { parseArguments(arguments); });
        EXPECT_EQ(thrown.kind, RenderError::Kind::usage);
        EXPECT_TRUE(contains(thrown.message, named));
    }
}

TEST(RenderArguments, HelpShowsEveryOptionAndAnExample)
{
    const std::string help = helpText("velmoran-render");
    for (const char* option :
         {"--preset", "--set", "--load-state", "--save-state", "--block-size", "--plugin", "--response",
          "--format", "--sample-format", "--list-parameters", "--list-presets", "--dither tpdf|none",
          "--allow-truncated", "standard output", "velmoran-render --preset 3 mix.wav mix-nv3.wav"})
        EXPECT_TRUE(contains(help, option));
}

} // namespace
} // namespace velmoran::render
