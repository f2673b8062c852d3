#pragma once

#include "editor/Painter.h"
#include "editor/mbx/MBXLayout.h"
#include "platform/render/images/SoftwareImage.h"

namespace Steinberg::Vst::Velmoran
{

// How many pixels at each edge of an image keep their size when it is stretched; the rest is
// stretched to fill.
struct MBXImageCaps
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// Blends a colour (with its alpha) over a rectangle of the canvas; the part outside is ignored.
void fillRect(const velmoran::platform::SoftwareCanvas& canvas, const MBXRect& rect,
              velmoran::editor::Rgba colour);

// Blends part of an image (straight alpha) over the canvas with its top left at (x, y), 1:1.
void drawImage(const velmoran::platform::SoftwareCanvas& canvas,
               const velmoran::platform::SoftwareImage& image, const MBXRect& source, int x, int y);

// Blends part of an image over a rectangle of the canvas: the caps are copied 1:1, the middle is
// stretched (nearest pixel), so that bevels and edge lines keep their width at any size.
void drawImageStretched(const velmoran::platform::SoftwareCanvas& canvas,
                        const velmoran::platform::SoftwareImage& image, const MBXRect& source,
                        const MBXRect& destination, const MBXImageCaps& caps);

} // namespace Steinberg::Vst::Velmoran
