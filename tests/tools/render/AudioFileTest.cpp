#include "RenderTestSupport.h"

#include "tools/render/AudioFile.h"
#include "tools/render/RenderError.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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
    EXPECT_EQ(outputFormat(wav24, Container::flac, std::nullopt), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    EXPECT_EQ(outputFormat(wav24, std::nullopt, Encoding::float32), SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_EQ(containerOfPath("mix/out.AIF"), Container::aiff);
    EXPECT_EQ(containerOfPath("mix.d/out"), std::nullopt);
}

// Files that are no sound files, or hold more than two channels, are refused by name and cause (a
// missing one through the tool in RenderToolTest.cpp).
TEST(AudioFile, ReadErrorsNameTheFileAndTheCause)
{
    ScratchFolder folder;
    std::ofstream(folder.file("text.wav")) << "not a sound file at all";
    test::writeSound(folder.file("quad.wav"), std::vector<float>(400, 0.0f), SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                     48000, 4);
    const std::pair<std::string, std::string> cases[] = {
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

// Integer output clips at full scale and counts the overs; a writer dropped before it commits leaves
// nothing behind, not even its temporary file.
TEST(AudioFile, IntegerOutputClipsAndOnlyACommittedFileIsLeft)
{
    ScratchFolder folder;
    const AudioInfo info{48000, 1, 0, SF_FORMAT_WAV | SF_FORMAT_PCM_16};
    const std::vector<float> samples = {0.5f, 1.5f, -2.0f, -1.0f};
    AudioWriter(folder.file("dropped.wav"), info).write(samples.data(), 4);
    AudioWriter writer(folder.file("loud.wav"), info);
    writer.write(samples.data(), 4);
    writer.commit();
    EXPECT_EQ(folder.names(), std::vector<std::string>{"loud.wav"});
    EXPECT_EQ(writer.oversCount(), 2);
    const test::Sound sound = test::readSound(folder.file("loud.wav"));
    ASSERT_EQ(sound.samples.size(), 4u);
    EXPECT_FLOAT_EQ(sound.samples[0], 0.5f);
    EXPECT_NEAR(sound.samples[1], 1.0f, 1e-4);
    EXPECT_FLOAT_EQ(sound.samples[2], -1.0f);
}

struct Quantising
{
    int format;
    Dither dither;
    double inputSteps;   // a constant level, in steps of the output's encoding
    double meanSteps;    // the level read back
    double largestSteps; // the largest distance of a sample from the input allowed
};

class AudioFileQuantising : public testing::TestWithParam<Quantising>
{
};

// Integer samples round to the nearest step (no offset from rounding downwards); TPDF dither keeps
// a level below one step on average, spreading each sample by at most one step either way.
TEST_P(AudioFileQuantising, RoundsToTheNearestStep)
{
    const Quantising& quantising = GetParam();
    const double step =
        (quantising.format & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_16 ? 1.0 / 32768 : 1.0 / 8388608;
    ScratchFolder folder;
    AudioWriter writer(folder.file("out.wav"), AudioInfo{48000, 1, 0, SF_FORMAT_WAV | quantising.format},
                       quantising.dither);
    const std::vector<float> samples(48000, static_cast<float>(quantising.inputSteps * step));
    writer.write(samples.data(), 48000);
    writer.commit();
    const test::Sound sound = test::readSound(folder.file("out.wav"));
    double sum = 0.0;
    double largest = 0.0;
    for (const float sample : sound.samples)
    {
        sum += sample / step;
        largest = std::max(largest, std::fabs(sample / step - quantising.inputSteps));
    }
    EXPECT_NEAR(sum / 48000.0, quantising.meanSteps, 0.02);
    EXPECT_LE(largest, quantising.largestSteps);
}

INSTANTIATE_TEST_SUITE_P(Cases, AudioFileQuantising,
                         testing::Values(Quantising{SF_FORMAT_PCM_16, Dither::none, -0.3, 0.0, 0.5},
                                         Quantising{SF_FORMAT_PCM_16, Dither::none, -0.7, -1.0, 0.5},
                                         Quantising{SF_FORMAT_PCM_16, Dither::none, 2.4, 2.0, 0.5},
                                         Quantising{SF_FORMAT_PCM_24, Dither::none, -0.3, 0.0, 0.5},
                                         Quantising{SF_FORMAT_PCM_24, Dither::none, 0.6, 1.0, 0.5},
                                         Quantising{SF_FORMAT_PCM_16, Dither::tpdf, -0.3, -0.3, 1.5},
                                         Quantising{SF_FORMAT_PCM_24, Dither::tpdf, 0.25, 0.25, 1.5}));

TEST(AudioFile, SixteenBitsAndFewerAreDitheredUnlessAskedOtherwise)
{
    EXPECT_EQ(defaultDither(SF_FORMAT_WAV | SF_FORMAT_PCM_16), Dither::tpdf);
    EXPECT_EQ(defaultDither(SF_FORMAT_FLAC | SF_FORMAT_PCM_24), Dither::none);
}

} // namespace
} // namespace velmoran::render
