#include "Module.h"

#include "pluginterfaces/base/fplatform.h"

#if SMTG_OS_WINDOWS
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace VST3
{
namespace Hosting
{

namespace
{

#if SMTG_OS_WINDOWS

// A Unix path, as a cross build's test runner passes it under Wine, is taken on drive Z:, which
// Wine maps to the Unix root; any other path is used as it is.
std::string systemPath(const std::string& path)
{
    if (path.empty() || path[0] != '/')
    {
        return path;
    }
    std::string converted = "Z:" + path;
    for (char& character : converted)
    {
        if (character == '/')
        {
            character = '\\';
        }
    }
    return converted;
}

void* openLibrary(const std::string& path, std::string& errorDescription)
{
    HMODULE library = LoadLibraryA(path.c_str());
    if (!library)
    {
        errorDescription = "LoadLibrary failed with error " + std::to_string(GetLastError());
    }
    return reinterpret_cast<void*>(library);
}

void* findSymbol(void* library, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void closeLibrary(void* library)
{
    FreeLibrary(static_cast<HMODULE>(library));
}

#else

std::string systemPath(const std::string& path)
{
    return path;
}

void* openLibrary(const std::string& path, std::string& errorDescription)
{
    void* library = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!library)
    {
        const char* reason = dlerror();
        errorDescription = reason ? reason : "dlopen failed";
    }
    return library;
}

void* findSymbol(void* library, const char* name)
{
    return dlsym(library, name);
}

void closeLibrary(void* library)
{
    dlclose(library);
}

#endif

// A symbol's address as a function pointer of the wanted type.
template <typename Function> Function functionAt(void* library, const char* name)
{
    return reinterpret_cast<Function>(findSymbol(library, name));
}

} // namespace

std::unique_ptr<Module> Module::load(const std::string& path, std::string& errorDescription, bool enter)
{
    std::unique_ptr<Module> module(new Module());
    module->mPath = systemPath(path);
    module->mLibrary = openLibrary(module->mPath, errorDescription);
    if (!module->mLibrary)
    {
        return nullptr;
    }
    module->mFactoryFunction = functionAt<FactoryFunction>(module->mLibrary, "GetPluginFactory");
#if SMTG_OS_WINDOWS
    module->mEntry = functionAt<EntryFunction>(module->mLibrary, "InitDll");
    module->mExit = functionAt<ExitFunction>(module->mLibrary, "ExitDll");
#else
    module->mLinuxEntry = functionAt<LinuxEntryFunction>(module->mLibrary, "ModuleEntry");
    module->mExit = functionAt<ExitFunction>(module->mLibrary, "ModuleExit");
#endif
    if (!module->mFactoryFunction)
    {
        errorDescription = "the module exports no GetPluginFactory";
        return nullptr;
    }
    if (enter && !module->enter())
    {
        errorDescription = "the module's entry function failed";
        return nullptr;
    }
    return module;
}

Module::~Module()
{
    while (mEntries > 0)
    {
        exit();
    }
    if (mLibrary)
    {
        closeLibrary(mLibrary);
    }
}

bool Module::enter()
{
    bool entered = false;
    if (mEntry)
    {
        entered = mEntry();
    }
    else if (mLinuxEntry)
    {
        entered = mLinuxEntry(mLibrary);
    }
    if (entered)
    {
        ++mEntries;
    }
    return entered;
}

bool Module::exit()
{
    if (!mExit)
    {
        return false;
    }
    if (mEntries > 0)
    {
        --mEntries;
    }
    return mExit();
}

Steinberg::IPtr<Steinberg::IPluginFactory> Module::factory()
{
    if (!mFactoryFunction)
    {
        return nullptr;
    }
    // GetPluginFactory hands over a reference of its own.
    return Steinberg::owned(mFactoryFunction());
}

} // namespace Hosting
} // namespace VST3
