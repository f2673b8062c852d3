// The module's entry points: InitDll/ExitDll on Windows, ModuleEntry/ModuleExit on Linux. Both pairs
// call InitModule and DeinitModule, which the plug-in defines, once per outermost entry and exit.

#include "ModuleEntry.h"

#include "pluginterfaces/base/fplatform.h"

#if SMTG_OS_WINDOWS
#include <windows.h>
#endif

void* moduleHandle = nullptr;

namespace
{

int gEntryCount = 0;

// Counts one entry; the first one sets up the module-wide objects.
bool enterModule()
{
    if (++gEntryCount == 1)
    {
        if (!InitModule())
        {
            gEntryCount = 0;
            return false;
        }
    }
    return true;
}

// Counts one exit; the last one tears the module-wide objects down. An exit without an entry
// has nothing to undo.
bool exitModule()
{
    if (gEntryCount == 0)
    {
        return true;
    }
    if (--gEntryCount == 0)
    {
        return DeinitModule();
    }
    return true;
}

} // namespace

#if SMTG_OS_WINDOWS

HINSTANCE ghInst = nullptr;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
    {
        ghInst = instance;
        moduleHandle = instance;
    }
    return TRUE;
}

extern "C" SMTG_EXPORT_SYMBOL bool InitDll()
{
    return enterModule();
}

extern "C" SMTG_EXPORT_SYMBOL bool ExitDll()
{
    return exitModule();
}

#else

extern "C" SMTG_EXPORT_SYMBOL bool ModuleEntry(void* sharedLibraryHandle)
{
    if (gEntryCount == 0)
    {
        moduleHandle = sharedLibraryHandle;
    }
    return enterModule();
}

extern "C" SMTG_EXPORT_SYMBOL bool ModuleExit()
{
    bool result = exitModule();
    if (gEntryCount == 0)
    {
        moduleHandle = nullptr;
    }
    return result;
}

#endif
