#pragma once

#include <cstddef>
#include <cstdint>

namespace velmoran::resources
{

// The bytes of one stored resource; empty (null data) when the module holds no such resource.
struct ResourceBytes
{
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

// Gives the bytes of the resource of type "BINARY" with the given id, or empty bytes when there
// is none. The bytes live as long as the module that holds them.
ResourceBytes findBinaryResource(int id);

// Names the module whose resources findBinaryResource reads (a Windows HINSTANCE); null goes
// back to the module that contains this code. Natively the images are linked into the program
// and the module is not used.
void setResourceModule(void* moduleInstance);

} // namespace velmoran::resources
