// The plug-in's cost where a host meets it: the built module loaded through its factory as a host
// loads it, `process` called with blocks of 64 or 512 frames of pink noise at 48 kHz on one pinned
// core, ten peaking bands, the analyser resting or running for an open editor. Each iteration also
// times the scalar loop of twenty biquads over the same frames, so the ratio holds even when the
// machine is shared.

#include "ReferenceLoops.h"

#include "plugin/PlugParameters.h"
#include "sdk/hosting/Module.h"
#include "sdk/hosting/ParameterChanges.h"
#include "sdk/hosting/PluginInstance.h"
#include "sdk/hosting/ProcessBlock.h"

#include "pluginterfaces/vst/ivstmessage.h"

#include <benchmark/benchmark.h>

#include <sched.h>
#include <time.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace velmoran::bench;
namespace Plug = Steinberg::Vst::Velmoran;

constexpr double kRate = 48000.0;
constexpr int kFramesPerIteration = 6144; // 0.128 s, whole blocks of 64 and of 512
constexpr int kLongestBlock = 512;

double ThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

VST3::Hosting::Module& BuiltModule()
{
    static std::unique_ptr<VST3::Hosting::Module> module = []
    {
        std::string error;
        auto loaded = VST3::Hosting::Module::load(VELMORAN_BUILT_MODULE, error);
        if (!loaded)
        {
            std::fprintf(stderr, "cannot load %s: %s\n", VELMORAN_BUILT_MODULE, error.c_str());
            std::exit(1);
        }
        return loaded;
    }();
    return *module;
}

// The ten peaking bands of the reference loop, "FFT" as asked, the effect in.
IPtr<ParameterChanges> TenPeakingBands(bool analyser)
{
    auto changes = owned(new ParameterChanges());
    auto set = [&](ParamID tag, double value)
    {
        int32 index = 0;
        if (IParamValueQueue* queue = changes->addParameterData(tag, index))
            queue->addPoint(0, value, index);
    };
    for (int band = 1; band <= kBands; ++band)
    {
        set(Plug::filterTypeTag(band), kPeakType / 20.0);
        set(Plug::frequencyTag(band), (BandFrequency(band) - 20.0) / 19980.0);
        set(Plug::gainTag(band), (BandGain(band) + 18.0) / 36.0);
        set(Plug::qTag(band), Plug::normalisedQ(1.0f));
        set(Plug::enableTag(band), 1.0);
    }
    set(Plug::kFftTag, analyser ? 1.0 : 0.0);
    set(Plug::kEqTag, 1.0);
    return changes;
}

// A processor and controller as a host holds them, set up, connected and processing, its bands
// settled; with the analyser on, the processor is told an editor is open.
class HostedPlugin
{
public:
    explicit HostedPlugin(bool analyser) : mInstance(BuiltModule().factory())
    {
        SpeakerArrangement stereo = SpeakerArr::kStereo;
        mInstance.processor->setBusArrangements(&stereo, 1, &stereo, 1);
        ProcessSetup setup{kRealtime, kSample32, kLongestBlock, kRate};
        mInstance.processor->setupProcessing(setup);
        mInstance.component->setActive(true);
        mInstance.processor->setProcessing(true);
        if (analyser)
            tellEditorOpen();
        std::vector<std::vector<float>> silence(2, std::vector<float>(kLongestBlock, 0.0f));
        std::vector<std::vector<float>> output = silence;
        processBlock(mInstance.processor, silence, output, kLongestBlock, TenPeakingBands(analyser));
        for (int block = 0; block < 200; ++block)
            processBlock(mInstance.processor, silence, output, kLongestBlock);
    }
    ~HostedPlugin()
    {
        mInstance.processor->setProcessing(false);
        mInstance.component->setActive(false);
    }

    IAudioProcessor* processor() const { return mInstance.processor; }

private:
    void tellEditorOpen()
    {
        FUnknownPtr<IConnectionPoint> connection(mInstance.component);
        auto message = owned(new HostMessage());
        message->setMessageID("EditorOpen");
        message->getAttributes()->setInt("open", 1);
        if (connection)
            connection->notify(message);
    }

    PluginInstance mInstance;
};

const std::array<std::vector<float>, 2>& PinkStereo()
{
    static const std::array<std::vector<float>, 2> signal{PinkNoise(kFramesPerIteration, 1u),
                                                          PinkNoise(kFramesPerIteration, 2u)};
    return signal;
}

void ProcessAgainstScalarLoop(benchmark::State& state)
{
    const bool analyser = state.range(0) != 0;
    const int block = static_cast<int>(state.range(1));
    HostedPlugin plugin(analyser);
    ScalarTwentyBiquads scalar(static_cast<float>(kRate));
    const auto& input = PinkStereo();
    std::array<std::vector<float>, 2> output{std::vector<float>(kFramesPerIteration),
                                             std::vector<float>(kFramesPerIteration)};
    double processSeconds = 0.0;
    double scalarSeconds = 0.0;
    for (auto _ : state)
    {
        const double start = ThreadSeconds();
        for (int offset = 0; offset < kFramesPerIteration; offset += block)
        {
            float* inputs[2] = {const_cast<float*>(&input[0][offset]), const_cast<float*>(&input[1][offset])};
            float* outputs[2] = {&output[0][offset], &output[1][offset]};
            processBlock(plugin.processor(), inputs, 2, outputs, 2, block);
        }
        const double processed = ThreadSeconds();
        for (int offset = 0; offset < kFramesPerIteration; offset += block)
            scalar.run(&input[0][offset], &input[1][offset], &output[0][offset], &output[1][offset], block);
        const double end = ThreadSeconds();
        benchmark::DoNotOptimize(output[0].data());
        processSeconds += processed - start;
        scalarSeconds += end - processed;
        state.SetIterationTime(processed - start);
    }
    const double frames = static_cast<double>(state.iterations()) * kFramesPerIteration;
    state.counters["ns_per_frame"] = 1e9 * processSeconds / frames;
    state.counters["scalar_ns"] = 1e9 * scalarSeconds / frames;
    state.counters["vs_scalar"] = processSeconds / scalarSeconds;
}
BENCHMARK(ProcessAgainstScalarLoop)
    ->ArgNames({"analyser", "block"})
    ->ArgsProduct({{0, 1}, {64, 512}})
    ->UseManualTime()
    ->MinWarmUpTime(0.2)
    ->Repetitions(3);

// One core for the whole run, as an audio thread has: no migration between caches.
void PinToLastCore()
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    if (sched_getaffinity(0, sizeof(cores), &cores) != 0)
        return;
    int last = -1;
    for (int core = 0; core < CPU_SETSIZE; ++core)
        if (CPU_ISSET(core, &cores))
            last = core;
    if (last < 0)
        return;
    CPU_ZERO(&cores);
    CPU_SET(last, &cores);
    sched_setaffinity(0, sizeof(cores), &cores);
}

} // namespace

int main(int argc, char** argv)
{
    PinToLastCore();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
