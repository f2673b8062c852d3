#include "editor/mbx/MBXStyle.h"

namespace Steinberg::Vst::Velmoran
{

void applyTextStyle(velmoran::platform::TextContext& text, const MBXTextStyle& style)
{
    text.selectFont(*style.font);
    text.setTextSize(style.size);
    text.setLineHeight(style.lineHeight);
}

} // namespace Steinberg::Vst::Velmoran
