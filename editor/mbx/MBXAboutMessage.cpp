#include "editor/mbx/MBXAboutMessage.h"

#include "plugin/Version.h"

namespace Steinberg::Vst::Velmoran
{

MBXAboutMessage::MBXAboutMessage()
    : MBXObject("About Velmoran",
                "A ten-band equaliser with a live spectrum of its input or output, for VST 3 hosts.\n"
                "\n"
                "Varnholt Ltd\n"
                "<a>www.varnholt.co.uk</a>",
                MBXIcon::kNone, {"OK"}, {"Velmoran", "Version " VELMORAN_VERSION})
{
}

} // namespace Steinberg::Vst::Velmoran
