// Cost of designing one band with DesignFilter, per type code, and that cost as a share of the time
// one 64-sample chunk lasts at 48 kHz (the audio thread may redesign every band once per chunk).

#include "dsp/FilterDesign.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

namespace
{

using namespace velmoran::dsp;

constexpr double kChunkSeconds = 64.0 / 48000.0;
constexpr const char* kTypeTitles[] = {"no band",   "No Filter", "Pk dB/2",   "Peak -3dB",
                                       "Peak +3dB", "Peak Asym", "Peak Inv",  "LF Shelf",
                                       "HF Shelf",  "Low Pass",  "High Pass", "Band Pass"};

// A typical band: 1 kHz, +9 dB (beyond the ±6 dB where the peaking variants correct their Q), Q 1.
void DesignOneBand(benchmark::State& state)
{
    const int type = static_cast<int>(state.range(0));
    const float sampleRate = 48000.0f;
    float frequencyHz = 1000.0f;
    float gainDb = 9.0f;
    float q = 1.0f;
    double a0 = 0.0, a1 = 0.0, a2 = 0.0, b0 = 0.0, b1 = 0.0, b2 = 0.0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(frequencyHz);
        benchmark::DoNotOptimize(gainDb);
        benchmark::DoNotOptimize(q);
        DesignFilter(sampleRate, frequencyHz, gainDb, q, type, a0, a1, a2, b0, b1, b2);
        benchmark::DoNotOptimize(a1);
        benchmark::DoNotOptimize(b0);
        benchmark::ClobberMemory();
    }
    state.SetLabel(kTypeTitles[type]);
}

BENCHMARK(DesignOneBand)->DenseRange(kTypeNone, kTypeBandPass);

// The usual console output, followed by a table of the figures that matter for the audio thread
// (CPU time, so that other load on the machine does not count).
class ChunkShareReporter : public benchmark::ConsoleReporter
{
public:
    ChunkShareReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            mRuns.push_back(run);
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf("\n| code | type | ns per design | share of a 64-sample chunk at 48 kHz |"
                    " all twenty band records |\n");
        std::printf("|---|---|---|---|---|\n");
        int code = 0;
        for (const Run& run : mRuns)
        {
            const double seconds = run.GetAdjustedCPUTime() * 1e-9;
            std::printf("| %d | %s | %.0f | %.4f %% | %.3f %% |\n", code, run.report_label.c_str(),
                        seconds * 1e9, 100.0 * seconds / kChunkSeconds, 2000.0 * seconds / kChunkSeconds);
            ++code;
        }
    }

private:
    std::vector<Run> mRuns;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    ChunkShareReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
