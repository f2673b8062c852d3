// The velmoran-render program run as a user runs it, on files made for each test.

#include "RenderTestSupport.h"

#include "plugin/PlugState.h"
#include "tools/render/AtomicFile.h"
#include "tools/render/RenderHost.h"
#include "tools/render/RenderJob.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iterator>
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
    const auto module = render::loadModule(modulePath());
    render::RenderHost host(*module, modulePath());
    std::vector<float> values(state.size() / sizeof(float));
    std::memcpy(values.data(), state.data(), values.size() * sizeof(float));
    for (size_t index = 0; index < values.size(); ++index)
        host.setParameter(Steinberg::Vst::Velmoran::stateTags()[index], values[index]);
    render::AudioReader reader(folder.file("in.wav"));
    host.start(reader.info().sampleRate, reader.info().channels, 512);
    render::renderFile(host, reader, folder.file("host.wav"), reader.info().format, render::Dither::none, 512,
                       false);
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
// effect out and no dither the tool returns it bit for bit in the same format (64-bit samples
// too, as these hold no more than a float does).
TEST_P(RenderToolNull, EffectOutReturnsTheInputBitForBit)
{
    const SoundFormat& format = GetParam();
    ScratchFolder folder;
    const std::vector<float> signal = busySignal(0.5, format.sampleRate, format.channels);
    writeSound(folder.file("in"), signal, format.format, format.sampleRate, format.channels);
    const ToolRun run = runTool({"--set", "EQ=Out", "--dither", "none", "--block-size", "300",
                                 folder.file("in"), folder.file("out")});
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
                                         SoundFormat{"wavdouble", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 2, 44100},
                                         SoundFormat{"aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 2, 48000},
                                         SoundFormat{"aifffloat", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, 1, 48000},
                                         SoundFormat{"flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 44100},
                                         SoundFormat{"flac24mono", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1,
                                                     88200}),
                         [](const testing::TestParamInfo<SoundFormat>& info) { return info.param.name; });

// At 22.05 kHz the defaults' 16 kHz shelf lies beyond Nyquist: a 16-bit render is still the music,
// level for level as at 44.1 kHz, not full-scale noise.
TEST(RenderTool, DefaultsAtHalfTheRateSoundAsAtTheFullRate)
{
    ScratchFolder folder;
    std::vector<double> levelsDb;
    for (const int rate : {22050, 44100})
        for (const double hz : {1000.0, 8000.0})
        {
            writeSound(folder.file("in.wav"), sine(hz, -20.0, 1.0, rate, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                       rate, 2);
            const ToolRun run = runTool({folder.file("in.wav"), folder.file("out.wav")});
            ASSERT_EQ(run.exitCode, 0) << run.errors;
            levelsDb.push_back(rmsDb(readSound(folder.file("out.wav")), 0, static_cast<size_t>(rate) / 2));
        }
    for (size_t tone = 0; tone < 2; ++tone)
    {
        EXPECT_NEAR(levelsDb[tone], -20.12, 0.05) << "tone " << tone; // less the defaults' 0.12 dB
        EXPECT_NEAR(levelsDb[tone], levelsDb[tone + 2], 0.05) << "tone " << tone;
    }
}

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
    int exitCode;
    std::vector<std::string> arguments; // "@name" is a file in the scratch folder, "%name" the same relative
    const char* message;                // "@" stands for the scratch folder
    const char* setUp = "";             // shell commands run in the scratch folder beside in.wav and in.aiff
    int signal = 0; // sent while the job renders from the pipe feed.wav with a progress bar
};

// A WAV header promising ten seconds, with a little of the promised audio.
std::vector<char> partialFeed()
{
    const ScratchFolder scratch;
    writeSound(scratch.file("long.wav"), sine(440.0, -20.0, 10.0, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
               48000, 2);
    const std::vector<char> bytes = readFileBytes(scratch.file("long.wav"));
    return std::vector<char>(bytes.begin(), bytes.begin() + 8044);
}

// A case of the table below, its fields in order (a call, so that the table packs them).
BadRun refused(const char* name, int exitCode, std::vector<std::string> arguments, const char* message,
               const char* setUp = "", int signal = 0)
{
    return {name, exitCode, std::move(arguments), message, setUp, signal};
}

class RenderToolRefuses : public testing::TestWithParam<BadRun>
{
};

// Whatever the command line, in.wav, the only copy of a mix, is never touched and nothing is left
// behind.
TEST_P(RenderToolRefuses, WithAClearMessageAndNoOutputFile)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), sine(440.0, -12.0, 0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
               48000, 2);
    writeSound(folder.file("in.aiff"), sine(440.0, -12.0, 0.2, 48000, 2), SF_FORMAT_AIFF | SF_FORMAT_PCM_24,
               48000, 2);
    ASSERT_EQ(std::system(("cd " + folder.file("") + " && " + GetParam().setUp + " true").c_str()), 0);
    const std::vector<char> mix = readFileBytes(folder.file("in.wav"));
    const std::vector<std::string> before = folder.names();
    std::vector<std::string> arguments;
    for (const std::string& argument : GetParam().arguments)
        arguments.push_back(argument[0] == '@' ? folder.file(argument.substr(1))
                            : argument[0] == '%'
                                ? std::filesystem::relative(folder.file(argument.substr(1))).string()
                                : argument);
    std::string message = GetParam().message;
    if (const size_t at = message.find('@'); at != std::string::npos)
        message.replace(at, 1, folder.file(""));
    if (GetParam().signal)
    {
        const ToolRun run =
            interruptTool(arguments, folder.file("feed.wav"), partialFeed(), folder, GetParam().signal);
        EXPECT_EQ(run.exitCode, GetParam().exitCode);
        EXPECT_TRUE(!run.errors.empty() && run.errors.back() == '\n') << "the progress line is left open";
    }
    else
    {
        const bool givesPlugin = std::find(arguments.begin(), arguments.end(), "--plugin") != arguments.end();
        const ToolRun run = runTool(arguments, !givesPlugin);
        EXPECT_EQ(run.exitCode, GetParam().exitCode) << run.errors;
        EXPECT_TRUE(contains(run.errors, message));
    }
    EXPECT_EQ(folder.names(), before);
    EXPECT_TRUE(readFileBytes(folder.file("in.wav")) == mix);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RenderToolRefuses,
    testing::Values(
        refused("GainOutOfRange", 2, {"--set", "03 Gain=+30 dB", "@in.wav", "@out.wav"},
                "\"+30 dB\" is outside the range of \"03 Gain\": give a value from -18.00 dB to 18.00 dB"),
        refused("UnknownPreset", 2, {"--preset", "British", "@in.wav", "@out.wav"},
                "unknown preset \"British\""),
        refused("UnknownOption", 2, {"--gain", "3", "@in.wav", "@out.wav"}, "unknown option '--gain'"),
        refused("FlacFloat", 2, {"--sample-format", "float", "@in.wav", "@out.flac"},
                "FLAC cannot hold float"),
        refused("UnknownTitleBeforeFiles", 2, {"--set", "03 Gian=+6 dB", "@missing.wav", "@out.wav"},
                "unknown parameter \"03 Gian\""),
        refused("MissingInput", 1, {"@missing.wav", "@out.wav"}, "missing.wav': No such file or directory"),
        refused("MissingState", 1, {"@in.wav", "@out.wav", "--load-state", "@none.state"}, "none.state"),
        refused("OutputFolderMissing", 1, {"@in.wav", "@nowhere/out.wav"}, "nowhere/out.wav"),
        refused("ModuleMissing", 1, {"--plugin", "@Velmoran.so", "@in.wav", "@out.wav"},
                "cannot load the plug-in '@Velmoran.so'"),
        refused("OutputIsInputWithDot", 2, {"@in.wav", "@./in.wav"}, "is the same file as the input"),
        refused("OutputIsInputRelative", 2, {"@in.wav", "%in.wav"}, "is the same file as the input"),
        refused("InputIsOutputRelative", 2, {"%in.wav", "@in.wav"}, "is the same file as the input"),
        refused("OutputLinksToInput", 2, {"@in.wav", "@x"}, "the output '@x' is the same file as the input",
                "ln -s in.wav x &&"),
        refused("OutputIsThePlugIn", 2, {"--plugin", "@x", "@in.wav", "@x"},
                "the output '@x' is the same file as the plug-in", "touch x &&"),
        refused("OutputIsHardLink", 2, {"@in.wav", "@x"}, "is the same file as the input", "ln in.wav x &&"),
        refused("SavedStateOverInput", 2, {"--save-state", "@in.wav", "@in.wav", "@out.wav"},
                "the state to save '@in.wav' is the same file as the input"),
        refused("PlotOverInput", 2, {"--response", "@./in.wav", "@in.wav", "@out.wav"}, "the plot"),
        refused("PlotOverOutput", 2, {"--response", "@out.wav", "@in.wav", "@./out.wav"},
                "the plot '@out.wav' is the same file as the output"),
        refused("StateOverOutput", 2, {"--save-state", "@./out.wav", "@in.wav", "@out.wav"},
                "same file as the output"),
        // Devices and links like /dev/null and /dev/stdout are made here, so that a failing tool run
        // as root cannot replace the machine's own; without the right to make devices a pipe stands in.
        refused("DeviceOutput", 2, {"@in.wav", "@x"}, "will not replace '@x': it is a ",
                "{ mknod x c 1 3 || mkfifo x; } 2>/dev/null &&"),
        refused("LinkToStandardOutput", 2, {"@in.wav", "@x"}, "will not replace '@x': it is a symbolic link",
                "ln -s /proc/self/fd/1 x &&"),
        refused("FolderOutput", 2, {"@in.wav", "@x"}, "it is a folder", "mkdir x &&"),
        refused("TruncatedWav", 1, {"@x", "@out.wav"},
                "'@x' is truncated: its header promises 38400 bytes of samples, the file holds 956",
                "head -c 1000 in.wav >x &&"),
        refused("HeaderOnlyWav", 1, {"@x", "@out.wav"}, "the file holds 0 (--allow-truncated",
                "head -c 44 in.wav >x &&"),
        refused("TruncatedAiff", 1, {"@x", "@out.aiff"}, "'@x' is truncated", "head -c 20000 in.aiff >x &&"),
        refused(
            "StateOfAWavFile", 1, {"--load-state", "@in.wav", "@in.wav", "@out.wav"},
            "cannot load the state '@in.wav': it holds more than 276 bytes; a saved state holds exactly 276"),
        refused("StateTooShort", 1, {"--load-state", "@x", "@in.wav", "@out.wav"}, "'@x': it holds 272 bytes",
                "head -c 272 /dev/zero >x &&"),
        refused("StateEndless", 1, {"--load-state", "/dev/zero", "@in.wav", "@out.wav"},
                "'/dev/zero': it holds more than 276"),
        refused("StateFolder", 1, {"--load-state", "@x", "@in.wav", "@out.wav"},
                "cannot read '@x': Is a directory", "mkdir x &&"),
        // Little-endian floats: a NaN as the third value, 2.0 as the last.
        refused(
            "StateNotANumber", 1, {"--load-state", "@x", "@in.wav", "@out.wav"},
            "'@x': value 3 is not a number",
            "head -c 8 /dev/zero >x && printf '\\000\\000\\300\\177' >>x && head -c 264 /dev/zero >>x &&"),
        refused("StateOutOfRange", 1, {"--load-state", "@x", "@in.wav", "@out.wav"},
                "value 69 is 2.000000; every value of a saved state lies in 0..1",
                "head -c 272 /dev/zero >x && printf '\\000\\000\\000\\100' >>x &&"),
        refused("EmptyInput", 2, {"", "@out.wav"}, "an empty file name"),
        refused("UnknownExtension", 2, {"@in.wav", "@out.mp3"}, "wav, aiff or flac, not 'mp3'"),
        refused("UnknownFormat", 2, {"--format", "mp3", "@in.wav", "@out.wav"},
                "wav, aiff or flac, not 'mp3'"),
        refused("SoloOfNoBand", 2, {"--set", "Solo=11", "@in.wav", "@out.wav"}, "one of: None, 01, 02"),
        refused("CtrlC", 130, {"@feed.wav", "@out.wav"}, "", "mkfifo feed.wav &&", SIGINT),
        refused("Terminated", 143, {"@feed.wav", "@out.wav"}, "", "mkfifo feed.wav &&", SIGTERM)),
    [](const testing::TestParamInfo<BadRun>& info) { return info.param.name; });

