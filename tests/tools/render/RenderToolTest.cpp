// The velmoran-render program run as a user runs it, on files made for each test.

#include "RenderTestSupport.h"

#include "tools/render/AtomicFile.h"
#include "tools/render/DemoSignal.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <tuple>

namespace velmoran::test
{
namespace
{

using render::readFileBytes;
using render::writeFileBytes;

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
// too, as these hold no more than a float does, though the tool says it keeps only a float's).
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
    EXPECT_EQ(contains(run.errors, "keeps 32-bit float precision"),
              (format.format & SF_FORMAT_SUBMASK) == SF_FORMAT_DOUBLE);
}

INSTANTIATE_TEST_SUITE_P(Formats, RenderToolNull,
                         testing::Values(SoundFormat{"wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 44100},
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
// level for level as at 44.1 kHz, not full-scale noise. The defaults take 0.12 dB off, the input
// gain's half of it only when the processor is sent every value (its own first input gain is 0 dB).
TEST(RenderTool, DefaultsAtHalfTheRateSoundAsAtTheFullRate)
{
    ScratchFolder folder;
    for (const int rate : {22050, 44100})
        for (const double hz : {1000.0, 8000.0})
        {
            writeSound(folder.file("in.wav"), sine(hz, -20.0, 1.0, rate, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                       rate, 2);
            const ToolRun run = runTool({folder.file("in.wav"), folder.file("out.wav")});
            ASSERT_EQ(run.exitCode, 0) << run.errors;
            EXPECT_NEAR(rmsDb(readSound(folder.file("out.wav")), 0, static_cast<size_t>(rate) / 2), -20.12,
                        0.02)
                << hz << " Hz at " << rate << " Hz";
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
    const ToolRun second = runTool({"--load-state", folder.file("nv3.state"), "--block-size", "4096",
                                    folder.file("in.wav"), folder.file("second.wav")});
    ASSERT_EQ(second.exitCode, 0) << second.errors;
    const Sound firstOutput = readSound(folder.file("first.wav"));
    EXPECT_EQ(readSound(folder.file("second.wav")).samples, firstOutput.samples);
    EXPECT_NE(firstOutput.samples, readSound(folder.file("in.wav")).samples);
}

struct ToolCase
{
    const char* name;
    int exitCode;
    std::vector<std::string> arguments; // "@name" is a file in the scratch folder, "%name" the same relative
    const char* message;                // said by the tool; "@" stands for the scratch folder
    const char* setUp = "";             // shell commands run in the scratch folder beside in.wav and in.aiff
    int signal = 0;                     // sent while the job renders from the pipe feed.wav
};

// A case of the table below, its fields in order (a call, so that the table packs them).
ToolCase run(const char* name, int exitCode, std::vector<std::string> arguments, const char* message,
             const char* setUp = "", int signal = 0)
{
    return {name, exitCode, std::move(arguments), message, setUp, signal};
}

class RenderToolRuns : public testing::TestWithParam<ToolCase>
{
};

// Whatever the command line, in.wav, the only copy of a mix, is never touched, and a refused run
// leaves nothing behind. The set-up commands find the plug-in module as $MODULE.
TEST_P(RenderToolRuns, SayWhatTheyDoAndLeaveTheInputAlone)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), sine(440.0, -4.0, 0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
               48000, 2);
    writeSound(folder.file("in.aiff"), sine(440.0, -4.0, 0.2, 48000, 2), SF_FORMAT_AIFF | SF_FORMAT_PCM_24,
               48000, 2);
    setenv("MODULE", std::filesystem::absolute(modulePath()).c_str(), 1);
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
    const bool givesPlugin = std::find(arguments.begin(), arguments.end(), "--plugin") != arguments.end();
    const ToolRun ran = GetParam().signal
                            ? interruptTool(arguments, folder.file("feed.wav"),
                                            {mix.begin(), mix.begin() + 8044}, folder, GetParam().signal)
                            : runTool(arguments, !givesPlugin);
    EXPECT_EQ(ran.exitCode, GetParam().exitCode) << ran.errors;
    EXPECT_TRUE(contains(ran.errors + ran.output, message));
    if (GetParam().exitCode != 0)
    {
        EXPECT_EQ(folder.names(), before);
    }
    EXPECT_TRUE(readFileBytes(folder.file("in.wav")) == mix);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RenderToolRuns,
    testing::Values(
        run("Help", 0, {"--help"}, "Usage: velmoran-render"),
        run("ListPresets", 0, {"--list-presets"}, "3  \"03 - British EQ NV-3\""),
        run("ListParameters", 0, {"--list-parameters"}, "\"01 Filt Type\""),
        run("PluginAsItsBundle", 0, {"--plugin", "@Velmoran.vst3", "--list-presets"}, "British EQ SL-2",
            "mkdir -p Velmoran.vst3/Contents/x86_64-linux && ln -s \"$MODULE\" "
            "Velmoran.vst3/Contents/x86_64-linux &&"),
        run("OversWhereTheOutputClips", 0,
            {"--set", "Output Gain=+6 dB", "--sample-format", "16", "@in.wav", "@out.wav"},
            "beyond full scale"),
        run("TruncatedOnRequest", 0, {"--allow-truncated", "@x", "@out.wav"},
            "holds 4000; rendering what it holds", "head -c 4044 in.wav >x &&"),
        run("GainOutOfRange", 2, {"--set", "03 Gain=+30 dB", "@in.wav", "@out.wav"},
            "\"+30 dB\" is outside the range of \"03 Gain\": give a value from -18.00 dB to 18.00 dB"),
        run("UnknownPreset", 2, {"--preset", "British", "@in.wav", "@out.wav"}, "unknown preset \"British\""),
        run("UnknownOption", 2, {"--gain", "3", "@in.wav", "@out.wav"}, "unknown option '--gain'"),
        run("FlacFloat", 2, {"--sample-format", "float", "@in.wav", "@out.flac"}, "FLAC cannot hold float"),
        run("UnknownTitleBeforeFiles", 2, {"--set", "03 Gian=+6 dB", "@missing.wav", "@out.wav"},
            "unknown parameter \"03 Gian\""),
        run("MissingInput", 1, {"@missing.wav", "@out.wav"}, "missing.wav': No such file or directory"),
        run("MissingState", 1, {"@in.wav", "@out.wav", "--load-state", "@none.state"}, "none.state"),
        run("OutputFolderMissing", 1, {"@in.wav", "@nowhere/out.wav"}, "nowhere/out.wav"),
        run("PlotFolderMissing", 1, {"--response", "@nowhere/p.png", "@in.wav", "@out.wav"},
            "cannot write '@nowhere/p.png'"),
        run("ModuleMissing", 1, {"--plugin", "@Velmoran.so", "@in.wav", "@out.wav"},
            "cannot load the plug-in '@Velmoran.so'"),
        run("OutputIsInputRelative", 2, {"@in.wav", "%in.wav"}, "is the same file as the input"),
        run("OutputLinksToInput", 2, {"@in.wav", "@x"}, "the output '@x' is the same file as the input",
            "ln -s in.wav x &&"),
        run("OutputIsThePlugIn", 2, {"--plugin", "@x", "@in.wav", "@x"},
            "the output '@x' is the same file as the plug-in", "touch x &&"),
        run("OutputIsHardLink", 2, {"@in.wav", "@x"}, "is the same file as the input", "ln in.wav x &&"),
        run("SavedStateOverInput", 2, {"--save-state", "@in.wav", "@in.wav", "@out.wav"},
            "the state to save '@in.wav' is the same file as the input"),
        run("PlotOverOutput", 2, {"--response", "@out.wav", "@in.wav", "@./out.wav"},
            "the plot '@out.wav' is the same file as the output"),
        // Devices and links like /dev/null and /dev/stdout are made here, so that a failing tool run
        // as root cannot replace the machine's own; without the right to make devices a pipe stands in.
        run("DeviceOutput", 2, {"@in.wav", "@x"}, "will not replace '@x': it is a ",
            "{ mknod x c 1 3 || mkfifo x; } 2>/dev/null &&"),
        run("LinkToStandardOutput", 2, {"@in.wav", "@x"}, "will not replace '@x': it is a symbolic link",
            "ln -s /proc/self/fd/1 x &&"),
        run("FolderOutput", 2, {"@in.wav", "@x"}, "it is a folder", "mkdir x &&"),
        run("TruncatedWav", 1, {"@x", "@out.wav"},
            "'@x' is truncated: its header promises 38400 bytes of samples, the file holds 956",
            "head -c 1000 in.wav >x &&"),
        run("HeaderOnlyWav", 1, {"@x", "@out.wav"}, "the file holds 0 (--allow-truncated",
            "head -c 44 in.wav >x &&"),
        run("TruncatedAiff", 1, {"@x", "@out.aiff"}, "'@x' is truncated", "head -c 20000 in.aiff >x &&"),
        run("StateOfAWavFile", 1, {"--load-state", "@in.wav", "@in.wav", "@out.wav"},
            "cannot load the state '@in.wav': it holds more than 276 bytes; a saved state holds exactly 276"),
        run("StateTooShort", 1, {"--load-state", "@x", "@in.wav", "@out.wav"}, "'@x': it holds 272 bytes",
            "head -c 272 /dev/zero >x &&"),
        run("StateEndless", 1, {"--load-state", "/dev/zero", "@in.wav", "@out.wav"},
            "'/dev/zero': it holds more than 276"),
        run("StateFolder", 1, {"--load-state", "@x", "@in.wav", "@out.wav"},
            "cannot read '@x': Is a directory", "mkdir x &&"),
        // Little-endian floats: a NaN as the third value, 2.0 as the last.
        run("StateNotANumber", 1, {"--load-state", "@x", "@in.wav", "@out.wav"},
            "'@x': value 3 is not a number",
            "head -c 8 /dev/zero >x && printf '\\000\\000\\300\\177' >>x && head -c 264 /dev/zero >>x &&"),
        run("StateOutOfRange", 1, {"--load-state", "@x", "@in.wav", "@out.wav"},
            "value 69 is 2.000000; every value of a saved state lies in 0..1",
            "head -c 272 /dev/zero >x && printf '\\000\\000\\000\\100' >>x &&"),
        run("EmptyInput", 2, {"", "@out.wav"}, "an empty file name"),
        run("UnknownExtension", 2, {"@in.wav", "@out.mp3"}, "wav, aiff or flac, not 'mp3'"),
        run("UnknownFormat", 2, {"--format", "mp3", "@in.wav", "@out.wav"}, "wav, aiff or flac, not 'mp3'"),
        run("SoloOfNoBand", 2, {"--set", "Solo=11", "@in.wav", "@out.wav"}, "one of: None, 01, 02"),
        run("CtrlC", 130, {"@feed.wav", "@out.wav"}, "", "mkfifo feed.wav &&", SIGINT),
        run("Terminated", 143, {"@feed.wav", "@out.wav"}, "", "mkfifo feed.wav &&", SIGTERM)),
    [](const testing::TestParamInfo<ToolCase>& info) { return info.param.name; });

// A replaced output keeps its permissions; "-" writes the same file to standard output.
TEST(RenderTool, KeepsPermissionsAndWritesToStandardOutput)
{
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), busySignal(0.2, 48000, 2), SF_FORMAT_WAV | SF_FORMAT_PCM_24, 48000, 2);
    writeFileBytes(folder.file("out.wav"), {'o', 'l', 'd'});
    std::filesystem::permissions(folder.file("out.wav"), std::filesystem::perms(0640));
    ASSERT_EQ(runTool({folder.file("in.wav"), folder.file("out.wav")}).exitCode, 0);
    EXPECT_EQ(std::filesystem::status(folder.file("out.wav")).permissions(), std::filesystem::perms(0640));
    const ToolRun piped = runTool({"--format", "flac", folder.file("in.wav"), "-"});
    ASSERT_EQ(piped.exitCode, 0) << piped.errors;
    ASSERT_EQ(runTool({folder.file("in.wav"), folder.file("out.flac")}).exitCode, 0);
    const std::vector<char> file = readFileBytes(folder.file("out.flac"));
    EXPECT_EQ(piped.output, std::string(file.begin(), file.end()));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.wav", "out.flac", "out.wav"}));
}

// Float pass-through keeps every sample of 1e-32 and more as it is, beyond full scale too, without
// a warning of overs; the plug-in's filters turn smaller ones, -0.0 and non-numbers into +0.0.
TEST(RenderTool, FloatPassThroughKeepsWhatTheReadmeSays)
{
    const std::vector<float> samples = {1e-31f, -3.5f, 0.123456789f, 1e-33f, -0.0f, 1e-40f, NAN, INFINITY};
    const std::vector<float> kept = {1e-31f, -3.5f, 0.123456789f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    ScratchFolder folder;
    writeSound(folder.file("in.wav"), samples, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 1);
    const ToolRun run = runTool({"--set", "EQ=Out", folder.file("in.wav"), folder.file("out.wav")});
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_FALSE(contains(run.errors, "beyond full scale"));
    const Sound output = readSound(folder.file("out.wav"));
    ASSERT_EQ(output.samples.size(), kept.size());
    EXPECT_TRUE(std::memcmp(output.samples.data(), kept.data(), kept.size() * sizeof(float)) == 0)
        << testing::PrintToString(output.samples);
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
        broadcast = {};
        cues = {};
        sf_command(file, SFC_GET_BROADCAST_INFO, &broadcast, sizeof(broadcast));
        sf_command(file, SFC_GET_CUE, &cues, sizeof(cues));
        EXPECT_EQ(std::string(broadcast.description) + std::to_string(cues.cue_points[0].sample_offset),
                  whole ? "Final mix4800" : "0");
        sf_close(file);
    }
}

// The demo signal as the tool writes it: stereo, sounding throughout and different in the two
// channels, with room for the factory programs' boosts; and a response plot with a render of it.
TEST(RenderTool, ResponsePlotAndDemoSignal)
{
    ScratchFolder folder;
    const ToolRun demo = runTool({"--demo-signal", folder.file("demo.wav")}, false);
    ASSERT_EQ(demo.exitCode, 0) << demo.errors;
    const Sound sound = readSound(folder.file("demo.wav"));
    ASSERT_EQ(sound.info.channels, 2);
    EXPECT_EQ(sound.info.frames, 8 * 48000);
    float peak = 0.0f;
    size_t differing = 0;
    for (size_t index = 0; index < sound.samples.size(); index += 2)
    {
        peak = std::max({peak, std::fabs(sound.samples[index]), std::fabs(sound.samples[index + 1])});
        differing += sound.samples[index] != sound.samples[index + 1] ? 1 : 0;
    }
    EXPECT_NEAR(20.0 * std::log10(peak), render::kDemoPeakDb, 0.01);
    EXPECT_GT(differing, sound.samples.size() / 4);
    for (size_t first = 0; first < 8 * 48000; first += 12000)
        EXPECT_GT(rmsDb(sound, 0, first, 12000), -40.0) << "silent near frame " << first;
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
