#pragma once

// Shared pieces of the render tests: a scratch folder, test signals written as sound files,
// files read back, levels measured, and the command-line tool run as a user runs it.

#include "tools/render/AudioFile.h"

#include <string>
#include <vector>

namespace velmoran::test
{

// Paths given to the test program: the built module and the velmoran-render program.
void setRenderPaths(const std::string& modulePath, const std::string& toolPath);
const std::string& renderModulePath();
const std::string& renderToolPath();

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
// RMS level in dBFS of one channel from frame first to the end.
double rmsDb(const Sound& sound, int channel, size_t first);

// What a run of the tool gave: exit status and everything it wrote to standard error.
struct ToolRun
{
    int exitCode = -1;
    std::string errors;
    std::string output;
};
// Runs velmoran-render with arguments (the module is given with --plugin unless told not to).
ToolRun runTool(const std::vector<std::string>& arguments, bool givePlugin = true);

} // namespace velmoran::test
