#pragma once

#include "pluginterfaces/vst/vsttypes.h"

#include <string>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// The text a host shows for a normalised value of a tag ("-0.06 dB", "LF Shelf", "On ");
// false for a tag without a text of its own (then the parameter's default text applies).
bool valueText(ParamID tag, float value, std::string& text);
// The normalised value (0..1) of a text as valueText writes it, with or without its unit and
// blanks; false when the text does not read as a value of that tag.
bool valueFromText(ParamID tag, const std::string& text, ParamValue& value);

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
