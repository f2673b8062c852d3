// Cost of the signal path per stereo frame at 48 kHz, against a plain loop of twenty
// double-precision direct-form-I biquads, and the spread of chunk times with the analyser on.
#include "dsp/BandEngine.h"
#include "dsp/FftStepper.h"
#include "dsp/FilterDesign.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <time.h>
#include <vector>

namespace
{

using velmoran::dsp::BandEngine;
using velmoran::dsp::BandFilter;

constexpr float kRate = 48000.0f;
constexpr int kChunk = BandEngine::kMaxChunkLength;
constexpr int kFramesPerIteration = 4800; // 0.1 s
constexpr int kPeakType = 2;

std::vector<float> Noise(int length, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> distribution(-0.5f, 0.5f);
    std::vector<float> signal(static_cast<std::size_t>(length));
    for (float& sample : signal)
    {
        sample = distribution(generator);
    }
    return signal;
}

const std::vector<float>& InputLeft()
{
    static const std::vector<float> signal = Noise(kFramesPerIteration, 1u);
    return signal;
}

const std::vector<float>& InputRight()
{
    static const std::vector<float> signal = Noise(kFramesPerIteration, 2u);
    return signal;
}

float BandFrequency(int band)
{
    return 31.25f * std::pow(2.0f, static_cast<float>(band - 1));
}

float BandGain(int band)
{
    return band % 2 == 0 ? 6.0f : -6.0f;
}

// Ten peaking bands an octave apart, switched in and settled.
void SetUpTenPeaks(BandEngine& engine, bool analyserOn)
{
    for (int band = 1; band <= BandEngine::kBandCount; ++band)
    {
        engine.setBandType(band, kPeakType);
        engine.setBandFrequency(band, BandFrequency(band));
        engine.setBandGain(band, BandGain(band));
        engine.setBandQ(band, 1.0f);
    }
    engine.setAnalyserOn(analyserOn);
    engine.setEffectOn(true);
    float left = 0.0f;
    float right = 0.0f;
    for (int chunk = 0; chunk < 1000; ++chunk)
    {
        engine.updateBlock(kChunk);
        for (int i = 0; i < kChunk; ++i)
        {
            engine.processFrame(0.0f, 0.0f, left, right);
        }
    }
}

// One chunk of the test signal starting at `offset`; returns a sum so nothing is optimised away.
float ProcessChunk(BandEngine& engine, int offset)
{
    const std::vector<float>& inLeft = InputLeft();
    const std::vector<float>& inRight = InputRight();
    float sum = 0.0f;
    engine.updateBlock(kChunk);
    for (int i = offset; i < offset + kChunk; ++i)
    {
        float left = 0.0f;
        float right = 0.0f;
        engine.processFrame(inLeft[static_cast<std::size_t>(i)], inRight[static_cast<std::size_t>(i)], left,
                            right);
        sum += left + right;
    }
    return sum;
}

void SetFrameCounter(benchmark::State& state)
{
    state.counters["per_frame"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFramesPerIteration,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void TenPeakingBands(benchmark::State& state)
{
    auto engine = std::make_unique<BandEngine>();
    SetUpTenPeaks(*engine, state.range(0) != 0);
    for (auto _ : state)
    {
        for (int offset = 0; offset < kFramesPerIteration; offset += kChunk)
        {
            benchmark::DoNotOptimize(ProcessChunk(*engine, offset));
        }
    }
    SetFrameCounter(state);
}
BENCHMARK(TenPeakingBands)->ArgName("analyser")->Arg(0)->Arg(1);

// Targets swing between two far-apart settings, so every band is always gliding: each band is
// redesigned as soon as its previous 512-sample cross-fade ends and runs two biquads throughout.
void AllBandsGliding(benchmark::State& state)
{
    auto engine = std::make_unique<BandEngine>();
    SetUpTenPeaks(*engine, false);
    long chunkCount = 0;
    for (auto _ : state)
    {
        for (int offset = 0; offset < kFramesPerIteration; offset += kChunk)
        {
            const bool up = (chunkCount++ / 400) % 2 == 0;
            for (int band = 1; band <= BandEngine::kBandCount; ++band)
            {
                engine->setBandFrequency(band, BandFrequency(band) * (up ? 1.9f : 1.0f));
                engine->setBandGain(band, up ? -BandGain(band) : BandGain(band));
            }
            benchmark::DoNotOptimize(ProcessChunk(*engine, offset));
        }
    }
    SetFrameCounter(state);
}
BENCHMARK(AllBandsGliding);

struct ReferenceBiquad
{
    double b0, b1, b2, negA1, negA2;
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;

    double run(double x) noexcept
    {
        const double y = b0 * x + b1 * x1 + b2 * x2 + negA1 * y1 + negA2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

// The textbook loop: the same ten peaking filters per channel, nothing else.
void ReferenceTwentyBiquads(benchmark::State& state)
{
    std::array<std::array<ReferenceBiquad, BandEngine::kBandCount>, 2> filters{};
    for (int band = 1; band <= BandEngine::kBandCount; ++band)
    {
        BandFilter record;
        velmoran::dsp::DesignBandFilter(record, BandFrequency(band), BandGain(band), 1.0f, kRate, kPeakType);
        for (auto& channel : filters)
        {
            const auto& c = record.active;
            channel[static_cast<std::size_t>(band - 1)] = ReferenceBiquad{c.b0, c.b1, c.b2, c.negA1, c.negA2};
        }
    }
    const std::vector<float>& inLeft = InputLeft();
    const std::vector<float>& inRight = InputRight();
    for (auto _ : state)
    {
        float sum = 0.0f;
        for (int i = 0; i < kFramesPerIteration; ++i)
        {
            double left = inLeft[static_cast<std::size_t>(i)];
            double right = inRight[static_cast<std::size_t>(i)];
            for (auto& filter : filters[0])
            {
                left = filter.run(left);
            }
            for (auto& filter : filters[1])
            {
                right = filter.run(right);
            }
            sum += static_cast<float>(left) + static_cast<float>(right);
        }
        benchmark::DoNotOptimize(sum);
    }
    SetFrameCounter(state);
}
BENCHMARK(ReferenceTwentyBiquads);

// Keeps each run's time per frame (seconds) for the summary.
class SummaryReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            const auto counter = run.counters.find("per_frame");
            if (counter != run.counters.end() && run.run_type == Run::RT_Iteration)
            {
                secondsPerFrame[run.benchmark_name()] = counter->second.value;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, double> secondsPerFrame;
};

// CPU time of this thread in microseconds: on a shared machine, time spent descheduled would
// otherwise swamp the few microseconds a chunk takes.
double ThreadMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) * 1e-3;
}

// Times every chunk of a fixed sequence in several identical passes and keeps each chunk's
// fastest time, so that interruptions by other processes do not pass for work of the engine.
void PrintChunkSpread(const char* title, bool gliding)
{
    constexpr int kChunks = 6000;
    constexpr int kPasses = 7;
    std::vector<double> fastest(kChunks, 1e30);
    float sink = 0.0f;
    for (int pass = 0; pass < kPasses; ++pass)
    {
        auto engine = std::make_unique<BandEngine>();
        SetUpTenPeaks(*engine, true);
        for (int chunk = 0; chunk < kChunks; ++chunk)
        {
            if (gliding)
            {
                const bool up = (chunk / 400) % 2 == 0;
                for (int band = 1; band <= BandEngine::kBandCount; ++band)
                {
                    engine->setBandFrequency(band, BandFrequency(band) * (up ? 1.9f : 1.0f));
                }
            }
            const double start = ThreadMicroseconds();
            sink += ProcessChunk(*engine, (chunk * kChunk) % kFramesPerIteration);
            const double elapsed = ThreadMicroseconds() - start;
            fastest[static_cast<std::size_t>(chunk)] =
                std::min(fastest[static_cast<std::size_t>(chunk)], elapsed);
        }
    }
    benchmark::DoNotOptimize(sink);
    std::sort(fastest.begin(), fastest.end());
    const double median = fastest[fastest.size() / 2];
    std::printf("  %-44s median %6.2f us, longest %6.2f us (%.2f x median)\n", title, median, fastest.back(),
                fastest.back() / median);
}

void PrintWholeTransform()
{
    constexpr int kLog2Size = 12;
    std::vector<double> real(1u << kLog2Size, 0.25);
    std::vector<double> imag(1u << kLog2Size, 0.0);
    velmoran::dsp::FftStepper stepper;
    constexpr int kRepeats = 200;
    const double start = ThreadMicroseconds();
    for (int i = 0; i < kRepeats; ++i)
    {
        stepper.start(real.data(), imag.data(), kLog2Size, velmoran::dsp::FftDirection::Forward);
        while (!stepper.step())
        {
        }
        benchmark::DoNotOptimize(real.data());
    }
    std::printf("  %-44s %6.2f us\n",
                "one whole 4096-point transform, for scale:", (ThreadMicroseconds() - start) / kRepeats);
}

void PrintSummary(const std::map<std::string, double>& secondsPerFrame)
{
    const auto reference = secondsPerFrame.find("ReferenceTwentyBiquads");
    if (reference == secondsPerFrame.end())
    {
        return;
    }
    const double framePeriod = 1.0 / kRate;
    std::printf("\nPer stereo frame at 48 kHz (real time allows %.0f ns):\n", framePeriod * 1e9);
    const std::array<std::pair<const char*, const char*>, 4> rows{{
        {"TenPeakingBands/analyser:0", "ten peaking bands, analyser off"},
        {"TenPeakingBands/analyser:1", "ten peaking bands, analyser on"},
        {"AllBandsGliding", "all ten bands gliding"},
        {"ReferenceTwentyBiquads", "reference: twenty double DF-I biquads"},
    }};
    for (const auto& [name, title] : rows)
    {
        const auto found = secondsPerFrame.find(name);
        if (found == secondsPerFrame.end())
        {
            continue;
        }
        std::printf("  %-44s %7.1f ns  %6.3f %% of real time  %5.2f x reference\n", title,
                    found->second * 1e9, 100.0 * found->second / framePeriod,
                    found->second / reference->second);
    }
    std::printf("\nChunks of 64 frames, ten peaking bands, analyser on (each chunk's best of 7 passes):\n");
    PrintChunkSpread("settled:", false);
    PrintChunkSpread("all bands gliding:", true);
    PrintWholeTransform();
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 1;
    }
    SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintSummary(reporter.secondsPerFrame);
    benchmark::Shutdown();
    return 0;
}
