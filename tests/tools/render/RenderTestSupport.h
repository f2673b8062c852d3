#pragma once

// Shared pieces of the render tests: a scratch folder, test signals written as sound files,
// files read back, levels measured, errors caught, and the command-line tool run as a user runs it.

#include "support/ModulePath.h"
#include "tools/render/AudioFile.h"
#include "tools/render/RenderError.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace velmoran::test
{

// A fresh folder removed with everything in it at destruction.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    // The path of a file named name inside the folder.
    std::string file(const std::string& name) const;
    // The names of the files in the folder, sorted.
    std::vector<std::string> names() const;

private:
    std::string mPath;
};

// A sound file's samples (interleaved floats) and what it holds.
struct Sound
{
    render::AudioInfo info;
    std::vector<float> samples;
};

// Writes samples (interleaved) to path with the given libsndfile format, rate and channels.
void writeSound(const std::string& path, const std::vector<float>& samples, int format, int sampleRate,
                int channels);
// Reads a whole sound file.
Sound readSound(const std::string& path);
// seconds of a sine at frequencyHz and levelDb dBFS in every channel, interleaved.
std::vector<float> sine(double frequencyHz, double levelDb, double seconds, int sampleRate, int channels);
// seconds of a mix of tones and noise that uses every bit of a 16-bit sample, interleaved.
std::vector<float> busySignal(double seconds, int sampleRate, int channels);
// RMS level in dBFS of one channel over count frames from frame first (by default to the end).
double rmsDb(const Sound& sound, int channel, size_t first, size_t count = SIZE_MAX);

// Whether text contains part, showing the whole text if not.
inline ::testing::AssertionResult contains(const std::string& text, const std::string& part)
{
    if (text.find(part) != std::string::npos)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "\"" << part << "\" is not in: " << text;
}

// The kind and message of the render error a call throws; an empty message if it throws none.
struct Thrown
{
    render::RenderError::Kind kind = render::RenderError::Kind::failure;
    std::string message;
};
template <typename Call> Thrown thrownBy(Call call)
{
    try
    {
        call();
    }
    catch (const render::RenderError& error)
    {
        return {error.kind(), error.what()};
    }
    return {};
}

// What a run of the tool gave: exit status and everything it wrote to standard error and output.
struct ToolRun
{
    int exitCode = -1;
    std::string errors;
    std::string output;
};
// Runs velmoran-render with arguments (the module is given with --plugin unless told not to).
ToolRun runTool(const std::vector<std::string>& arguments, bool givePlugin = true);
// Runs velmoran-render with arguments whose input is the pipe feedPath, feeds it the bytes feed
// (fewer than their header promises, so the job waits for more), sends signal once a temporary
// file has appeared in folder, and gives the exit status (-1 if none appeared).
ToolRun interruptTool(const std::vector<std::string>& arguments, const std::string& feedPath,
                      const std::vector<char>& feed, const ScratchFolder& folder, int signal);

} // namespace velmoran::test
