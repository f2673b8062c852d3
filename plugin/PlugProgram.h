#pragma once

#include "PlugParameters.h"

#include <array>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// One factory program: the normalised value of every tag 0..68 and the name the editor shows.
struct CPlugProgram
{
    std::array<float, kProgramValueCount> values{};
    char name[64] = {};
};

constexpr int kFactoryProgramCount = 6;

// The six factory programs: the defaults, then five voicings modelled on British desks.
std::array<CPlugProgram, kFactoryProgramCount> makeFactoryPrograms();

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
