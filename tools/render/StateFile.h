#pragma once

#include <string>
#include <vector>

namespace velmoran::render
{

// The bytes of a saved state file, checked to be what a host saves: exactly 69 little-endian
// 32-bit floats, each a number in 0..1. Never reads more than one byte beyond a state, so a device
// without end cannot exhaust memory. Throws RenderError naming the file and what is wrong.
std::vector<char> readStateFile(const std::string& path);

} // namespace velmoran::render
