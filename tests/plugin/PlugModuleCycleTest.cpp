// The module loaded, entered, used, left and unloaded a hundred times in one process, as a host
// does when it scans plug-ins or the user adds and removes the only instance: InitDll/ExitDll on
// Windows (under Wine in the windows preset), ModuleEntry/ModuleExit on Linux.

#include "PluginHost.h"

#include <gtest/gtest.h>

#include "pluginterfaces/base/fplatform.h"

#if SMTG_OS_WINDOWS
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <chrono>
#include <cstdio>
#include <vector>

namespace velmoran::test
{
namespace
{

constexpr int kCycles = 100;

// True while the library at the system path is still mapped into the process.
bool stillLoaded(const std::string& systemPath)
{
#if SMTG_OS_WINDOWS
    return GetModuleHandleA(systemPath.c_str()) != nullptr;
#else
    void* library = dlopen(systemPath.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != nullptr;
#endif
}

// Makes an instance, runs one block through it and takes it down; false at the first failure.
bool useOnce(IPluginFactory* factory)
{
    Steinberg::Vst::PluginInstance plugin(factory, false);
    ProcessSetup setup{kRealtime, kSample32, 256, 48000.0};
    if (!plugin.valid() || plugin.processor->setupProcessing(setup) != kResultOk ||
        plugin.component->setActive(true) != kResultOk)
        return false;
    std::vector<std::vector<float>> inputs(2, std::vector<float>(256, 0.25f));
    std::vector<std::vector<float>> outputs(2, std::vector<float>(256));
    const bool processed =
        processBlock(plugin.processor, inputs, outputs, 256) == kResultOk && outputs[0][255] != 0.0f;
    return plugin.component->setActive(false) == kResultOk && processed;
}

TEST(PlugModuleCycles, HundredEntriesAndExitsWithUseInBetween)
{
    const auto start = std::chrono::steady_clock::now();
    int unloaded = 0;
    std::string systemPath;
    for (int cycle = 0; cycle < kCycles; ++cycle)
    {
        std::string error;
        std::unique_ptr<VST3::Hosting::Module> module = VST3::Hosting::Module::load(modulePath(), error);
        ASSERT_TRUE(module) << "cycle " << cycle << ": " << error;
        systemPath = module->path();
        {
            IPtr<IPluginFactory> factory = module->factory();
            ASSERT_TRUE(factory) << "cycle " << cycle;
            ASSERT_TRUE(useOnce(factory)) << "cycle " << cycle;
        }
        module.reset();
        if (!stillLoaded(systemPath))
            ++unloaded;
    }
    // Every exit really let the system unload the library, so the next entry started afresh.
    EXPECT_EQ(unloaded, kCycles);
    std::printf("[ figures  ] module: %d load, entry, use, exit and unload cycles in %.2f s\n", kCycles,
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

} // namespace
} // namespace velmoran::test
