#pragma once

#include "pluginterfaces/base/funknown.h"

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// Class identifiers of this product. Hosts store them in their projects: never change them.
static const FUID kPlugProcessorUID(0x886440A4, 0x5D2D8A12, 0x61AA4E2A, 0x13F887F4);
static const FUID kPlugControllerUID(0xB9B96166, 0x0C2EE365, 0x97A158C8, 0xD49DB1E7);

// The product identity token: names the window classes of the plug-in's windows.
constexpr const char* kProductIdentityToken = "0AE03F749923";

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