// A replaced output keeps its permissions; "-" writes the same file to standard output.
TEST(RenderTool, KeepsPermissionsAndWritesToStandardOutput)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), busySignal(0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_24, 48000, 2);
    writeFileBytes(folder.file("out.wav"), {'o', 'l', 'd'});
    chmod(folder.file("out.wav").c_str(), 0640);
    ASSERT_EQ(runTool({folder.file("in.wav"), folder.file("out.wav")}).exitCode, 0);
    struct stat status = {};
    ASSERT_EQ(stat(folder.file("out.wav").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    const ToolRun piped = runTool({"--format", "flac", folder.file("in.wav"), "-"});
    ASSERT_EQ(piped.exitCode, 0) << piped.errors;
    ASSERT_EQ(runTool({folder.file("in.wav"), folder.file("out.flac")}).exitCode, 0);
    const std::vector<char> file = readFileBytes(folder.file("out.flac"));
    EXPECT_EQ(piped.output, std::string(file.begin(), file.end()));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.wav", "out.flac", "out.wav"}));
}

// What a render cannot keep of its input is said: a truncated file rendered on request, and
// 64-bit samples.
TEST(RenderTool, SaysWhatItCannotKeep)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), busySignal(0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 2);
    writeSound(folder.file("double.wav"), busySignal(0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 48000,
               2);
    const std::vector<char> bytes = readFileBytes(folder.file("in.wav"));
    writeFileBytes(folder.file("cut.wav"), std::vector<char>(bytes.begin(), bytes.begin() + 4044));
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--allow-truncated", folder.file("cut.wav"), folder.file("cut-out.wav")},
         "holds 4000; rendering what it holds"},
        {{folder.file("double.wav"), folder.file("double-out.wav")}, "keeps 32-bit float precision"},
    };
    for (const auto& [arguments, said] : cases)
    {
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_TRUE(contains(run.errors, said));
    }
    EXPECT_EQ(readSound(folder.file("cut-out.wav")).info.frames, 1000);
}

