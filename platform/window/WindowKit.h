#pragma once

// The window kit of the platform being built: both kits offer the same slot table, callback
// setters and window calls under the same names.
#if defined(_WIN32)
#include "CPlatformWindows.h"
#else
#include "CPlatformWindowsX11.h"
#endif
