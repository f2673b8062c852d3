// Offline rendering through the plug-in module as velmoran-render drives it: one minute of 48 kHz
// stereo noise through ten active bands, and how many times faster than real time that is.

#include "tools/render/PluginSettings.h"
#include "tools/render/RenderHost.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace
{

using namespace velmoran::render;

constexpr int kSampleRate = 48000;
constexpr int kSeconds = 60;

// Ten bands, each with a filter of its own at its own frequency.
RenderRequest tenActiveBands()
{
    RenderRequest request;
    const char* const settings[][4] = {
        {"01", "LF Shelf", "60 Hz", "+4 dB"},    {"02", "Pk dB/2", "120 Hz", "-3 dB"},
        {"03", "Peak -3dB", "250 Hz", "+5 dB"},  {"04", "Peak +3dB", "500 Hz", "-4 dB"},
        {"05", "Peak Asym", "1000 Hz", "+3 dB"}, {"06", "Peak Inv", "2000 Hz", "-2 dB"},
        {"07", "Band Pass", "3000 Hz", "0 dB"},  {"08", "Pk dB/2", "5000 Hz", "+2 dB"},
        {"09", "High Pass", "30 Hz", "0 dB"},    {"10", "HF Shelf", "10000 Hz", "+3 dB"}};
    for (const auto& band : settings)
    {
        const std::string number = band[0];
        request.assignments.push_back({number + " Filt Type", band[1]});
        request.assignments.push_back({number + " Freq", band[2]});
        request.assignments.push_back({number + " Gain", band[3]});
        request.assignments.push_back({number + " Enable", "On"});
    }
    return request;
}

void RenderOneMinute(benchmark::State& state)
{
    const int blockSize = static_cast<int>(state.range(0));
    auto module = loadModule(VELMORAN_BUILT_MODULE);
    RenderHost host(*module, VELMORAN_BUILT_MODULE);
    applySettings(host, tenActiveBands());
    host.start(kSampleRate, 2, blockSize);

    const size_t frames = static_cast<size_t>(kSampleRate) * kSeconds;
    std::vector<std::vector<float>> input(2, std::vector<float>(frames));
    uint32_t noise = 1u;
    for (auto& channel : input)
    {
        for (float& sample : channel)
        {
            noise = noise * 1664525u + 1013904223u;
            sample = static_cast<float>(noise >> 8) / 16777216.0f - 0.5f;
        }
    }
    std::vector<std::vector<float>> output = input;
    for (auto _ : state)
    {
        for (size_t done = 0; done < frames; done += static_cast<size_t>(blockSize))
        {
            const int length =
                static_cast<int>(std::min<size_t>(static_cast<size_t>(blockSize), frames - done));
            float* inputs[2] = {input[0].data() + done, input[1].data() + done};
            float* outputs[2] = {output[0].data() + done, output[1].data() + done};
            host.process(inputs, outputs, length);
        }
        benchmark::DoNotOptimize(output[0].data());
    }
    // Minutes of audio per second of work, times 60: how many times faster than real time.
    state.counters["x_realtime"] =
        benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
}

BENCHMARK(RenderOneMinute)->Arg(64)->Arg(512)->Arg(4096)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
