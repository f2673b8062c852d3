#include "editor/mbx/MBXLayout.h"
#include "editor/mbx/MBXAboutMessage.h"
#include "editor/mbx/MBXDialogue.h"
#include "editor/mbx/MBXMessage.h"
#include "editor/mbx/MBXTextWrap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Steinberg::Vst::Velmoran;

namespace
{

constexpr int kEdge = 20; // the box's padding

float widthIn(const MBXTextStyle& style, const std::string& line)
{
    velmoran::platform::TextContext text{velmoran::platform::SoftwareCanvas{}};
    applyTextStyle(text, style);
    return markupWidth(text, line);
}

// The box has its kind's buttons and sign, the first button the default and the last the cancel
// one; every part lies inside the box, in its band and in its order.
void expectWellPlaced(const MBXObject& box, const std::vector<std::string>& buttons, MBXIcon icon)
{
    SCOPED_TRACE(box.title());
    EXPECT_EQ(box.buttons(), buttons);
    EXPECT_EQ(box.icon(), icon);
    EXPECT_EQ(box.defaultButton(), 0);
    EXPECT_EQ(box.cancelButton(), static_cast<int>(buttons.size()) - 1);
    const MBXBoxLayout layout = layoutBox(box);
    EXPECT_TRUE(layout.titleBaseline > 0 && layout.titleBaseline < layout.titleBar.bottom());
    EXPECT_LE(2 * layout.titleX + widthIn(kMBXTitleText, box.title()), layout.width);
    for (const MBXTextLine& line : layout.lines)
    {
        EXPECT_EQ(line.x, layout.icon.empty() ? kEdge : layout.icon.right() + 16) << line.text;
        EXPECT_LE(line.x + widthIn(*line.style, line.text),
                  std::min(layout.width - kEdge, line.x + layout.textWidth));
        EXPECT_TRUE(line.baseline > layout.titleBar.bottom() + kEdge && line.baseline < layout.footer.y - 10);
    }
    EXPECT_EQ(layout.icon.empty(), box.icon() == MBXIcon::kNone);
    EXPECT_TRUE(layout.icon.empty() || (layout.icon.y > layout.titleBar.bottom() && layout.icon.x == kEdge));

    EXPECT_EQ(layout.footer.bottom(), layout.height);
    ASSERT_EQ(layout.buttons.size(), box.buttons().size());
    EXPECT_EQ(layout.buttons.back().right(), layout.width - kEdge);
    for (std::size_t index = 0; index < layout.buttons.size(); ++index)
    {
        const MBXRect& button = layout.buttons[index];
        EXPECT_TRUE(button.y > layout.footer.y && button.bottom() < layout.height);
        EXPECT_GE(button.width, widthIn(kMBXButtonText, box.buttons()[index]) + 16);
        EXPECT_TRUE(index == 0 || button.x > layout.buttons[index - 1].right());
        EXPECT_EQ(buttonAt(layout, button.x + button.width / 2, button.y + 12), static_cast<int>(index));
    }
    EXPECT_EQ(buttonAt(layout, 1, layout.footer.y + 1), -1);
}

TEST(MBXLayout, EveryKindOfBoxHasItsButtonsAndSignAndIsLaidOutInItsBands)
{
    expectWellPlaced(MBXMessage("Saved", "The preset was saved."), {"OK"}, MBXIcon::kNone);
    expectWellPlaced(
        MBXErrorMessage("Plug-In Editor Failed to Open", "Failed to create compatible OpenGL context."),
        {"OK"}, MBXIcon::kError);
    expectWellPlaced(
        MBXAlertMessage("A title that is a good deal wider than any box needs for its text", "Short."),
        {"OK"}, MBXIcon::kWarning);
    expectWellPlaced(MBXDialogue("Reset?", "Every band goes back to its factory setting."), {"OK", "Cancel"},
                     MBXIcon::kQuestion);
    expectWellPlaced(
        MBXDialogue("Reset?", "Every band goes back to its factory setting.", MBXDialogueButtons::kYesNo),
        {"Yes", "No"}, MBXIcon::kQuestion);
    expectWellPlaced(MBXInfoMessage("Notice", "This text is far too long for a single line of the box, so it "
                                              "has to wrap onto several lines, each within the width."),
                     {"OK"}, MBXIcon::kInformation);
    expectWellPlaced(MBXAboutMessage(), {"OK"}, MBXIcon::kNone);
}

// The about box's address is a link exactly over its text; a link that wraps is covered on both lines.
TEST(MBXLayout, LinksAreCoveredWhereTheyAreDrawn)
{
    const MBXBoxLayout about = layoutBox(MBXAboutMessage());
    EXPECT_EQ(about.linkTarget, "www.varnholt.co.uk");
    ASSERT_EQ(about.links.size(), 1u);
    const MBXRect& link = about.links.front();
    EXPECT_NEAR(link.width, widthIn(kMBXBodyText, "www.varnholt.co.uk"), 1.0);
    EXPECT_TRUE(linkAt(about, link.x + 2, link.y + link.height / 2));
    EXPECT_FALSE(linkAt(about, link.right() + 2, link.y + link.height / 2));

    const MBXBoxLayout wrapped = layoutBox(MBXInfoMessage(
        "Help", "See <a>the manual chapter about every band, its filter types and the spectrum</a> there."));
    ASSERT_EQ(wrapped.lines.size(), 2u);
    EXPECT_FALSE(wrapped.lines[0].startsInLink);
    EXPECT_TRUE(wrapped.lines[1].startsInLink);
    ASSERT_EQ(wrapped.links.size(), 2u);
    EXPECT_GT(wrapped.links[0].x, wrapped.lines[0].x);
    EXPECT_EQ(wrapped.links[1].x, wrapped.lines[1].x);
    EXPECT_GT(wrapped.links[1].y, wrapped.links[0].y);
}

// A driver log of hundreds of lines keeps its first ones and leaves the box, buttons and all, on
// a small screen.
TEST(MBXLayout, LongLogIsCutToFitTheScreen)
{
    std::string log;
    for (int line = 1; line <= 400; ++line)
        log += "ERROR: 0:" + std::to_string(line) + ": syntax error\n";
    const MBXBoxLayout layout = layoutBox(MBXErrorMessage("Velmoran: OpenGL Error", log));
    EXPECT_LE(layout.height, 700);
    ASSERT_FALSE(layout.lines.empty());
    EXPECT_EQ(layout.lines.front().text, "ERROR: 0:1: syntax error");
    EXPECT_EQ(layout.lines.back().text, "...");
}

} // namespace
