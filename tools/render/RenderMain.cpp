// velmoran-render: renders sound files through the Velmoran plug-in module, loaded and driven
// through its VST 3 entry points as a host drives it, and plots its magnitude response.

#include "AtomicFile.h"
#include "AudioFile.h"
#include "DemoSignal.h"
#include "PluginSettings.h"
#include "RenderArguments.h"
#include "RenderError.h"
#include "RenderHost.h"
#include "RenderJob.h"
#include "ResponseMeasurement.h"
#include "ResponsePlot.h"

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
    int format = 0;
    if (!request.inputPath.empty())
    {
        reader.emplace(request.inputPath);
        format = chosenOutputFormat(request, reader->info());
    }
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
            renderFile(host, *reader, request.outputPath, format, request.blockSize, !request.quiet);
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
    if (!request.demoSignalPath.empty())
    {
        writeDemoSignal(request.demoSignalPath, request.quiet);
        return 0;
    }
    const std::string modulePath =
        request.pluginPath.empty() ? defaultModulePath(programPath) : moduleFileOf(request.pluginPath);
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
