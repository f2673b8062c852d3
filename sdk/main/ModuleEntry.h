#pragma once

// Called by the first module entry (InitDll or ModuleEntry); false refuses the load.
bool InitModule();
// Called by the last module exit (ExitDll or ModuleExit).
bool DeinitModule();

// The operating system's handle of this module (HINSTANCE on Windows, the dlopen handle on Linux).
extern void* moduleHandle;
