#pragma once

#include "editor/mbx/MBXObject.h"

namespace Steinberg::Vst::Velmoran
{

// The about box: the product's name and version in large type, what it is, who makes it and a
// link to the maker's site.
class MBXAboutMessage : public MBXObject
{
public:
    MBXAboutMessage();
};

} // namespace Steinberg::Vst::Velmoran
