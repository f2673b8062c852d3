#include "GraphGrid.h"

#include "EditorLayout.h"
#include "GraphAxes.h"

#include <cmath>
#include <cstdio>

namespace velmoran::editor
{

namespace
{

constexpr int kGainLineStepDb = 6;
constexpr Rgba kMinorGainLabel{159, 159, 159, 255};

std::string formatted(const char* format, int value)
{
    char text[16];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

// "0dB" for zero, a signed number otherwise: the unit is said once, on the line that matters most.
std::string levelLabel(int db)
{
    return db == 0 ? formatted("%ddB", db) : formatted("%+d", db);
}

std::string frequencyLabel(long long hz)
{
    return hz < 1000 ? formatted("%d", static_cast<int>(hz)) : formatted("%dk", static_cast<int>(hz / 1000));
}

} // namespace

std::vector<FrequencyGridLine> frequencyGridLines(float minHz, float maxHz)
{
    std::vector<FrequencyGridLine> lines;
    for (long long decade = 1; decade <= maxHz; decade *= 10)
    {
        for (int multiple = 1; multiple <= 9; ++multiple)
        {
            const long long hz = multiple * decade;
            if (hz >= minHz && hz <= maxHz)
            {
                lines.push_back({static_cast<float>(hz), multiple == 1 ? frequencyLabel(hz) : " "});
            }
        }
    }
    return lines;
}

std::vector<GainGridLine> gainGridLines(float minDb, float maxDb)
{
    // The spectrum's 72 dB share the gain axis's rows, top aligned.
    const float levelPerDb = (GraphAxes::kSpectrumTopDb - GraphAxes::kSpectrumBottomDb) / (maxDb - minDb);
    std::vector<GainGridLine> lines;
    for (int db = static_cast<int>(std::ceil(minDb)); db <= maxDb; ++db)
    {
        if (db % kGainLineStepDb != 0)
        {
            continue;
        }
        const bool nearUnity = db >= -kGainLineStepDb && db <= kGainLineStepDb;
        const int level = static_cast<int>((db - maxDb) * levelPerDb - 0.5f);
        lines.push_back({static_cast<float>(db), levelLabel(db), nearUnity ? kAmber : kMinorGainLabel,
                         levelLabel(level)});
    }
    return lines;
}

} // namespace velmoran::editor
