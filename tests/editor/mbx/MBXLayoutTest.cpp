#include "editor/mbx/MBXLayout.h"
#include "editor/mbx/MBXAboutMessage.h"
#include "editor/mbx/MBXDialogue.h"
#include "editor/mbx/MBXMessage.h"
#include "editor/mbx/MBXTextWrap.h"

#include <gtest/gtest.h>

#include <string>

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

// Every part inside the box, in its band and in its order.
void expectWellPlaced(const MBXObject& box)
{
    SCOPED_TRACE(box.title());
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

TEST(MBXLayout, EveryKindOfBoxIsLaidOutInItsBands)
{
    expectWellPlaced(MBXMessage("Saved", "The preset was saved."));
    expectWellPlaced(
        MBXErrorMessage("Plug-In Editor Failed to Open", "Failed to create compatible OpenGL context."));
    expectWellPlaced(
        MBXAlertMessage("A title that is a good deal wider than any box needs for its text", "Short."));
    expectWellPlaced(
        MBXDialogue("Reset?", "Every band goes back to its factory setting.", MBXDialogueButtons::kYesNo));
    expectWellPlaced(MBXInfoMessage("Notice", "This text is far too long for a single line of the box, so it "
                                              "has to wrap onto several lines, each within the width."));
    expectWellPlaced(MBXAboutMessage());
}

TEST(MBXLayout, AboutBoxHasAHeadingAndALinkOverTheAddress)
{
    const MBXBoxLayout layout = layoutBox(MBXAboutMessage());
    EXPECT_EQ(layout.lines.front().text, "Velmoran");
    EXPECT_EQ(layout.lines.front().style, &kMBXHeadingText);
    EXPECT_EQ(layout.linkTarget, "www.varnholt.co.uk");
    ASSERT_EQ(layout.links.size(), 1u);
    const MBXRect& link = layout.links.front();
    EXPECT_NEAR(link.width, widthIn(kMBXBodyText, "www.varnholt.co.uk"), 1.0);
    EXPECT_TRUE(linkAt(layout, link.x + 2, link.y + link.height / 2));
    EXPECT_FALSE(linkAt(layout, link.right() + 2, link.y + link.height / 2));
}

TEST(MBXLayout, LinkThatWrapsIsCoveredOnBothLines)
{
    const MBXBoxLayout layout = layoutBox(MBXInfoMessage(
        "Help", "See <a>the manual chapter about every band, its filter types and the spectrum</a> there."));
    ASSERT_EQ(layout.lines.size(), 2u);
    EXPECT_FALSE(layout.lines[0].startsInLink);
    EXPECT_TRUE(layout.lines[1].startsInLink);
    ASSERT_EQ(layout.links.size(), 2u);
    EXPECT_GT(layout.links[0].x, layout.lines[0].x);
    EXPECT_EQ(layout.links[1].x, layout.lines[1].x);
    EXPECT_GT(layout.links[1].y, layout.links[0].y);
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
