#pragma once

#include <cstdint>
#include <vector>

namespace velmoran::resources
{

// One image linked into a native program: its id and its bytes [begin, end).
struct EmbeddedResource
{
    int id;
    const std::uint8_t* begin;
    const std::uint8_t* end;
};

// Gives every image linked into the program (the native stand-in for the module's resources);
// defined by the file that the build generates.
const std::vector<EmbeddedResource>& embeddedResources();

} // namespace velmoran::resources
