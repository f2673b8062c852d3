#include "RenderTestSupport.h"

#include "tools/render/AudioFile.h"
#include "tools/render/RenderError.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <fstream>

namespace velmoran::render
{
namespace
{

using test::ScratchFolder;

struct FileFormat
{
    const char* name;
    int format;
    int channels;
    int sampleRate;
};

class AudioFileRoundTrip : public testing::TestWithParam<FileFormat>
{
};

TEST_P(AudioFileRoundTrip, KeepsEverySampleRateAndFormat)
{
    const FileFormat& format = GetParam();
    ScratchFolder folder;
    const std::vector<float> signal = test::busySignal(0.25, format.sampleRate, format.channels);
    test::writeSound(folder.file("a"), signal, format.format, format.sampleRate, format.channels);
    const test::Sound sound = test::readSound(folder.file("a"));
    EXPECT_EQ(sound.info.format, format.format);
    EXPECT_EQ(sound.info.channels, format.channels);
    EXPECT_EQ(sound.info.sampleRate, format.sampleRate);
    EXPECT_EQ(sound.samples, signal);
}

INSTANTIATE_TEST_SUITE_P(Formats, AudioFileRoundTrip,
                         testing::Values(FileFormat{"wav16mono", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 44100},
                                         FileFormat{"wav24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, 48000},
                                         FileFormat{"wav32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 2, 96000},
                                         FileFormat{"wavfloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 48000},
                                         FileFormat{"aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 2, 44100},
                                         FileFormat{"aifffloat", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, 1, 48000},
                                         FileFormat{"flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 44100},
                                         FileFormat{"flac24mono", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1,
                                                    88200}),
                         [](const testing::TestParamInfo<FileFormat>& info) { return info.param.name; });

TEST(AudioFile, OutputKeepsTheInputFormatUnlessAskedOtherwise)
{
    const int wav24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    EXPECT_EQ(outputFormat(wav24, std::nullopt, std::nullopt), wav24);
    EXPECT_EQ(outputFormat(wav24, Container::flac, std::nullopt), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    EXPECT_EQ(outputFormat(wav24, std::nullopt, Encoding::float32), SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_EQ(containerOfPath("mix/out.AIF"), Container::aiff);
    EXPECT_EQ(containerOfPath("mix.d/out"), std::nullopt);
    EXPECT_THROW(outputFormat(wav24, Container::flac, Encoding::float32), RenderError);
    EXPECT_EQ(formatDescription(SF_FORMAT_FLAC | SF_FORMAT_PCM_16), "FLAC 16-bit");
}

TEST(AudioFile, ReadErrorsNameTheFileAndTheCause)
{
    ScratchFolder folder;
    std::ofstream(folder.file("text.wav")) << "not a sound file at all";
    test::writeSound(folder.file("six.wav"), std::vector<float>(600, 0.0f), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                     48000, 1);
    const std::pair<std::string, std::string> cases[] = {
        {folder.file("missing.wav"), "No such file"},
        {folder.file("text.wav"), "not a WAV, AIFF or FLAC file"},
    };
    for (const auto& [path, cause] : cases)
    {
        try
        {
            AudioReader reader(path);
            FAIL() << path;
        }
        catch (const RenderError& error)
        {
            const std::string message = error.what();
            EXPECT_NE(message.find(path), std::string::npos) << message;
            EXPECT_NE(message.find(cause), std::string::npos) << message;
        }
    }
}

TEST(AudioFile, MoreThanTwoChannelsAreRefused)
{
    ScratchFolder folder;
    test::writeSound(folder.file("quad.wav"), std::vector<float>(400, 0.0f), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                     48000, 4);
    EXPECT_THROW(AudioReader reader(folder.file("quad.wav")), RenderError);
}

TEST(AudioFile, AnUncommittedWriterLeavesNothing)
{
    ScratchFolder folder;
    {
        AudioInfo info{48000, 2, 0, SF_FORMAT_WAV | SF_FORMAT_PCM_16};
        AudioWriter writer(folder.file("out.wav"), info);
        const std::vector<float> block(256, 0.25f);
        writer.write(block.data(), 128);
    }
    EXPECT_TRUE(folder.names().empty());
}

TEST(AudioFile, IntegerOutputClipsAndCountsOvers)
{
    ScratchFolder folder;
    AudioInfo info{48000, 1, 0, SF_FORMAT_WAV | SF_FORMAT_PCM_16};
    AudioWriter writer(folder.file("loud.wav"), info);
    const std::vector<float> samples = {0.5f, 1.5f, -2.0f, -1.0f};
    writer.write(samples.data(), 4);
    writer.commit();
    EXPECT_EQ(writer.oversCount(), 2);
    const test::Sound sound = test::readSound(folder.file("loud.wav"));
    ASSERT_EQ(sound.samples.size(), 4u);
    EXPECT_FLOAT_EQ(sound.samples[0], 0.5f);
    EXPECT_NEAR(sound.samples[1], 1.0f, 1e-4);
    EXPECT_FLOAT_EQ(sound.samples[2], -1.0f);
}

TEST(AudioFile, AFolderThatCannotBeWrittenIsNamed)
{
    try
    {
        AudioWriter writer("/nonexistent-folder/out.wav",
                           AudioInfo{48000, 2, 0, SF_FORMAT_WAV | SF_FORMAT_PCM_16});
        FAIL();
    }
    catch (const RenderError& error)
    {
        EXPECT_NE(std::string(error.what()).find("/nonexistent-folder/out.wav"), std::string::npos);
    }
}

} // namespace
} // namespace velmoran::render
