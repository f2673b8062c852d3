#pragma once

#include "editor/mbx/MBXObject.h"

namespace Steinberg::Vst::Velmoran
{

// The answers a dialogue offers; the first is the default, the second the cancel button.
enum class MBXDialogueButtons
{
    kOkCancel,
    kYesNo
};

// A question with two answers and the question sign: run() gives 0 for "OK" or "Yes", 1 for
// "Cancel" or "No".
class MBXDialogue : public MBXObject
{
public:
    MBXDialogue(std::string title, std::string text,
                MBXDialogueButtons buttons = MBXDialogueButtons::kOkCancel);
};

} // namespace Steinberg::Vst::Velmoran
