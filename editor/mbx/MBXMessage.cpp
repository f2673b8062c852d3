#include "editor/mbx/MBXMessage.h"

#include <utility>

namespace Steinberg::Vst::Velmoran
{

MBXMessage::MBXMessage(std::string title, std::string text)
    : MBXMessage(std::move(title), std::move(text), MBXIcon::kNone)
{
}

MBXMessage::MBXMessage(std::string title, std::string text, MBXIcon icon)
    : MBXObject(std::move(title), std::move(text), icon, {"OK"})
{
}

MBXAlertMessage::MBXAlertMessage(std::string title, std::string text)
    : MBXMessage(std::move(title), std::move(text), MBXIcon::kWarning)
{
}

MBXErrorMessage::MBXErrorMessage(std::string title, std::string text)
    : MBXMessage(std::move(title), std::move(text), MBXIcon::kError)
{
}

MBXInfoMessage::MBXInfoMessage(std::string title, std::string text)
    : MBXMessage(std::move(title), std::move(text), MBXIcon::kInformation)
{
}

} // namespace Steinberg::Vst::Velmoran
