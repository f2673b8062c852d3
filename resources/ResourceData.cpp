#include "resources/ResourceData.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include "resources/EmbeddedResources.h"
#endif

namespace velmoran::resources
{

#ifdef _WIN32

namespace
{

HMODULE gResourceModule = nullptr;

// The module (DLL or program) that this code was linked into, where the resources are.
HMODULE containingModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&containingModule), &module);
    return module;
}

} // namespace

ResourceBytes findBinaryResource(int id)
{
    const HMODULE module = gResourceModule != nullptr ? gResourceModule : containingModule();
    const HRSRC info = FindResourceA(module, MAKEINTRESOURCEA(id), "BINARY");
    if (info == nullptr)
        return {};
    const HGLOBAL handle = LoadResource(module, info);
    if (handle == nullptr)
        return {};
    const void* bytes = LockResource(handle);
    if (bytes == nullptr)
        return {};
    return {static_cast<const std::uint8_t*>(bytes), static_cast<std::size_t>(SizeofResource(module, info))};
}

void setResourceModule(void* moduleInstance)
{
    gResourceModule = static_cast<HMODULE>(moduleInstance);
}

#else

ResourceBytes findBinaryResource(int id)
{
    for (const EmbeddedResource& resource : embeddedResources())
        if (resource.id == id)
            return {resource.begin, static_cast<std::size_t>(resource.end - resource.begin)};
    return {};
}

void setResourceModule(void*) {}

#endif

} // namespace velmoran::resources
