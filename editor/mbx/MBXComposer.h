#pragma once

#include "editor/mbx/MBXLayout.h"
#include "editor/mbx/MBXObject.h"
#include "platform/render/images/SoftwareImage.h"

namespace Steinberg::Vst::Velmoran
{

// What the pointer is doing to a box: the button under it, the button held down (each -1 for
// none) and whether it rests on the link.
struct MBXPointerState
{
    int hoveredButton = -1;
    int pressedButton = -1;
    bool linkHovered = false;
};

// Draws a box as laid out into an opaque canvas of the layout's size: the shaded panel with its
// amber top edge, the title bar, the sign, the text with its link in amber, and the buttons, the
// default one labelled in amber.
velmoran::platform::CanvasBuffer composeBox(const MBXObject& box, const MBXBoxLayout& layout,
                                            const MBXPointerState& pointer = {});

} // namespace Steinberg::Vst::Velmoran
