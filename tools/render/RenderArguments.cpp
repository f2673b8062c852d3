#include "RenderArguments.h"

#include "RenderError.h"

#include <cerrno>
#include <cstdlib>
#include <set>

namespace velmoran::render
{

namespace
{

constexpr const char* kWrittenContainers = "wav, aiff or flac";

// An integer argument within [low, high]; throws a usage error naming the option otherwise.
int integerOption(const std::string& option, const std::string& text, int low, int high)
{
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || value < low || value > high)
    {
        throw usageError(option + " takes a whole number from " + std::to_string(low) + " to " +
                         std::to_string(high) + ", not '" + text + "'");
    }
    return static_cast<int>(value);
}

ParameterAssignment assignmentOf(const std::string& text)
{
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size())
    {
        throw usageError("--set takes \"TITLE=VALUE\", for example --set \"03 Gain=+6 dB\", not '" + text +
                         "'");
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

Dither ditherNamed(const std::string& value)
{
    if (value == "tpdf")
    {
        return Dither::tpdf;
    }
    if (value == "none")
    {
        return Dither::none;
    }
    throw usageError("--dither takes tpdf or none, not '" + value + "'");
}

// Options that take a value, and the field each one fills.
void applyOption(RenderRequest& request, const std::string& option, const std::string& value)
{
    if (option == "--plugin")
    {
        request.pluginPath = value;
    }
    else if (option == "--preset")
    {
        request.preset = value;
    }
    else if (option == "--set")
    {
        request.assignments.push_back(assignmentOf(value));
    }
    else if (option == "--load-state")
    {
        request.loadStatePath = value;
    }
    else if (option == "--save-state")
    {
        request.saveStatePath = value;
    }
    else if (option == "--response")
    {
        request.responsePath = value;
    }
    else if (option == "--block-size")
    {
        request.blockSize = integerOption(option, value, kMinBlockSize, kMaxBlockSize);
    }
    else if (option == "--rate")
    {
        request.responseSampleRate = integerOption(option, value, 8000, 384000);
    }
    else if (option == "--format")
    {
        request.container = containerNamed(value);
        if (!request.container)
        {
            throw usageError("--format takes " + std::string(kWrittenContainers) + ", not '" + value + "'");
        }
    }
    else if (option == "--sample-format")
    {
        request.encoding = encodingNamed(value);
        if (!request.encoding)
        {
            throw usageError("--sample-format takes 16, 24, 32 or float, not '" + value + "'");
        }
    }
    else if (option == "--dither")
    {
        request.dither = ditherNamed(value);
    }
    else if (option == "--demo-signal")
    {
        request.demoSignalPath = value;
    }
}

bool takesValue(const std::string& option)
{
    static const char* const kOptions[] = {"--plugin",     "--preset",        "--set",         "--load-state",
                                           "--save-state", "--response",      "--block-size",  "--rate",
                                           "--format",     "--sample-format", "--demo-signal", "--dither"};
    for (const char* known : kOptions)
    {
        if (option == known)
        {
            return true;
        }
    }
    return false;
}

bool applySwitch(RenderRequest& request, const std::string& option)
{
    if (option == "--help" || option == "-h")
    {
        request.help = true;
    }
    else if (option == "--list-presets")
    {
        request.listPresets = true;
    }
    else if (option == "--list-parameters")
    {
        request.listParameters = true;
    }
    else if (option == "--allow-truncated")
    {
        request.allowTruncated = true;
    }
    else if (option == "--quiet" || option == "-q")
    {
        request.quiet = true;
    }
    else
    {
        return false;
    }
    return true;
}

// The checks that need the whole command line.
void checkComplete(const RenderRequest& request, const std::vector<std::string>& files)
{
    if (request.help || request.listPresets || request.listParameters || !request.demoSignalPath.empty())
    {
        if (!files.empty())
        {
            throw usageError("unexpected argument '" + files.front() + "'");
        }
        return;
    }
    if (files.size() > 2)
    {
        throw usageError("unexpected argument '" + files[2] + "': give one input and one output file");
    }
    if (files.size() == 1)
    {
        throw usageError("no output file: give an input and an output file, for example "
                         "velmoran-render in.wav out.wav");
    }
    if (files.empty() && request.responsePath.empty() && request.saveStatePath.empty())
    {
        throw usageError("no input and output file given (velmoran-render --help shows how)");
    }
    const std::string extension = files.size() == 2 ? extensionOf(files[1]) : std::string();
    if (!request.container && !extension.empty() && !containerNamed(extension))
    {
        throw usageError("the output '" + files[1] + "' names a format the tool cannot write: it writes " +
                         kWrittenContainers + ", not '" + extension + "' (or give --format)");
    }
}

} // namespace

RenderRequest parseArguments(const std::vector<std::string>& arguments)
{
    RenderRequest request;
    std::vector<std::string> files;
    std::set<std::string> given;
    for (size_t index = 0; index < arguments.size(); ++index)
    {
        const std::string& argument = arguments[index];
        std::string option = argument;
        std::string value;
        bool hasValue = false;
        const size_t equals = argument.find('=');
        if (argument.rfind("--", 0) == 0 && equals != std::string::npos)
        {
            option = argument.substr(0, equals);
            value = argument.substr(equals + 1);
            hasValue = true;
        }
        if (takesValue(option))
        {
            if (!hasValue)
            {
                if (index + 1 >= arguments.size())
                {
                    throw usageError(option + " needs a value");
                }
                value = arguments[++index];
            }
            if (value.empty())
            {
                throw usageError(option + " needs a value, not an empty one");
            }
            if (option != "--set" && !given.insert(option).second)
            {
                throw usageError(option + " is given twice; it takes one value");
            }
            applyOption(request, option, value);
        }
        else if (!hasValue && applySwitch(request, option))
        {
            continue;
        }
        else if (argument.size() > 1 && argument[0] == '-')
        {
            throw usageError("unknown option '" + argument + "' (velmoran-render --help lists the options)");
        }
        else if (argument.empty())
        {
            throw usageError("an empty file name: give an input and an output file");
        }
        else
        {
            files.push_back(argument);
        }
    }
    checkComplete(request, files);
    if (files.size() == 2)
    {
        request.inputPath = files[0];
        request.outputPath = files[1];
    }
    return request;
}

std::string helpText(const std::string& programName)
{
    return "Usage: " + programName + R"( [options] INPUT OUTPUT
       )" + programName +
           R"( [options] --response PLOT.png [INPUT OUTPUT]

Renders a sound file through the Velmoran equaliser, loaded from its VST 3 module the way a
host loads it. INPUT is a WAV, AIFF or FLAC file, mono or stereo, 16-, 24-, 32-bit or float, at
any sample rate; OUTPUT gets the same length, rate, channels and format unless asked otherwise.
The output appears only when it is complete, and only replaces a regular file that is none of
the job's other files (compared as files, whatever their names or links).

Settings (applied in this order):
  --load-state FILE     start from a state saved by --save-state
  --preset N|NAME       a factory program: 0..5, "03 - British EQ NV-3" or "Factory Preset 03"
  --set "TITLE=VALUE"   one parameter by its title, in the plug-in's own texts; repeatable:
                          --set "06 Filt Type=Peak +3dB" --set "06 Gain=+6 dB"
                          --set "06 Freq=1000 Hz" --set "06 Q=2" --set "EQ=Out"
  --save-state FILE     save the resulting state (69 values, 276 bytes) for --load-state

Output:
  --format wav|aiff|flac        container (default: the output's extension, else the input's)
  --sample-format 16|24|32|float  sample encoding (default: the input's)
  --dither tpdf|none    triangular noise of one step before integer samples are rounded to
                        the nearest step (default: tpdf for 16-bit and smaller, else none)
  -                     as OUTPUT: write to standard output, for example to a pipe:
                          --format flac in.wav - | other-program
  --allow-truncated     render what a truncated WAV or AIFF input holds instead of stopping
  --response PLOT.png   plot the measured magnitude response, 20 Hz to 20 kHz, beside the
                        designed curve (needs gnuplot); with no INPUT it is measured at --rate
  --rate HZ             sample rate of a response measured without INPUT (default 48000)

Other options:
  --plugin PATH         the module to load: Velmoran.so or the Velmoran.vst3 bundle folder
                        (default: the bundle beside this program, else the module of its build)
  --block-size N        samples per processing block, 1..8192 (default 512)
  --list-presets        print the factory programs
  --list-parameters     print every parameter title with its values or range
  --demo-signal FILE    write the built-in demo signal (8 s, 48 kHz stereo, 24-bit WAV)
  --quiet, -q           no progress bar and no notes
  --help, -h            this text

Examples:
  )" + programName +
           R"( --preset 3 mix.wav mix-nv3.wav
  )" + programName +
           R"( --set "06 Filt Type=Peak +3dB" --set "06 Gain=+6 dB" in.flac out.flac
  )" + programName +
           R"( --preset "01 - British EQ NV-1" --save-state nv1.state --response nv1.png
  )" + programName +
           R"( --load-state nv1.state --sample-format float in.wav out.wav

Exit status: 0 when done, 1 when the job failed, 2 for a bad command line, 130 or 143 when
interrupted by Ctrl-C or SIGTERM (the unfinished output is removed).
)";
}

} // namespace velmoran::render
