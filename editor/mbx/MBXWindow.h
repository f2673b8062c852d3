#pragma once

#include "editor/mbx/MBXObject.h"

namespace Steinberg::Vst::Velmoran
{

// Shows a box in a borderless window of the window kit, centred in the work area and owned by the
// active window, and pumps the kit's messages until a button is chosen (a click on it, Enter for
// the default button, Escape or closing the window for the cancel button); the window is gone when
// it returns the button's index. Without a window kit, or when it cannot open a window, gives the
// default button without showing anything. The manager uses it once it is registered with
// MBXManager::setWindowPresenter. UI thread only.
int presentInWindow(const MBXObject& box);

} // namespace Steinberg::Vst::Velmoran
