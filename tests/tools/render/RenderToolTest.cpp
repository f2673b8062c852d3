// The velmoran-render program run as a user runs it, on files made for each test.

#include "RenderTestSupport.h"

#include "plugin/PlugState.h"
#include "tools/render/AtomicFile.h"
#include "tools/render/RenderHost.h"
#include "tools/render/RenderJob.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <tuple>

namespace velmoran::test
{
namespace
{

using render::readFileBytes;
using render::writeFileBytes;

// Renders in.wav into host.wav as a host does that sends every value of a saved state with the
// first block.
void renderAsHost(const std::vector<char>& state, const ScratchFolder& folder)
{
    const auto module = render::loadModule(renderModulePath);
    render::RenderHost host(*module, renderModulePath);
    std::vector<float> values(state.size() / sizeof(float));
    std::memcpy(values.data(), state.data(), values.size() * sizeof(float));
    for (size_t index = 0; index < values.size(); ++index)
        host.setParameter(Steinberg::Vst::Velmoran::stateTags()[index], values[index]);
    render::AudioReader reader(folder.file("in.wav"));
    host.start(reader.info().sampleRate, reader.info().channels, 512);
    render::renderFile(host, reader, folder.file("host.wav"), reader.info().format, 512, false);
}

// With or without settings, the tool plays what a host plays that sends every value of the same
// state (the processor's own first state has an input gain of 0 dB, not the default -0.06 dB).
TEST(RenderTool, PlaysAsAHostThatSendsEveryValue)
{
    const std::vector<std::string> settings[] = {{}, {"--set", "03 Gain=+6 dB"}};
    for (const std::vector<std::string>& setting : settings)
    {
        ScratchFolder folder;
        writeSound(folder.file("in.wav"), busySignal(0.5, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000,
                   2);
        std::vector<std::string> arguments = setting;
        arguments.insert(arguments.end(), {"--block-size", "512", "--save-state", folder.file("state"),
                                           folder.file("in.wav"), folder.file("out.wav")});
        const ToolRun run = runTool(arguments);
        ASSERT_EQ(run.exitCode, 0) << run.errors;
        renderAsHost(readFileBytes(folder.file("state")), folder);
        EXPECT_TRUE(readSound(folder.file("out.wav")).samples == readSound(folder.file("host.wav")).samples)
            << setting.size() << " arguments";
    }
}

// Samples beyond full scale are worth a warning only where the output clips them.
TEST(RenderTool, WarnsOfOversOnlyWhereTheOutputClips)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), sine(1000.0, -1.0, 0.5, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_FLOAT,
               48000, 2);
    const std::pair<const char*, bool> cases[] = {{"16", true}, {"float", false}};
    for (const auto& [encoding, clips] : cases)
    {
        const ToolRun run =
            runTool({"--set", "Output Gain=+6 dB", "--sample-format", encoding, folder.file("in.wav"),
                     folder.file(std::string("out-") + encoding + ".wav")});
        ASSERT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(run.errors.find("beyond full scale") != std::string::npos, clips)
            << encoding << ": " << run.errors;
    }
}

// A libsndfile format with a channel count and a rate.
struct SoundFormat
{
    const char* name;
    int format;
    int channels;
    int sampleRate;
};

class RenderToolNull : public testing::TestWithParam<SoundFormat>
{
};

// A file read and written in every format keeps every sample, its rate and its channels; with the
// effect out the tool returns it bit for bit in the same format.
TEST_P(RenderToolNull, EffectOutReturnsTheInputBitForBit)
{
    const SoundFormat& format = GetParam();
    ScratchFolder folder;
    const std::vector<float> signal = busySignal(0.5, format.sampleRate, format.channels);
    writeSound(folder.file("in"), signal, format.format, format.sampleRate, format.channels);
    const ToolRun run =
        runTool({"--set", "EQ=Out", "--block-size", "300", folder.file("in"), folder.file("out")});
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    const Sound output = readSound(folder.file("out"));
    EXPECT_EQ(std::tie(output.info.format, output.info.sampleRate, output.info.channels),
              std::tie(format.format, format.sampleRate, format.channels));
    EXPECT_EQ(output.samples, signal);
}

INSTANTIATE_TEST_SUITE_P(Formats, RenderToolNull,
                         testing::Values(SoundFormat{"wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 44100},
                                         SoundFormat{"wav16mono", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 44100},
                                         SoundFormat{"wav24mono", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 1, 48000},
                                         SoundFormat{"wav32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 2, 96000},
                                         SoundFormat{"wavfloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 96000},
                                         SoundFormat{"aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 2, 48000},
                                         SoundFormat{"aifffloat", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, 1, 48000},
                                         SoundFormat{"flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 44100},
                                         SoundFormat{"flac24mono", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1,
                                                     88200}),
                         [](const testing::TestParamInfo<SoundFormat>& info) { return info.param.name; });

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
        EXPECT_NEAR(rmsDb(output, channel, settled) - rmsDb(input, channel, settled), 6.0, 0.1);
}

INSTANTIATE_TEST_SUITE_P(Peaks, RenderToolPeak,
                         testing::Values(PeakCase{"HalfGain48k", "Pk dB/2", 48000},
                                         PeakCase{"Minus3Db44k", "Peak -3dB", 44100},
                                         PeakCase{"Plus3Db96k", "Peak +3dB", 96000}),
                         [](const testing::TestParamInfo<PeakCase>& info) { return info.param.name; });

// The state saved with a render gives the same render again, at another block size too.
TEST(RenderTool, SavedStateRendersIdenticallyAtAnyBlockSize)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), busySignal(1.5, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_24, 48000, 2);
    const ToolRun first = runTool({"--preset", "03 - British EQ NV-3", "--set", "07 Filt Type=Band Pass",
                                   "--set", "07 Mode=Right", "--save-state", folder.file("nv3.state"),
                                   "--block-size", "64", folder.file("in.wav"), folder.file("first.wav")});
    ASSERT_EQ(first.exitCode, 0) << first.errors;
    EXPECT_EQ(readFileBytes(folder.file("nv3.state")).size(), 276u);
    const ToolRun second = runTool({"--load-state", folder.file("nv3.state"), "--block-size", "4096",
                                    folder.file("in.wav"), folder.file("second.wav")});
    ASSERT_EQ(second.exitCode, 0) << second.errors;
    const Sound firstOutput = readSound(folder.file("first.wav"));
    EXPECT_EQ(readSound(folder.file("second.wav")).samples, firstOutput.samples);
    EXPECT_NE(firstOutput.samples, readSound(folder.file("in.wav")).samples);
}

struct BadRun
{
    const char* name;
    std::vector<std::string> arguments;
    const char* message; // "@" stands for the scratch folder
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
        arguments.push_back(argument.rfind("@", 0) == 0 ? folder.file(argument.substr(1)) : argument);
    std::string message = GetParam().message;
    if (const size_t at = message.find('@'); at != std::string::npos)
        message.replace(at, 1, folder.file(""));
    const ToolRun run = runTool(arguments);
    EXPECT_EQ(run.exitCode, GetParam().exitCode) << run.errors;
    EXPECT_TRUE(contains(run.errors, message));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RenderToolRefuses,
    testing::Values(
        BadRun{"GainOutOfRange",
               {"--set", "03 Gain=+30 dB", "@in.wav", "@out.wav"},
               "\"+30 dB\" is outside the range of \"03 Gain\": give a value from -18.00 dB to 18.00 dB",
               2},
        BadRun{
            "UnknownPreset", {"--preset", "British", "@in.wav", "@out.wav"}, "unknown preset \"British\"", 2},
        BadRun{"UnknownOption", {"--gain", "3", "@in.wav", "@out.wav"}, "unknown option '--gain'", 2},
        BadRun{
            "FlacFloat", {"--sample-format", "float", "@in.wav", "@out.flac"}, "FLAC cannot hold float", 2},
        BadRun{"UnknownTitleBeforeFiles",
               {"--set", "03 Gian=+6 dB", "@missing.wav", "@out.wav"},
               "unknown parameter \"03 Gian\"",
               2},
        BadRun{"MissingInput", {"@missing.wav", "@out.wav"}, "missing.wav': No such file or directory", 1},
        BadRun{"MissingState", {"@in.wav", "@out.wav", "--load-state", "@none.state"}, "none.state", 1},
        BadRun{"OutputFolderMissing", {"@in.wav", "@nowhere/out.wav"}, "nowhere/out.wav", 1},
        BadRun{"ModuleMissing",
               {"--plugin", "@Velmoran.so", "@in.wav", "@out.wav"},
               "cannot load the plug-in '@Velmoran.so'",
               1}),
    [](const testing::TestParamInfo<BadRun>& info) { return info.param.name; });

// The plug-in may also be given as its bundle folder.
TEST(RenderTool, HelpAndListsNeedNoFiles)
{
    ScratchFolder folder;
    const std::string architecture = folder.file("Velmoran.vst3/Contents/x86_64-linux");
    std::filesystem::create_directories(architecture);
    std::filesystem::create_symlink(std::filesystem::absolute(renderModulePath),
                                    architecture + "/Velmoran.so");
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--help"}, "Usage: velmoran-render"},
        {{"--plugin", renderModulePath, "--list-presets"}, "3  \"03 - British EQ NV-3\""},
        {{"--plugin", renderModulePath, "--list-parameters"}, "\"01 Filt Type\""},
        {{"--plugin", folder.file("Velmoran.vst3"), "--list-presets"}, "British EQ SL-2"},
    };
    for (const auto& [arguments, shown] : cases)
    {
        const ToolRun run = runTool(arguments, false);
        EXPECT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_TRUE(contains(run.output, shown));
    }
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