// Float pass-through keeps every sample of 1e-32 and more as it is, beyond full scale too; the
// plug-in's filters turn smaller ones, -0.0 and non-numbers into +0.0.
TEST(RenderTool, FloatPassThroughKeepsWhatTheReadmeSays)
{
    const std::pair<float, float> cases[] = {{1e-31f, 1e-31f}, {-3.5f, -3.5f},  {0.123456789f, 0.123456789f},
                                             {1e-33f, 0.0f},   {-0.0f, 0.0f},   {1e-40f, 0.0f},
                                             {NAN, 0.0f},      {INFINITY, 0.0f}};
    std::vector<float> samples;
    std::transform(std::begin(cases), std::end(cases), std::back_inserter(samples),
                   [](auto c) { return c.first; });
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), samples, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 1);
    ASSERT_EQ(runTool({"--set", "EQ=Out", folder.file("in.wav"), folder.file("out.wav")}).exitCode, 0);
    const Sound output = readSound(folder.file("out.wav"));
    ASSERT_EQ(output.samples.size(), std::size(cases));
    for (size_t index = 0; index < std::size(cases); ++index)
        EXPECT_TRUE(std::memcmp(&output.samples[index], &cases[index].second, sizeof(float)) == 0)
            << cases[index].first << " gave " << output.samples[index];
}

