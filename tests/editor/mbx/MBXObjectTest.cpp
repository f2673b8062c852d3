#include "editor/mbx/MBXDialogue.h"
#include "editor/mbx/MBXMessage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Steinberg::Vst::Velmoran;

namespace
{

TEST(MBXObject, EachKindHasItsButtonsAndSign)
{
    const MBXMessage plain("Title", "Text");
    const MBXAlertMessage alert("Title", "Text");
    const MBXErrorMessage error("Title", "Text");
    const MBXInfoMessage info("Title", "Text");
    const MBXDialogue okCancel("Title", "Text");
    const MBXDialogue yesNo("Title", "Text", MBXDialogueButtons::kYesNo);
    const struct
    {
        const MBXObject& box;
        std::vector<std::string> buttons;
        MBXIcon icon;
    } cases[] = {
        {plain, {"OK"}, MBXIcon::kNone},
        {alert, {"OK"}, MBXIcon::kWarning},
        {error, {"OK"}, MBXIcon::kError},
        {info, {"OK"}, MBXIcon::kInformation},
        {okCancel, {"OK", "Cancel"}, MBXIcon::kQuestion},
        {yesNo, {"Yes", "No"}, MBXIcon::kQuestion},
    };
    for (const auto& kind : cases)
    {
        SCOPED_TRACE(static_cast<int>(&kind - cases));
        EXPECT_EQ(kind.box.buttons(), kind.buttons);
        EXPECT_EQ(kind.box.icon(), kind.icon);
        EXPECT_EQ(kind.box.defaultButton(), 0);
        EXPECT_EQ(kind.box.cancelButton(), static_cast<int>(kind.buttons.size()) - 1);
    }
}

} // namespace
