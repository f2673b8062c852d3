#include "PlugProgram.h"

#include <cstdio>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

constexpr float kPlus12Db = 0.8333333f;
constexpr float kPlus6Db = 0.6666667f;
constexpr float kZeroDb = 0.5f;

// Normalised frequencies of the voicings, exact to the values the programs were tuned with.
constexpr float k95Hz = 0.0037539946f;
constexpr float k6826Hz = 0.34064200f;
constexpr float k1573Hz = 0.077721700f;
constexpr float k1316Hz = 0.064851100f;
constexpr float k52Hz = 0.0015956100f;
constexpr float k190Hz = 0.0085194300f;
constexpr float k377Hz = 0.017872700f;
constexpr float k77Hz = 0.0028599800f;
constexpr float k5434Hz = 0.27095900f;
constexpr float k275Hz = 0.012740200f;
constexpr float k1290Hz = 0.063557700f;
constexpr float k1277Hz = 0.062920600f;

// The first five bands of a voicing; bands 6..10 stay at their defaults, unused and flat.
struct Voicing
{
    const char* name;
    std::array<int, 5> typeCodes;
    std::array<float, 5> frequencies; // normalised; 0 keeps the default
    std::array<float, 5> gains;       // normalised
    std::array<float, 5> qs;          // plain Q
    std::array<bool, 5> enabled;
};

CPlugProgram defaultProgram()
{
    CPlugProgram program;
    for (ParamID tag = 0; tag < static_cast<ParamID>(kProgramValueCount); ++tag)
    {
        program.values[tag] = defaultValue(tag);
    }
    std::snprintf(program.name, sizeof(program.name), "%s", "Factory Defaults");
    return program;
}

CPlugProgram voicedProgram(const Voicing& voicing)
{
    CPlugProgram program = defaultProgram();
    std::snprintf(program.name, sizeof(program.name), "%s", voicing.name);
    program.values[kEqTag] = 1.0f;
    program.values[kInputGainTag] = kZeroDb;
    program.values[kOutputGainTag] = kZeroDb;
    program.values[kFftSlopeTag] = 1.0f;
    for (int band = 1; band <= kBandCount; ++band)
    {
        program.values[filterTypeTag(band)] = 0.0f;
        program.values[enableTag(band)] = 1.0f;
    }
    for (int band = 1; band <= 5; ++band)
    {
        const auto index = static_cast<size_t>(band - 1);
        program.values[filterTypeTag(band)] = static_cast<float>(voicing.typeCodes[index]) / 20.0f;
        if (voicing.frequencies[index] > 0.0f)
        {
            program.values[frequencyTag(band)] = voicing.frequencies[index];
        }
        program.values[gainTag(band)] = voicing.gains[index];
        program.values[qTag(band)] = normalisedQ(voicing.qs[index]);
        program.values[enableTag(band)] = voicing.enabled[index] ? 1.0f : 0.0f;
    }
    return program;
}

} // namespace

std::array<CPlugProgram, kFactoryProgramCount> makeFactoryPrograms()
{
    constexpr float keep = 0.0f;
    const Voicing voicings[] = {
        {"01 - British EQ NV-1",
         {7, 8, 3, 0, 0},
         {k95Hz, k6826Hz, k1573Hz, keep, keep},
         {kPlus12Db, kPlus12Db, kPlus6Db, kZeroDb, kZeroDb},
         {5.0f, 5.0f, 0.7f, 1.0f, 1.0f},
         {true, true, true, true, true}},
        {"02 - British EQ NV-2",
         {7, 8, 0, 0, 0},
         {k95Hz, k6826Hz, k1316Hz, keep, keep},
         {kPlus6Db, kPlus6Db, kZeroDb, kZeroDb, kZeroDb},
         {5.0f, 5.0f, 0.7f, 1.0f, 1.0f},
         {true, true, true, true, true}},
        {"03 - British EQ NV-3",
         {7, 7, 7, 7, 8},
         {k52Hz, k95Hz, k190Hz, k377Hz, k6826Hz},
         {kPlus6Db, kPlus6Db, kPlus6Db, kPlus6Db, kPlus6Db},
         {5.0f, 5.0f, 5.0f, 5.0f, 5.0f},
         {true, false, false, false, true}},
        {"04 - British EQ SL-1",
         {7, 8, 3, 3, 0},
         {k77Hz, k5434Hz, k275Hz, k1290Hz, keep},
         {kPlus12Db, kPlus12Db, kPlus12Db, kPlus12Db, kZeroDb},
         {0.3f, 0.3f, 1.716594f, 1.716594f, 1.0f},
         {true, true, true, true, true}},
        {"05 - British EQ SL-2",
         {7, 8, 3, 3, 0},
         {k77Hz, k5434Hz, k275Hz, k1277Hz, keep},
         {kPlus6Db, kPlus6Db, kPlus6Db, kPlus6Db, kZeroDb},
         {0.3f, 0.3f, 1.716594f, 1.716594f, 1.0f},
         {true, true, false, false, true}},
    };
    std::array<CPlugProgram, kFactoryProgramCount> programs;
    programs[0] = defaultProgram();
    for (int index = 1; index < kFactoryProgramCount; ++index)
    {
        programs[static_cast<size_t>(index)] = voicedProgram(voicings[index - 1]);
    }
    return programs;
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
