#pragma once

#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/base/smartpointer.h"

#include <memory>
#include <string>

namespace VST3
{
namespace Hosting
{

// A VST 3 module loaded the way a host loads it: the library is opened, its entry function is
// called (InitDll on Windows, ModuleEntry on Linux) and its factory is taken from
// GetPluginFactory. The destructor calls the exit function for every entry made and closes the
// library.
class Module
{
public:
    using EntryFunction = bool (*)();
    using LinuxEntryFunction = bool (*)(void*);
    using ExitFunction = bool (*)();
    using FactoryFunction = Steinberg::IPluginFactory*(PLUGIN_API*)();

    // Opens the library at path and, if enter is set, calls its entry function. Null on failure,
    // with the reason in errorDescription.
    static std::unique_ptr<Module> load(const std::string& path, std::string& errorDescription,
                                        bool enter = true);

    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Calls the entry function; its result (false if the library has none).
    bool enter();
    // Calls the exit function; its result (false if the library has none).
    bool exit();
    // A new reference to the module's factory, null if it has none.
    Steinberg::IPtr<Steinberg::IPluginFactory> factory();
    // The exported GetPluginFactory itself, to check reference counting.
    FactoryFunction factoryFunction() const { return mFactoryFunction; }
    // The path the library was opened with, as given to the operating system.
    const std::string& path() const { return mPath; }

private:
    Module() = default;

    void* mLibrary = nullptr;
    std::string mPath;
    FactoryFunction mFactoryFunction = nullptr;
    EntryFunction mEntry = nullptr;
    LinuxEntryFunction mLinuxEntry = nullptr;
    ExitFunction mExit = nullptr;
    int mEntries = 0;
};

} // namespace Hosting
} // namespace VST3