// Text tags, the broadcast extension and cue points come through where the output can hold them.
TEST(RenderTool, CarriesMetadataOver)
{
    ScratchFolder folder;
    const std::vector<float> signal = busySignal(0.2, 48000, 2);
    SF_INFO info = {0, 48000, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 0, 0};
    SNDFILE* file = sf_open(folder.file("in.wav").c_str(), SFM_WRITE, &info);
    SF_BROADCAST_INFO broadcast = {};
    std::strcpy(broadcast.description, "Final mix");
    SF_CUES cues = {};
    cues.cue_count = 1;
    cues.cue_points[0].position = cues.cue_points[0].sample_offset = 4800;
    sf_command(file, SFC_SET_BROADCAST_INFO, &broadcast, sizeof(broadcast));
    sf_command(file, SFC_SET_CUE, &cues, sizeof(cues));
    sf_set_string(file, SF_STR_TITLE, "Only copy");
    sf_writef_float(file, signal.data(), static_cast<sf_count_t>(signal.size() / 2));
    sf_close(file);
    // FLAC holds text tags only.
    for (const auto& [name, whole] : {std::pair{"out.wav", true}, std::pair{"out.flac", false}})
    {
        ASSERT_EQ(runTool({folder.file("in.wav"), folder.file(name)}).exitCode, 0);
        file = sf_open(folder.file(name).c_str(), SFM_READ, &info);
        EXPECT_STREQ(sf_get_string(file, SF_STR_TITLE), "Only copy");
        SF_BROADCAST_INFO readBroadcast = {};
        SF_CUES readCues = {};
        EXPECT_EQ(sf_command(file, SFC_GET_BROADCAST_INFO, &readBroadcast, sizeof(readBroadcast)) == SF_TRUE,
                  whole);
        EXPECT_EQ(sf_command(file, SFC_GET_CUE, &readCues, sizeof(readCues)) == SF_TRUE, whole);
        EXPECT_EQ(std::string(readBroadcast.description) +
                      std::to_string(readCues.cue_points[0].sample_offset),
                  whole ? "Final mix4800" : "0");
        sf_close(file);
    }
}

// The plug-in may also be given as its bundle folder.
TEST(RenderTool, HelpAndListsNeedNoFiles)
{
    ScratchFolder folder;
    const std::string architecture = folder.file("Velmoran.vst3/Contents/x86_64-linux");
    std::filesystem::create_directories(architecture);
    std::filesystem::create_symlink(std::filesystem::absolute(modulePath()), architecture + "/Velmoran.so");
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--help"}, "Usage: velmoran-render"},
        {{"--plugin", modulePath(), "--list-presets"}, "3  \"03 - British EQ NV-3\""},
        {{"--plugin", modulePath(), "--list-parameters"}, "\"01 Filt Type\""},
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
