// The module loaded, entered, used, left and unloaded over and over in one process, as a host does
// when it scans plug-ins or the user adds and removes the only instance: InitDll/ExitDll on Windows
// (under Wine in the windows preset), ModuleEntry/ModuleExit on Linux. The test command runs 100
// cycles; scripts/soak.sh sets the number through VELMORAN_LOAD_CYCLES.

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
#include <cstdlib>
#include <vector>

namespace velmoran::test
{
namespace
{

// The number of cycles from the environment, or the test command's 100.
int cycleCount()
{
    const char* text = std::getenv("VELMORAN_LOAD_CYCLES");
    const int cycles = text ? std::atoi(text) : 0;
    return cycles > 0 ? cycles : 100;
}

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

TEST(PlugModuleCycles, EntriesAndExitsWithUseInBetween)
{
    const int cycles = cycleCount();
    const auto start = std::chrono::steady_clock::now();
    int unloaded = 0;
    std::string systemPath;
    for (int cycle = 0; cycle < cycles; ++cycle)
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
    EXPECT_EQ(unloaded, cycles);
    std::printf("[ figures  ] module: %d load, entry, use, exit and unload cycles in %.2f s\n", cycles,
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

} // namespace
} // namespace velmoran::test
