#pragma once

#include "editor/mbx/MBXObject.h"

namespace Steinberg::Vst::Velmoran
{

// Shows a box in a window of the window kit. On Windows: a borderless window centred in the work
// area and owned by the active window, with the kit's messages pumped until a button is chosen (a
// click on it, Enter for the default button, Escape or closing the window for the cancel button);
// the window is gone when it returns the button's index. On Linux: a top-level window transient
// for the host's window, which stays up after the call (the host's run loop drives it, no loop of
// the box's own may hold the host) and goes at a button, Enter, Escape or its close button; the
// call gives the default button at once; with no editor window open (nothing would drive the box)
// the box's title and text go to the standard error stream. An editor that failed to open keeps
// its empty window, and the host's run loop, for the box that says why. Without a window kit, or
// when it cannot open a window, gives the default button without showing anything (on Linux: on
// the standard error stream). The manager uses it once it is registered
// with MBXManager::setWindowPresenter. UI thread only.
int presentInWindow(const MBXObject& box);

// Module load (true) and unload (false): the manager shows its boxes through presentInWindow, or
// shows none. On Linux, which has no message box of its own, the platform layer's error boxes (a
// shader the driver refuses) become such boxes too; on Windows they stay the system's.
void useBoxWindows(bool use);

} // namespace Steinberg::Vst::Velmoran
