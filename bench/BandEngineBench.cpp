// Cost of the signal path per stereo frame at 48 kHz over pink noise, against two plain loops of
// the same twenty double-precision direct-form-I biquads (one scalar, one with the two channels
// in one SSE2 register), and the spread of chunk times with the analyser on.
#include "ReferenceLoops.h"

#include "dsp/BandEngine.h"
#include "dsp/FftStepper.h"
#include "dsp/FilterDesign.h"

#include <benchmark/benchmark.h>

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <time.h>
#include <vector>

namespace
{

using velmoran::dsp::BandEngine;
using velmoran::dsp::BandFilter;
using namespace velmoran::bench;

constexpr float kRate = 48000.0f;
constexpr int kChunk = BandEngine::kMaxChunkLength;
constexpr int kFramesPerIteration = 6144; // 0.128 s, whole blocks of 64 and of 512

const std::vector<float>& InputLeft()
{
    static const std::vector<float> signal = PinkNoise(kFramesPerIteration, 1u);
    return signal;
}

const std::vector<float>& InputRight()
{
    static const std::vector<float> signal = PinkNoise(kFramesPerIteration, 2u);
    return signal;
}

// Ten peaking bands an octave apart, switched in and settled.
void SetUpTenPeaks(BandEngine& engine, bool analyserOn)
{
    for (int band = 1; band <= kBands; ++band)
    {
        engine.setBandType(band, kPeakType);
        engine.setBandFrequency(band, BandFrequency(band));
        engine.setBandGain(band, BandGain(band));
        engine.setBandQ(band, 1.0f);
    }
    engine.setAnalyserOn(analyserOn);
    engine.setEffectOn(true);
    std::array<float, kChunk> silence{};
    for (int chunk = 0; chunk < 1000; ++chunk)
    {
        engine.updateBlock(kChunk);
        engine.processChunk(silence.data(), silence.data(), silence.data(), silence.data(), kChunk);
    }
}

// One chunk of the test signal starting at `offset`, as the processor runs it; returns a sum so
// that nothing is optimised away.
float ProcessChunk(BandEngine& engine, int offset)
{
    std::array<float, kChunk> left{};
    std::array<float, kChunk> right{};
    engine.updateBlock(kChunk);
    engine.processChunk(&InputLeft()[static_cast<std::size_t>(offset)],
                        &InputRight()[static_cast<std::size_t>(offset)], left.data(), right.data(), kChunk);
    return left[kChunk - 1] + right[kChunk - 1];
}

// A host block of `blockLength` frames: cut into chunks of 64 as the processor cuts it.
float ProcessBlock(BandEngine& engine, int offset, int blockLength)
{
    float sum = 0.0f;
    for (int start = offset; start < offset + blockLength; start += kChunk)
    {
        sum += ProcessChunk(engine, start);
    }
    return sum;
}

// Each case runs three times after a warm-up; the summary keeps the fastest run, the one least
// disturbed by other work on a shared machine.
void Repeated(benchmark::internal::Benchmark* benchmark)
{
    benchmark->MinWarmUpTime(0.2)->Repetitions(3);
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
    const int blockLength = static_cast<int>(state.range(1));
    for (auto _ : state)
    {
        for (int offset = 0; offset < kFramesPerIteration; offset += blockLength)
        {
            benchmark::DoNotOptimize(ProcessBlock(*engine, offset, blockLength));
        }
    }
    SetFrameCounter(state);
}
BENCHMARK(TenPeakingBands)
    ->ArgNames({"analyser", "block"})
    ->ArgsProduct({{0, 1}, {64, 512}})
    ->Apply(Repeated);

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
            for (int band = 1; band <= kBands; ++band)
            {
                engine->setBandFrequency(band, BandFrequency(band) * (up ? 1.9f : 1.0f));
                engine->setBandGain(band, up ? -BandGain(band) : BandGain(band));
            }
            benchmark::DoNotOptimize(ProcessChunk(*engine, offset));
        }
    }
    SetFrameCounter(state);
}
BENCHMARK(AllBandsGliding)->Apply(Repeated);

