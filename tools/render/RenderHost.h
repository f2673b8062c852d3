#pragma once

#include "sdk/hosting/Module.h"
#include "sdk/hosting/PluginInstance.h"

#include <memory>
#include <string>
#include <vector>

namespace velmoran::render
{

using Steinberg::Vst::ParamID;
using Steinberg::Vst::ParamValue;

// The module file of a path given with --plugin: the path itself, or inside a bundle folder the
// Linux module at Contents/x86_64-linux/.
std::string moduleFileOf(const std::string& path);
// The module to load when none is given: the bundle installed beside the program (dist/bin next
// to dist/Velmoran.vst3), else the module of the build the program came from.
std::string defaultModulePath(const std::string& programPath);

// Loads a module through its entry points; throws RenderError naming the path and the cause.
std::unique_ptr<VST3::Hosting::Module> loadModule(const std::string& path);

// One plug-in instance driven the way a host drives it for an offline render: settings go to
// the controller, and the value of every parameter, as parameter changes, to the processor's
// first block; processing is set up at the file's rate and channel count, and a stretch of
// silence runs through first so that the effect's fade-in and any glide are over before the first
// real sample.
class RenderHost
{
public:
    // Makes, initialises and connects processor and controller of module; throws RenderError
    // naming modulePath when that fails.
    RenderHost(VST3::Hosting::Module& module, const std::string& modulePath);
    ~RenderHost();
    RenderHost(const RenderHost&) = delete;
    RenderHost& operator=(const RenderHost&) = delete;

    // The controller, for titles, texts and programs.
    Steinberg::Vst::IEditController& controller() { return *mInstance.controller; }

    // Gives processor and controller a saved state, as a host restoring a project does; throws
    // RenderError naming source when the plug-in refuses it.
    void loadState(const std::vector<char>& bytes, const std::string& source);
    // The processor's state as it would be saved with a project.
    std::vector<char> saveState();
    // Sets a parameter in the controller and queues it for the processor's next block.
    void setParameter(ParamID tag, ParamValue value);

    // Sets up processing (rate in Hz, 1 or 2 channels, largest block in samples), switches it on
    // and runs the pre-roll, whose first block carries every parameter's value; throws
    // RenderError when the plug-in refuses the set-up.
    void start(double sampleRate, int channels, int maxBlockSize);
    // Processes frames samples (at most the largest block) of planar channels.
    void process(float* const* inputs, float* const* outputs, int frames);
    // Switches processing off again; also done by the destructor.
    void stop();

private:
    // Queues a value for the processor's next block.
    void queueChange(ParamID tag, ParamValue value);
    // Queues the controller's value of every parameter but the program choice.
    void queueEveryParameter();

    Steinberg::Vst::PluginInstance mInstance;
    std::string mModulePath;
    int mChannels = 2;
    int mMaxBlockSize = 0;
    bool mActive = false;
};

// Seconds of silence run through the plug-in before the first sample of a job.
constexpr double kPreRollSeconds = 2.0;

} // namespace velmoran::render
