#include "editor/mbx/MBXObject.h"

#include "editor/mbx/MBXManager.h"

#include <utility>

namespace Steinberg::Vst::Velmoran
{

MBXObject::MBXObject(std::string title, std::string text, MBXIcon icon, std::vector<std::string> buttons,
                     MBXHeading heading)
    : mTitle(std::move(title)), mText(std::move(text)), mIcon(icon), mButtons(std::move(buttons)),
      mHeading(std::move(heading))
{
}

int MBXObject::run()
{
    return MBXManager::instance().show(*this);
}

} // namespace Steinberg::Vst::Velmoran
