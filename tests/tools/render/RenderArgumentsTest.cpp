#include "tools/render/RenderArguments.h"
#include "tools/render/RenderError.h"

#include <gtest/gtest.h>

namespace velmoran::render
{
namespace
{

TEST(RenderArguments, TakesInputOutputAndSettingsInOrder)
{
    const RenderRequest request =
        parseArguments({"--preset", "03 - British EQ NV-3", "--set", "03 Gain=+6 dB",
                        "--set=03 Filt Type=Peak +3dB", "in.wav", "out.flac"});
    EXPECT_EQ(request.inputPath, "in.wav");
    EXPECT_EQ(request.outputPath, "out.flac");
    ASSERT_TRUE(request.preset.has_value());
    EXPECT_EQ(*request.preset, "03 - British EQ NV-3");
    ASSERT_EQ(request.assignments.size(), 2u);
    EXPECT_EQ(request.assignments[0].title, "03 Gain");
    EXPECT_EQ(request.assignments[0].value, "+6 dB");
    EXPECT_EQ(request.assignments[1].title, "03 Filt Type");
    EXPECT_EQ(request.assignments[1].value, "Peak +3dB");
    EXPECT_EQ(request.blockSize, 512);
}

TEST(RenderArguments, ReadsOutputFormatBlockSizeAndStateFiles)
{
    const RenderRequest request =
        parseArguments({"--block-size", "64", "--format", "AIFF", "--sample-format", "float", "--load-state",
                        "a.state", "--save-state=b.state", "--response", "r.png", "-q", "in.wav", "out.aif"});
    EXPECT_EQ(request.blockSize, 64);
    EXPECT_EQ(request.container, Container::aiff);
    EXPECT_EQ(request.encoding, Encoding::float32);
    EXPECT_EQ(request.loadStatePath, "a.state");
    EXPECT_EQ(request.saveStatePath, "b.state");
    EXPECT_EQ(request.responsePath, "r.png");
    EXPECT_TRUE(request.quiet);
}

TEST(RenderArguments, ResponseOrStateAloneNeedNoFiles)
{
    EXPECT_NO_THROW(parseArguments({"--preset", "1", "--response", "nv1.png"}));
    EXPECT_NO_THROW(parseArguments({"--preset", "1", "--save-state", "nv1.state"}));
    EXPECT_TRUE(parseArguments({"--help"}).help);
    EXPECT_EQ(parseArguments({"--demo-signal", "demo.wav"}).demoSignalPath, "demo.wav");
}

struct BadCommandLine
{
    std::vector<std::string> arguments;
    std::string named;
};

class RenderArgumentsRefuse : public testing::TestWithParam<BadCommandLine>
{
};

TEST_P(RenderArgumentsRefuse, WithAUsageErrorNamingTheCulprit)
{
    try
    {
        parseArguments(GetParam().arguments);
        FAIL() << "accepted a bad command line";
    }
    catch (const RenderError& error)
    {
        EXPECT_EQ(error.kind(), RenderError::Kind::usage);
        EXPECT_NE(std::string(error.what()).find(GetParam().named), std::string::npos) << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RenderArgumentsRefuse,
    testing::Values(BadCommandLine{{"--bogus", "a.wav", "b.wav"}, "--bogus"},
                    BadCommandLine{{"--block-size", "0", "a.wav", "b.wav"}, "1 to 8192"},
                    BadCommandLine{{"--block-size", "64k", "a.wav", "b.wav"}, "64k"},
                    BadCommandLine{{"--format", "mp3", "a.wav", "b.wav"}, "wav, aiff or flac"},
                    BadCommandLine{{"--sample-format", "12", "a.wav", "b.wav"}, "16, 24, 32 or float"},
                    BadCommandLine{{"--set", "03 Gain", "a.wav", "b.wav"}, "TITLE=VALUE"},
                    BadCommandLine{{"a.wav"}, "no output file"},
                    BadCommandLine{{"a.wav", "b.wav", "c.wav"}, "c.wav"},
                    BadCommandLine{{"a.wav", "a.wav"}, "overwrite the input"}, BadCommandLine{{}, "--help"},
                    BadCommandLine{{"a.wav", "b.wav", "--preset"}, "--preset needs a value"}));

TEST(RenderArguments, HelpShowsEveryOptionAndAnExample)
{
    const std::string help = helpText("velmoran-render");
    for (const char* option :
         {"--preset", "--set", "--load-state", "--save-state", "--block-size", "--plugin", "--response",
          "--format", "--sample-format", "--list-parameters", "--list-presets"})
    {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
    EXPECT_NE(help.find("velmoran-render --preset 3 mix.wav mix-nv3.wav"), std::string::npos);
}

} // namespace
} // namespace velmoran::render
