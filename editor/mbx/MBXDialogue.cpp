#include "editor/mbx/MBXDialogue.h"

#include <utility>

namespace Steinberg::Vst::Velmoran
{

namespace
{

std::vector<std::string> labelsOf(MBXDialogueButtons buttons)
{
    if (buttons == MBXDialogueButtons::kYesNo)
        return {"Yes", "No"};
    return {"OK", "Cancel"};
}

} // namespace

MBXDialogue::MBXDialogue(std::string title, std::string text, MBXDialogueButtons buttons)
    : MBXObject(std::move(title), std::move(text), MBXIcon::kQuestion, labelsOf(buttons))
{
}

} // namespace Steinberg::Vst::Velmoran
