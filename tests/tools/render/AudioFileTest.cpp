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

// Reading and writing every format: see the tool's null test (RenderToolTest.cpp).

TEST(AudioFile, OutputKeepsTheInputFormatUnlessAskedOtherwise)
{
    const int wav24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    EXPECT_EQ(outputFormat(wav24, std::nullopt, std::nullopt), wav24);
    EXPECT_EQ(outputFormat(wav24, Container::flac, std::nullopt), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    EXPECT_EQ(outputFormat(wav24, std::nullopt, Encoding::float32), SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_EQ(containerOfPath("mix/out.AIF"), Container::aiff);
    EXPECT_EQ(containerOfPath("mix.d/out"), std::nullopt);
    EXPECT_EQ(formatDescription(SF_FORMAT_FLAC | SF_FORMAT_PCM_16), "FLAC 16-bit");
}

// Files that cannot be read, or hold more than two channels, are refused by name and cause.
TEST(AudioFile, ReadErrorsNameTheFileAndTheCause)
{
    ScratchFolder folder;
    std::ofstream(folder.file("text.wav")) << "not a sound file at all";
    test::writeSound(folder.file("quad.wav"), std::vector<float>(400, 0.0f), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                     48000, 4);
    const std::pair<std::string, std::string> cases[] = {
        {folder.file("missing.wav"), "No such file"},
        {folder.file("text.wav"), "not a WAV, AIFF or FLAC file"},
        {folder.file("quad.wav"), "it has 4 channels"},
    };
    for (const auto& [path, cause] : cases)
    {
        const std::string message = test::thrownBy([&] { AudioReader reader(path); }).message;
        EXPECT_TRUE(test::contains(message, path));
        EXPECT_TRUE(test::contains(message, cause));
    }
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
    const std::string path = "/nonexistent-folder/out.wav";
    const auto open = [&] { AudioWriter(path, AudioInfo{48000, 2, 0, SF_FORMAT_WAV | SF_FORMAT_PCM_16}); };
    EXPECT_TRUE(test::contains(test::thrownBy(open).message, path));
}

} // namespace
} // namespace velmoran::render