// The ten peaking designs the engine runs, as b0, b1, b2, -a1, -a2.
std::array<std::array<double, 5>, kBands> PeakingSections()
{
    std::array<std::array<double, 5>, kBands> sections{};
    for (int band = 1; band <= kBands; ++band)
    {
        BandFilter record;
        velmoran::dsp::DesignBandFilter(record, BandFrequency(band), BandGain(band), 1.0f, kRate, kPeakType);
        const auto& c = record.active;
        sections[static_cast<std::size_t>(band - 1)] = {c.b0, c.b1, c.b2, c.negA1, c.negA2};
    }
    return sections;
}

// The textbook loop of twenty scalar biquads over the same frames.
void ReferenceScalar(benchmark::State& state)
{
    velmoran::bench::ScalarTwentyBiquads filters(kRate);
    const int blockLength = static_cast<int>(state.range(0));
    const std::vector<float>& inLeft = InputLeft();
    const std::vector<float>& inRight = InputRight();
    std::vector<float> outLeft(static_cast<std::size_t>(blockLength));
    std::vector<float> outRight(static_cast<std::size_t>(blockLength));
    for (auto _ : state)
    {
        for (int offset = 0; offset < kFramesPerIteration; offset += blockLength)
        {
            filters.run(&inLeft[static_cast<std::size_t>(offset)], &inRight[static_cast<std::size_t>(offset)],
                        outLeft.data(), outRight.data(), blockLength);
            benchmark::DoNotOptimize(outLeft.data());
            benchmark::DoNotOptimize(outRight.data());
        }
    }
    SetFrameCounter(state);
}
BENCHMARK(ReferenceScalar)->ArgName("block")->Arg(64)->Arg(512)->Apply(Repeated);

struct Sse2Biquad
{
    __m128d b0, b1, b2, negA1, negA2;
    __m128d x1 = _mm_setzero_pd(), x2 = _mm_setzero_pd(), y1 = _mm_setzero_pd(), y2 = _mm_setzero_pd();

