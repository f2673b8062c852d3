// Prints how far the matched peaking and shelf designs stray from their analogue prototypes: the
// largest difference in dB between digital and analogue response from 20 Hz to 20 kHz.

#include "dsp/AnaloguePrototypes.h"
#include "dsp/BiquadMagnitude.h"
#include "dsp/FilterDesign.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

using namespace velmoran::dsp;

constexpr float kSampleRate = 44100.0f;
constexpr float kQ = 1.0f;
constexpr int kSweepPoints = 4000;
constexpr double kSweepLowHz = 20.0;
constexpr double kSweepHighHz = 20000.0;
constexpr double kPi = 3.141592653589793;

struct Case
{
    const char* name;
    int type;
    float gainDb;
};

constexpr Case kCases[] = {
    {"Pk dB/2 +12 dB", kTypePeakHalfGain, 12.0f}, {"Pk dB/2 -12 dB", kTypePeakHalfGain, -12.0f},
    {"LF Shelf +12 dB", kTypeLowShelf, 12.0f},    {"LF Shelf -12 dB", kTypeLowShelf, -12.0f},
    {"HF Shelf +12 dB", kTypeHighShelf, 12.0f},   {"HF Shelf -12 dB", kTypeHighShelf, -12.0f},
};

constexpr float kCentresHz[] = {1000.0f, 5000.0f, 10000.0f, 16000.0f};

double DecibelsOf(double magnitude)
{
    return 20.0 * std::log10(magnitude);
}

// Response of the analogue prototype the design of this case is fitted to, in dB.
double AnalogueDb(const Case& c, double centreHz, double atHz)
{
    const double gain = std::pow(10.0, std::fabs(c.gainDb) / 20.0);
    const double sign = c.gainDb < 0.0f ? -1.0 : 1.0;
    if (c.type == kTypePeakHalfGain)
        return sign * DecibelsOf(AnaloguePeakingMagnitude(centreHz, gain, kQ, atHz));
    const double lowShelf = AnalogueLowShelfMagnitude(centreHz, gain, MapResonantQ(kQ), atHz);
    const double shelf = c.type == kTypeHighShelf ? gain / lowShelf : lowShelf;
    return sign * DecibelsOf(shelf);
}

double LargestDeviationDb(const Case& c, float centreHz)
{
    BiquadCoefficients d;
    DesignFilter(kSampleRate, centreHz, c.gainDb, kQ, c.type, d.a0, d.a1, d.a2, d.b0, d.b1, d.b2);
    double largest = 0.0;
    for (int i = 0; i < kSweepPoints; ++i)
    {
        const double hz = kSweepLowHz * std::pow(kSweepHighHz / kSweepLowHz, i / double(kSweepPoints - 1));
        const double digitalDb = DecibelsOf(BiquadMagnitude(2.0 * kPi * hz / kSampleRate, d));
        largest = std::max(largest, std::fabs(digitalDb - AnalogueDb(c, centreHz, hz)));
    }
    return largest;
}

} // namespace

int main()
{
    std::printf("Largest deviation from the analogue prototype, dB, 20 Hz .. 20 kHz, fs %.0f Hz, Q %.1f\n\n",
                double(kSampleRate), double(kQ));
    std::printf("| design | 1 kHz | 5 kHz | 10 kHz | 16 kHz |\n|---|---|---|---|---|\n");
    for (const Case& c : kCases)
    {
        std::printf("| %s |", c.name);
        for (float centreHz : kCentresHz)
            std::printf(" %.3f |", LargestDeviationDb(c, centreHz));
        std::printf("\n");
    }
    return 0;
}
