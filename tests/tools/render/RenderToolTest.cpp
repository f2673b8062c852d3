// The velmoran-render program run as a user runs it, on files made for each test.

#include "RenderTestSupport.h"

#include "tools/render/AtomicFile.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace velmoran::test
{
namespace
{

using render::readFileBytes;
using render::writeFileBytes;

struct NullCase
{
    const char* name;
    int format;
    int channels;
    int sampleRate;
};

class RenderToolNull : public testing::TestWithParam<NullCase>
{
};

TEST_P(RenderToolNull, EffectOutReturnsTheInputBitForBit)
{
    const NullCase& format = GetParam();
    ScratchFolder folder;
    writeSound(folder.file("in"), busySignal(1.0, format.sampleRate, format.channels), format.format,
               format.sampleRate, format.channels);
    const ToolRun run =
        runTool({"--set", "EQ=Out", "--block-size", "300", folder.file("in"), folder.file("out")});
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    const Sound input = readSound(folder.file("in"));
    const Sound output = readSound(folder.file("out"));
    EXPECT_EQ(output.info.format, format.format);
    EXPECT_EQ(output.info.sampleRate, format.sampleRate);
    EXPECT_EQ(output.info.channels, format.channels);
    EXPECT_EQ(output.samples, input.samples);
}

INSTANTIATE_TEST_SUITE_P(Formats, RenderToolNull,
                         testing::Values(NullCase{"wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 44100},
                                         NullCase{"wav24mono", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 1, 48000},
                                         NullCase{"wavfloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 96000},
                                         NullCase{"aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 2, 48000},
                                         NullCase{"flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 44100}),
                         [](const testing::TestParamInfo<NullCase>& info) { return info.param.name; });

struct PeakCase
{
    const char* name;
    const char* type;
    int sampleRate;
};

class RenderToolPeak : public testing::TestWithParam<PeakCase>
{
};

TEST_P(RenderToolPeak, SixDecibelBandAtOneKilohertzMeasuresSixDecibels)
{
    ScratchFolder folder;
    const int rate = GetParam().sampleRate;
    writeSound(folder.file("sine.wav"), sine(1000.0, -20.0, 2.0, rate, 2), SF_FORMAT_WAV | SF_FORMAT_FLOAT,
               rate, 2);
    const ToolRun run = runTool({"--set", "Input Gain=0 dB", "--set", "Output Gain=0 dB", "--set",
                                 std::string("06 Filt Type=") + GetParam().type, "--set", "06 Freq=1000 Hz",
                                 "--set", "06 Gain=+6 dB", folder.file("sine.wav"), folder.file("out.wav")});
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    const Sound input = readSound(folder.file("sine.wav"));
    const Sound output = readSound(folder.file("out.wav"));
    const size_t settled = static_cast<size_t>(rate) / 2;
    for (int channel = 0; channel < 2; ++channel)
    {
        EXPECT_NEAR(rmsDb(output, channel, settled) - rmsDb(input, channel, settled), 6.0, 0.1);
    }
}

INSTANTIATE_TEST_SUITE_P(Peaks, RenderToolPeak,
                         testing::Values(PeakCase{"HalfGain48k", "Pk dB/2", 48000},
                                         PeakCase{"Minus3Db44k", "Peak -3dB", 44100},
                                         PeakCase{"Plus3Db96k", "Peak +3dB", 96000}),
                         [](const testing::TestParamInfo<PeakCase>& info) { return info.param.name; });

TEST(RenderTool, SavedStateRendersIdentically)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), busySignal(1.5, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_24, 48000, 2);
    const ToolRun first = runTool({"--preset", "03 - British EQ NV-3", "--set", "07 Filt Type=Band Pass",
                                   "--set", "07 Mode=Right", "--save-state", folder.file("nv3.state"),
                                   folder.file("in.wav"), folder.file("first.wav")});
    ASSERT_EQ(first.exitCode, 0) << first.errors;
    EXPECT_EQ(readFileBytes(folder.file("nv3.state")).size(), 276u);
    const ToolRun second =
        runTool({"--load-state", folder.file("nv3.state"), folder.file("in.wav"), folder.file("second.wav")});
    ASSERT_EQ(second.exitCode, 0) << second.errors;
    const Sound input = readSound(folder.file("in.wav"));
    const Sound firstOutput = readSound(folder.file("first.wav"));
    EXPECT_EQ(readSound(folder.file("second.wav")).samples, firstOutput.samples);
    EXPECT_NE(firstOutput.samples, input.samples);
}

TEST(RenderTool, BlockSizeDoesNotChangeTheResult)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), busySignal(0.5, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 2);
    ASSERT_EQ(runTool({"--preset", "1", "--block-size", "64", folder.file("in.wav"), folder.file("a.wav")})
                  .exitCode,
              0);
    ASSERT_EQ(runTool({"--preset", "1", "--block-size", "4096", folder.file("in.wav"), folder.file("b.wav")})
                  .exitCode,
              0);
    EXPECT_EQ(readSound(folder.file("a.wav")).samples, readSound(folder.file("b.wav")).samples);
}

struct BadRun
{
    const char* name;
    std::vector<std::string> arguments;
    const char* message;
    int exitCode;
};

class RenderToolRefuses : public testing::TestWithParam<BadRun>
{
};

TEST_P(RenderToolRefuses, WithAClearMessageAndNoOutputFile)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), sine(440.0, -12.0, 0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
               48000, 2);
    std::vector<std::string> arguments;
    for (const std::string& argument : GetParam().arguments)
    {
        arguments.push_back(argument.rfind("@", 0) == 0 ? folder.file(argument.substr(1)) : argument);
    }
    const ToolRun run = runTool(arguments);
    EXPECT_EQ(run.exitCode, GetParam().exitCode) << run.errors;
    EXPECT_NE(run.errors.find(GetParam().message), std::string::npos) << run.errors;
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RenderToolRefuses,
    testing::Values(
        BadRun{"UnknownTitle",
               {"--set", "03 Gian=+6 dB", "@in.wav", "@out.wav"},
               "unknown parameter \"03 Gian\"",
               2},
        BadRun{"GainOutOfRange",
               {"--set", "03 Gain=+30 dB", "@in.wav", "@out.wav"},
               "\"+30 dB\" is outside the range of \"03 Gain\": give a value from -18.00 dB to 18.00 dB",
               2},
        BadRun{"UnknownFilterType",
               {"--set", "03 Filt Type=Peak +6dB", "@in.wav", "@out.wav"},
               "one of: [ --- ], No Filter, Pk dB/2",
               2},
        BadRun{
            "UnknownPreset", {"--preset", "British", "@in.wav", "@out.wav"}, "unknown preset \"British\"", 2},
        BadRun{"UnknownOption", {"--gain", "3", "@in.wav", "@out.wav"}, "unknown option '--gain'", 2},
        BadRun{
            "FlacFloat", {"--sample-format", "float", "@in.wav", "@out.flac"}, "FLAC cannot hold float", 2},
        BadRun{"SettingsBeforeFiles",
               {"--set", "03 Gian=+6 dB", "@missing.wav", "@out.wav"},
               "unknown parameter \"03 Gian\"",
               2},
        BadRun{"MissingInput", {"@missing.wav", "@out.wav"}, "missing.wav': No such file or directory", 1},
        BadRun{"MissingState", {"@in.wav", "@out.wav", "--load-state", "@none.state"}, "none.state", 1},
        BadRun{"OutputFolderMissing", {"@in.wav", "@nowhere/out.wav"}, "nowhere/out.wav", 1},
        BadRun{"ModuleMissing",
               {"--plugin", "@Velmoran.so", "@in.wav", "@out.wav"},
               "cannot load the plug-in",
               1}),
    [](const testing::TestParamInfo<BadRun>& info) { return info.param.name; });

TEST(RenderTool, AFileThatIsNoSoundIsNamed)
{
    ScratchFolder folder;
    writeFileBytes(folder.file("notes.wav"), std::vector<char>(100, 'x'));
    const ToolRun run = runTool({folder.file("notes.wav"), folder.file("out.wav")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.find("notes.wav': not a WAV, AIFF or FLAC file"), std::string::npos) << run.errors;
    EXPECT_EQ(folder.names(), std::vector<std::string>{"notes.wav"});
}

TEST(RenderTool, AModuleThatDoesNotLoadIsNamed)
{
    ScratchFolder folder;
    writeFileBytes(folder.file("Velmoran.so"), std::vector<char>(64, 0));
    const ToolRun run = runTool({"--plugin", folder.file("Velmoran.so"), "--list-presets"}, false);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.find("cannot load the plug-in '" + folder.file("Velmoran.so") + "'"),
              std::string::npos)
        << run.errors;
}

TEST(RenderTool, TakesTheBundleFolderAsPlugin)
{
    ScratchFolder folder;
    const std::string architecture = folder.file("Velmoran.vst3/Contents/x86_64-linux");
    std::filesystem::create_directories(architecture);
    std::filesystem::create_symlink(std::filesystem::absolute(renderModulePath()),
                                    architecture + "/Velmoran.so");
    const ToolRun run = runTool({"--plugin", folder.file("Velmoran.vst3"), "--list-presets"}, false);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_NE(run.output.find("British EQ SL-2"), std::string::npos);
}

TEST(RenderTool, HelpAndListsNeedNoFiles)
{
    const ToolRun help = runTool({"--help"}, false);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.output.find("Usage: velmoran-render"), std::string::npos);
    const ToolRun presets = runTool({"--list-presets"});
    EXPECT_EQ(presets.exitCode, 0) << presets.errors;
    EXPECT_NE(presets.output.find("3  \"03 - British EQ NV-3\""), std::string::npos) << presets.output;
    const ToolRun parameters = runTool({"--list-parameters"});
    EXPECT_EQ(parameters.exitCode, 0) << parameters.errors;
    EXPECT_NE(parameters.output.find("\"01 Filt Type\""), std::string::npos) << parameters.output;
}