    __m128d run(__m128d x) noexcept
    {
        const __m128d y = _mm_add_pd(
            _mm_add_pd(_mm_add_pd(_mm_add_pd(_mm_mul_pd(b0, x), _mm_mul_pd(b1, x1)), _mm_mul_pd(b2, x2)),
                       _mm_mul_pd(negA1, y1)),
            _mm_mul_pd(negA2, y2));
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

// The same twenty biquads, per frame, each band's two channels in one SSE2 register.
void ReferenceSse2(benchmark::State& state)
{
    std::vector<Sse2Biquad> filters;
    for (const auto& c : PeakingSections())
    {
        filters.push_back(Sse2Biquad{_mm_set1_pd(c[0]), _mm_set1_pd(c[1]), _mm_set1_pd(c[2]),
                                     _mm_set1_pd(c[3]), _mm_set1_pd(c[4])});
    }
    const int blockLength = static_cast<int>(state.range(0));
    const std::vector<float>& inLeft = InputLeft();
    const std::vector<float>& inRight = InputRight();
    std::vector<float> outLeft(static_cast<std::size_t>(blockLength));
    std::vector<float> outRight(static_cast<std::size_t>(blockLength));
    for (auto _ : state)
    {
        for (int offset = 0; offset < kFramesPerIteration; offset += blockLength)
        {
            for (int i = 0; i < blockLength; ++i)
            {
                const auto frame = static_cast<std::size_t>(offset + i);
                __m128d x = _mm_cvtps_pd(_mm_set_ps(0.0f, 0.0f, inRight[frame], inLeft[frame]));
                for (Sse2Biquad& filter : filters)
                {
                    x = filter.run(x);
                }
                const __m128 output = _mm_cvtpd_ps(x);
                outLeft[static_cast<std::size_t>(i)] = _mm_cvtss_f32(output);
                outRight[static_cast<std::size_t>(i)] = _mm_cvtss_f32(_mm_shuffle_ps(output, output, 1));
            }
            benchmark::DoNotOptimize(outLeft.data());
            benchmark::DoNotOptimize(outRight.data());
        }
    }
    SetFrameCounter(state);
}
BENCHMARK(ReferenceSse2)->ArgName("block")->Arg(64)->Arg(512)->Apply(Repeated);

// Keeps each case's fastest time per frame (seconds) for the summary, by function and arguments.
class SummaryReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            const auto counter = run.counters.find("per_frame");
            if (counter == run.counters.end() || run.run_type != Run::RT_Iteration)
            {
                continue;
            }
            const std::string& args = run.run_name.args;
            const std::string name = run.run_name.function_name + (args.empty() ? "" : "/" + args);
            const auto [entry, added] = secondsPerFrame.emplace(name, counter->second.value);
            if (!added)
            {
                entry->second = std::min(entry->second, counter->second.value);
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
                for (int band = 1; band <= kBands; ++band)
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

// The transform behind one 4096-point spectrum (48 kHz): 2048 complex values, the real frame's
// even and odd samples.
void PrintWholeTransform()
{
    constexpr int kLog2Size = 11;
    std::vector<double> real(1u << kLog2Size, 0.25);
    std::vector<double> imag(1u << kLog2Size, 0.0);
    velmoran::dsp::FftStepper stepper;
    constexpr int kRepeats = 200;
    const double start = ThreadMicroseconds();
    for (int i = 0; i < kRepeats; ++i)
    {
        stepper.start(real.data(), imag.data(), kLog2Size);
        stepper.run(velmoran::dsp::FftStepper::PairCount(kLog2Size));
        benchmark::DoNotOptimize(real.data());
    }
    std::printf("  %-44s %6.2f us\n",
                "one frame's whole transform, for scale:", (ThreadMicroseconds() - start) / kRepeats);
}

void PrintRow(const std::map<std::string, double>& secondsPerFrame, const std::string& name,
              const char* title, int blockLength)
{
    const auto found = secondsPerFrame.find(name);
    const auto scalar = secondsPerFrame.find("ReferenceScalar/block:" + std::to_string(blockLength));
    const auto sse2 = secondsPerFrame.find("ReferenceSse2/block:" + std::to_string(blockLength));
    if (found == secondsPerFrame.end() || scalar == secondsPerFrame.end() || sse2 == secondsPerFrame.end())
    {
        return;
    }
    const double framePeriod = 1.0 / kRate;
    std::printf("  %-40s %4d %7.1f ns  %6.3f %%  %5.2f x  %5.2f x\n", title, blockLength, found->second * 1e9,
                100.0 * found->second / framePeriod, found->second / scalar->second,
                found->second / sse2->second);
}

void PrintSummary(const std::map<std::string, double>& secondsPerFrame)
{
    std::printf(
        "\nPer stereo frame at 48 kHz over pink noise, fastest of three runs (real time allows %.0f ns):\n",
        1e9 / kRate);
    std::printf("  %-40s %4s %10s  %8s  %7s  %7s\n", "case", "block", "per frame", "of real", "scalar",
                "SSE2");
    for (const int block : {64, 512})
    {
        const std::string suffix = "/block:" + std::to_string(block);
        PrintRow(secondsPerFrame, "TenPeakingBands/analyser:0" + suffix, "ten peaking bands, analyser off",
                 block);
        PrintRow(secondsPerFrame, "TenPeakingBands/analyser:1" + suffix, "ten peaking bands, analyser on",
                 block);
        PrintRow(secondsPerFrame, "ReferenceScalar" + suffix, "reference: twenty scalar DF-I biquads", block);
        PrintRow(secondsPerFrame, "ReferenceSse2" + suffix, "reference: ten SSE2 two-channel biquads", block);
    }
    PrintRow(secondsPerFrame, "AllBandsGliding", "all ten bands gliding", 64);
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
