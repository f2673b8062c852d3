#pragma once

#include "AudioFile.h"

#include <optional>
#include <string>
#include <vector>

namespace velmoran::render
{

// One "--set TITLE=VALUE" as typed: a parameter title and a value in the plug-in's own texts.
struct ParameterAssignment
{
    std::string title;
    std::string value;
};

// Everything the command line asks for.
struct RenderRequest
{
    bool help = false;
    bool listPresets = false;
    bool listParameters = false;
    std::string demoSignalPath;
    std::string inputPath;
    std::string outputPath;
    std::string pluginPath;
    std::optional<std::string> preset;
    std::vector<ParameterAssignment> assignments;
    std::string loadStatePath;
    std::string saveStatePath;
    std::string responsePath;
    int blockSize = 512;
    int responseSampleRate = 48000;
    std::optional<Container> container;
    std::optional<Encoding> encoding;
    std::optional<Dither> dither;
    bool allowTruncated = false;
    bool quiet = false;
};

// Block sizes the tool accepts, in samples.
constexpr int kMinBlockSize = 1;
constexpr int kMaxBlockSize = 8192;

// The request of a command line (arguments without the program name); throws a usage RenderError
// that names the offending argument: an unknown option, an empty value or file name, an option
// that takes one value given twice, an output whose extension names no format the tool writes.
RenderRequest parseArguments(const std::vector<std::string>& arguments);

// The text --help prints, for a program called programName.
std::string helpText(const std::string& programName);

} // namespace velmoran::render
