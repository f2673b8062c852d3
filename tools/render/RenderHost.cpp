#include "RenderHost.h"

#include "RenderError.h"

#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/vstspeaker.h"
#include "sdk/hosting/ProcessBlock.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#ifndef VELMORAN_BUILT_MODULE
#define VELMORAN_BUILT_MODULE ""
#endif

namespace velmoran::render
{

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace
{

constexpr const char* kBundleModule = "Contents/x86_64-linux/Velmoran.so";

bool isFolder(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool exists(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0;
}

// The folder that holds the running program, from /proc (argv[0] when that is unavailable).
std::string programFolder(const std::string& programPath)
{
    std::vector<char> buffer(4096);
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    std::string path = length > 0 ? std::string(buffer.data(), static_cast<size_t>(length)) : programPath;
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

} // namespace

std::string moduleFileOf(const std::string& path)
{
    if (isFolder(path))
    {
        return path + (path.back() == '/' ? "" : "/") + kBundleModule;
    }
    return path;
}

std::string defaultModulePath(const std::string& programPath)
{
    const std::string installed = programFolder(programPath) + "/../Velmoran.vst3/" + kBundleModule;
    if (exists(installed))
    {
        return installed;
    }
    return VELMORAN_BUILT_MODULE;
}

std::unique_ptr<VST3::Hosting::Module> loadModule(const std::string& path)
{
    if (path.empty())
    {
        throw RenderError("no plug-in module found: build it (cmake --build --preset linux) or give "
                          "--plugin PATH/Velmoran.vst3");
    }
    const std::string file = moduleFileOf(path);
    if (!exists(file))
    {
        throw RenderError("cannot load the plug-in '" + file + "': no such file");
    }
    std::string reason;
    std::unique_ptr<VST3::Hosting::Module> module = VST3::Hosting::Module::load(file, reason);
    if (!module)
    {
        throw RenderError("cannot load the plug-in '" + file + "': " + reason);
    }
    return module;
}

RenderHost::RenderHost(VST3::Hosting::Module& module, const std::string& modulePath)
    : mInstance(module.factory()), mModulePath(modulePath)
{
    if (!mInstance.valid())
    {
        throw RenderError("cannot use the plug-in '" + modulePath + "': " + mInstance.failureReason());
    }
}

RenderHost::~RenderHost()
{
    stop();
}

void RenderHost::loadState(const std::vector<char>& bytes, const std::string& source)
{
    if (mInstance.component->setState(streamOf(bytes)) != kResultOk)
    {
        throw RenderError("cannot load the state '" + source + "': the plug-in refused it");
    }
    mInstance.controller->setComponentState(streamOf(bytes));
}

std::vector<char> RenderHost::saveState()
{
    return stateBytes(mInstance.component);
}

void RenderHost::setParameter(ParamID tag, ParamValue value)
{
    mInstance.controller->setParamNormalized(tag, value);
    queueChange(tag, value);
}

void RenderHost::queueChange(ParamID tag, ParamValue value)
{
    int32 index = 0;
    if (IParamValueQueue* queue = mInstance.handler->pendingChanges().addParameterData(tag, index))
    {
        queue->addPoint(0, value, index);
    }
}

void RenderHost::queueEveryParameter()
{
    IEditController& controller = *mInstance.controller;
    const int32 count = controller.getParameterCount();
    for (int32 index = 0; index < count; ++index)
    {
        ParameterInfo info = {};
        // The program parameter holds no setting of its own: a chosen program came as edits.
        if (controller.getParameterInfo(index, info) == kResultOk &&
            (info.flags & ParameterInfo::kIsProgramChange) == 0)
        {
            queueChange(info.id, controller.getParamNormalized(info.id));
        }
    }
}

void RenderHost::start(double sampleRate, int channels, int maxBlockSize)
{
    SpeakerArrangement arrangement = channels == 1 ? SpeakerArr::kMono : SpeakerArr::kStereo;
    if (mInstance.processor->setBusArrangements(&arrangement, 1, &arrangement, 1) != kResultOk)
    {
        throw RenderError("the plug-in '" + mModulePath + "' refuses " +
                          (channels == 1 ? std::string("mono") : std::string("stereo")) + " processing");
    }
    ProcessSetup setup = {};
    setup.processMode = kOffline;
    setup.symbolicSampleSize = kSample32;
    setup.maxSamplesPerBlock = maxBlockSize;
    setup.sampleRate = sampleRate;
    if (mInstance.processor->setupProcessing(setup) != kResultOk)
    {
        throw RenderError("the plug-in '" + mModulePath + "' refuses to process at " +
                          std::to_string(static_cast<int>(sampleRate)) + " Hz");
    }
    mInstance.component->setActive(true);
    mInstance.processor->setProcessing(true);
    mActive = true;
    mChannels = channels;
    mMaxBlockSize = maxBlockSize;
    // A processor's first state is not the plug-in's defaults (its input gain starts at 0 dB until
    // it is sent): like a host restoring a project, send every value with the first block.
    queueEveryParameter();

    std::vector<std::vector<float>> silence(static_cast<size_t>(channels),
                                            std::vector<float>(static_cast<size_t>(maxBlockSize)));
    std::vector<std::vector<float>> discarded = silence;
    std::vector<float*> inputs;
    std::vector<float*> outputs;
    for (int channel = 0; channel < channels; ++channel)
    {
        inputs.push_back(silence[static_cast<size_t>(channel)].data());
        outputs.push_back(discarded[static_cast<size_t>(channel)].data());
    }
    const auto total = static_cast<int64_t>(kPreRollSeconds * sampleRate);
    for (int64_t done = 0; done < total;)
    {
        const int frames = static_cast<int>(std::min<int64_t>(maxBlockSize, total - done));
        process(inputs.data(), outputs.data(), frames);
        done += frames;
    }
}

void RenderHost::process(float* const* inputs, float* const* outputs, int frames)
{
    if (frames > mMaxBlockSize)
    {
        throw RenderError("a block of " + std::to_string(frames) + " samples is longer than the " +
                          std::to_string(mMaxBlockSize) + " the plug-in was set up for");
    }
    ParameterChanges& changes = mInstance.handler->pendingChanges();
    const tresult result = processBlock(mInstance.processor, inputs, mChannels, outputs, mChannels, frames,
                                        changes.getParameterCount() > 0 ? &changes : nullptr, kOffline);
    changes.clearQueue();
    if (result != kResultOk)
    {
        throw RenderError("the plug-in '" + mModulePath + "' failed to process a block of " +
                          std::to_string(frames) + " samples");
    }
}

void RenderHost::stop()
{
    if (!mActive)
    {
        return;
    }
    mInstance.processor->setProcessing(false);
    mInstance.component->setActive(false);
    mActive = false;
}

} // namespace velmoran::render
