// velmoran-render: renders sound files through the Velmoran plug-in module, loaded and driven
// through its VST 3 entry points as a host drives it, and plots its magnitude response.

#include "AtomicFile.h"
#include "AudioFile.h"
#include "DemoSignal.h"
#include "Interruption.h"
#include "JobFiles.h"
#include "PluginSettings.h"
#include "RenderArguments.h"
#include "RenderError.h"
#include "RenderHost.h"
#include "RenderJob.h"
#include "ResponseMeasurement.h"
#include "ResponsePlot.h"
#include "SoundHeader.h"

#include <sndfile.h>

#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace
{

using namespace velmoran::render;

constexpr const char* kProgramName = "velmoran-render";

void writeDemoSignal(const std::string& path, bool quiet)
{
    const std::vector<float> signal = makeDemoSignal();
    AudioInfo info;
    info.sampleRate = kDemoSampleRate;
    info.channels = kDemoChannels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    AudioWriter writer(path, info);
    writer.write(signal.data(), static_cast<int64_t>(signal.size() / kDemoChannels));
    writer.commit();
    if (!quiet)
    {
        std::fprintf(stderr, "Wrote the demo signal to %s (%.0f s, %d Hz stereo, WAV 24-bit)\n", path.c_str(),
                     kDemoSeconds, kDemoSampleRate);
    }
}

// What the settings are called in a plot's title.
std::string settingsTitle(RenderHost& host, const RenderRequest& request)
{
    std::string title;
    if (request.preset)
    {
        const std::vector<FactoryProgram> programs = factoryPrograms(host.controller());
        title = programs[static_cast<size_t>(programIndexOf(*request.preset, programs))].name;
    }
    else if (!request.loadStatePath.empty())
    {
        title = "state " + request.loadStatePath;
    }
    else
    {
        title = "default settings";
    }
    if (!request.assignments.empty())
    {
        title += " with " + std::to_string(request.assignments.size()) + " parameter" +
                 (request.assignments.size() > 1 ? "s" : "") + " set";
    }
    return title;
}

void plotResponse(VST3::Hosting::Module& module, const std::string& modulePath, const RenderRequest& request,
                  double sampleRate)
{
    RenderHost host(module, modulePath);
    applySettings(host, request);
    host.start(sampleRate, 2, request.blockSize);
    ResponseCurves curves;
    curves.sampleRate = sampleRate;
    curves.frequenciesHz = responseFrequencies(sampleRate);
    curves.measuredDb = measureResponseDb(host, sampleRate, request.blockSize, curves.frequenciesHz);
    curves.designedDb =
        designedResponseDb(host.saveState(), sampleRate, curves.frequenciesHz, curves.designNote);
    const std::string title = "Velmoran: " + settingsTitle(host, request) + " (" +
                              std::to_string(static_cast<int>(sampleRate)) + " Hz)";
    writeResponsePlot(curves, title, request.responsePath);
    if (!request.quiet)
    {
        std::fprintf(stderr, "Plotted the response to %s\n", request.responsePath.c_str());
    }
}

// Refuses a job that would overwrite one of its own files, before anything is read or written.
void checkFilesOf(const RenderRequest& request, const std::string& modulePath)
{
    checkJobFiles({{"the plug-in", modulePath, false},
                   {"the input", request.inputPath, false},
                   {"the state to load", request.loadStatePath, false},
                   {"the output", request.outputPath, true},
                   {"the state to save", request.saveStatePath, true},
                   {"the plot", request.responsePath, true},
                   {"the demo signal", request.demoSignalPath, true}});
}

// Stops at an input whose header promises more than it holds, unless told to render what is there.
void checkWhole(const RenderRequest& request)
{
    const std::optional<SampleBytes> truncated = truncatedSamples(request.inputPath);
    if (!truncated)
    {
        return;
    }
    const std::string what = "'" + request.inputPath + "' is truncated: its header promises " +
                             std::to_string(truncated->promised) + " bytes of samples, the file holds " +
                             std::to_string(truncated->present);
    if (!request.allowTruncated)
    {
        throw RenderError(what + " (--allow-truncated renders what it holds)");
    }
    std::fprintf(stderr, "%s: warning: %s; rendering what it holds\n", kProgramName, what.c_str());
}

// Opens the input, if there is one, checked to be whole; notes what the render cannot keep of it.
void openInput(const RenderRequest& request, std::optional<AudioReader>& reader)
{
    if (request.inputPath.empty())
    {
        return;
    }
    checkWhole(request);
    reader.emplace(request.inputPath);
    if (holdsDoublePrecision(reader->info().format) && !request.quiet)
    {
        std::fprintf(stderr,
                     "%s: note: '%s' holds 64-bit samples; the plug-in works with 32-bit floats, so the "
                     "output keeps 32-bit float precision in its 64-bit samples\n",
                     kProgramName, request.inputPath.c_str());
    }
}

// The output's format: --format, else the output name's extension, else the input's container;
// --sample-format, else the input's encoding.
int chosenOutputFormat(const RenderRequest& request, const AudioInfo& input)
{
    std::optional<Container> container = request.container;
    if (!container)
    {
        container = containerOfPath(request.outputPath);
    }
    return outputFormat(input.format, container, request.encoding);
}

void renderAndSave(VST3::Hosting::Module& module, const std::string& modulePath, const RenderRequest& request)
{
    // Settings first: a mistyped title or value is reported before any file is touched.
    RenderHost host(module, modulePath);
    applySettings(host, request);
    std::optional<AudioReader> reader;
    openInput(request, reader);
    const int format = reader ? chosenOutputFormat(request, reader->info()) : 0;
    const double rate = reader ? reader->info().sampleRate : request.responseSampleRate;
    if (!request.responsePath.empty())
    {
        plotResponse(module, modulePath, request, rate);
    }
    if (!reader && request.saveStatePath.empty())
    {
        return;
    }
    host.start(rate, reader ? reader->info().channels : 2, request.blockSize);
    if (reader)
    {
        const RenderSummary summary =
            renderFile(host, *reader, request.outputPath, format,
                       request.dither.value_or(defaultDither(format)), request.blockSize, !request.quiet);
        if (!request.quiet)
        {
            const double audioSeconds = static_cast<double>(summary.frames) / reader->info().sampleRate;
            std::fprintf(stderr, "Rendered %s to %s (%s, %d Hz, %s, %.1f s) in %.2f s\n",
                         request.inputPath.c_str(), request.outputPath.c_str(),
                         formatDescription(format).c_str(), reader->info().sampleRate,
                         reader->info().channels == 1 ? "mono" : "stereo", audioSeconds, summary.seconds);
        }
        // A float file keeps samples beyond full scale as they are: only a clipping format loses them.
        if (summary.overs > 0 && clipsAtFullScale(format))
        {
            std::fprintf(stderr,
                         "%s: warning: %lld samples of %s went beyond full scale and were clipped; lower "
                         "\"Output Gain\" or use --sample-format float\n",
                         kProgramName, static_cast<long long>(summary.overs), request.outputPath.c_str());
        }
    }
    if (!request.saveStatePath.empty())
    {
        writeFileBytes(request.saveStatePath, host.saveState());
        if (!request.quiet)
        {
            std::fprintf(stderr, "Saved the state to %s\n", request.saveStatePath.c_str());
        }
    }
}

int run(const std::vector<std::string>& arguments, const std::string& programPath)
{
    const RenderRequest request = parseArguments(arguments);
    if (request.help)
    {
        std::fputs(helpText(kProgramName).c_str(), stdout);
        return 0;
    }
    const std::string modulePath =
        request.pluginPath.empty() ? defaultModulePath(programPath) : moduleFileOf(request.pluginPath);
    checkFilesOf(request, modulePath);
    if (!request.demoSignalPath.empty())
    {
        writeDemoSignal(request.demoSignalPath, request.quiet);
        return 0;
    }
    const auto module = loadModule(modulePath);
    if (request.listPresets || request.listParameters)
    {
        RenderHost host(*module, modulePath);
        if (request.listPresets)
        {
            std::printf("Factory programs (--preset NUMBER or --preset NAME):\n%s",
                        programListing(host).c_str());
        }
        if (request.listParameters)
        {
            std::printf("Parameters (--set \"TITLE=VALUE\"), with their default values:\n%s",
                        parameterListing(host).c_str());
        }
        return 0;
    }
    renderAndSave(*module, modulePath, request);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    // A plotter that quits early must not end the program through a broken pipe.
    std::signal(SIGPIPE, SIG_IGN);
    installInterruptionHandlers();
    try
    {
        return run(std::vector<std::string>(argv + 1, argv + argc), argv[0]);
    }
    catch (const RenderError& error)
    {
        std::fprintf(stderr, "%s: %s\n", kProgramName, error.what());
        if (error.kind() == RenderError::Kind::usage)
        {
            std::fprintf(stderr, "(%s --help shows how to use it)\n", kProgramName);
            return 2;
        }
        return 1;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s: %s\n", kProgramName, error.what());
        return 1;
    }
}
