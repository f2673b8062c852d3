#include "RenderTestSupport.h"

#include "support/Signals.h"
#include "support/WaitFor.h"
#include "tools/render/AtomicFile.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace velmoran::test
{

namespace
{

constexpr double kPi = 3.141592653589793;

std::string fileText(const std::string& path)
{
    const std::vector<char> bytes = render::readFileBytes(path);
    return std::string(bytes.begin(), bytes.end());
}

// The text quoted as one word of a shell command.
std::string shellWord(const std::string& text)
{
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

bool holdsTemporaryFile(const ScratchFolder& folder)
{
    const std::vector<std::string> names = folder.names();
    return std::any_of(names.begin(), names.end(), [](const std::string& name) { return name[0] == '.'; });
}

} // namespace

ScratchFolder::ScratchFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "velmoran-render-test.XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("cannot make a scratch folder");
    mPath = pattern;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string ScratchFolder::file(const std::string& name) const
{
    return mPath + "/" + name;
}

std::vector<std::string> ScratchFolder::names() const
{
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(mPath))
        found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
}

void writeSound(const std::string& path, const std::vector<float>& samples, int format, int sampleRate,
                int channels)
{
    render::AudioWriter writer(path, render::AudioInfo{sampleRate, channels, 0, format});
    writer.write(samples.data(), static_cast<int64_t>(samples.size()) / channels);
    writer.commit();
}

Sound readSound(const std::string& path)
{
    render::AudioReader reader(path);
    Sound sound;
    sound.info = reader.info();
    reader.read(sound.samples, reader.info().frames);
    return sound;
}

std::vector<float> sine(double frequencyHz, double levelDb, double seconds, int sampleRate, int channels)
{
    const std::vector<float> mono =
        testing::MakeSine(frequencyHz, sampleRate, static_cast<size_t>(seconds * sampleRate),
                          std::sqrt(2.0) * std::pow(10.0, levelDb / 20.0));
    std::vector<float> samples;
    for (const float sample : mono)
        samples.insert(samples.end(), static_cast<size_t>(channels), sample);
    return samples;
}

std::vector<float> busySignal(double seconds, int sampleRate, int channels)
{
    const auto frames = static_cast<size_t>(seconds * sampleRate);
    std::vector<float> samples(frames * static_cast<size_t>(channels));
    uint32_t noise = 12345u;
    for (size_t index = 0; index < samples.size(); ++index)
    {
        noise = noise * 1664525u + 1013904223u;
        const double tone = 0.4 * std::sin(2.0 * kPi * 441.0 * static_cast<double>(index / 2) / sampleRate);
        // Whole 16-bit steps, so that every integer encoding holds the signal exactly.
        const double value = tone + 0.5 * (static_cast<double>(noise >> 8) / 16777216.0 - 0.5);
        samples[index] = static_cast<float>(std::round(value * 32767.0) / 32768.0);
    }
    return samples;
}

double rmsDb(const Sound& sound, int channel, size_t first, size_t count)
{
    const auto channels = static_cast<size_t>(sound.info.channels);
    const size_t last = first + std::min(count, sound.samples.size() / channels - first);
    double sum = 0.0;
    for (size_t frame = first; frame < last; ++frame)
    {
        const double sample = sound.samples[frame * channels + static_cast<size_t>(channel)];
        sum += sample * sample;
    }
    return 10.0 * std::log10(std::max(sum / static_cast<double>(std::max<size_t>(last - first, 1)), 1e-30));
}

ToolRun runTool(const std::vector<std::string>& arguments, bool givePlugin)
{
    std::string command = shellWord(toolPath());
    if (givePlugin)
        command += " --plugin " + shellWord(modulePath());
    for (const std::string& argument : arguments)
        command += " " + shellWord(argument);
    const ScratchFolder streams;
    const int status =
        std::system((command + " >" + streams.file("output") + " 2>" + streams.file("errors")).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, fileText(streams.file("errors")),
            fileText(streams.file("output"))};
}

ToolRun interruptTool(const std::vector<std::string>& arguments, const std::string& feedPath,
                      const std::vector<char>& feed, const ScratchFolder& folder, int signal)
{
    std::vector<std::string> words = {toolPath(), "--plugin", modulePath()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, toolPath().c_str(), nullptr, nullptr, argv.data(), environ) != 0)
        return {};
    int pipe = -1;
    // Opening a pipe without a reader fails at once; the tool opens it when it starts reading.
    waitFor([&] { return (pipe = open(feedPath.c_str(), O_WRONLY | O_NONBLOCK)) >= 0; });
    const bool rendering = pipe >= 0 &&
                           write(pipe, feed.data(), feed.size()) == static_cast<ssize_t>(feed.size()) &&
                           waitFor([&] { return holdsTemporaryFile(folder); });
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    if (pipe >= 0)
        close(pipe);
    return {rendering && WIFEXITED(status) ? WEXITSTATUS(status) : -1, {}, {}};
}

} // namespace velmoran::test