TEST(RenderTool, ProgressIsSilentWhenNotOnATerminal)
{
    ScratchFolder folder;
    writeSound(folder.file("long.wav"), sine(100.0, -20.0, 12.0, 8000, 1), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
               8000, 1);
    const ToolRun run = runTool({folder.file("long.wav"), folder.file("out.wav")});
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.errors.find('\r'), std::string::npos);
    EXPECT_EQ(run.errors.find("[#"), std::string::npos);
}

TEST(RenderTool, ResponsePlotAndDemoSignal)
{
    ScratchFolder folder;
    const ToolRun demo = runTool({"--demo-signal", folder.file("demo.wav")}, false);
    ASSERT_EQ(demo.exitCode, 0) << demo.errors;
    const Sound sound = readSound(folder.file("demo.wav"));
    EXPECT_EQ(sound.info.channels, 2);
    EXPECT_EQ(sound.info.frames, 8 * 48000);
    const ToolRun plot = runTool({"--preset", "1", "--response", folder.file("nv1.png"),
                                  folder.file("demo.wav"), folder.file("nv1.wav")});
    ASSERT_EQ(plot.exitCode, 0) << plot.errors;
    const std::vector<char> png = readFileBytes(folder.file("nv1.png"));
    ASSERT_GT(png.size(), 1000u);
    EXPECT_EQ(std::string(png.begin() + 1, png.begin() + 4), "PNG");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"demo.wav", "nv1.png", "nv1.wav"}));
}

} // namespace
} // namespace velmoran::test
