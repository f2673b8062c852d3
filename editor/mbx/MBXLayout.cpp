#include "editor/mbx/MBXLayout.h"

#include "editor/mbx/MBXTextWrap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Steinberg::Vst::Velmoran
{

namespace
{

using velmoran::platform::TextContext;

constexpr int kPadding = 20;
constexpr int kTitleBarHeight = 34;
constexpr int kTitleInset = 16;
constexpr int kIconSize = 24; // the sign images are 24 x 24 frames
constexpr int kIconGap = 16;
constexpr int kHeadingGap = 10;
constexpr int kMaxTextWidth = 380;
// A driver's compile log can run to hundreds of lines; the box keeps its first ones and stays on
// the screen with its buttons.
constexpr size_t kMaxMessageLines = 30;
constexpr int kMinBoxWidth = 320;
constexpr int kButtonHeight = 24; // the height of the button face image
constexpr int kButtonMinWidth = 84;
constexpr int kButtonLabelInset = 16;
constexpr int kButtonGap = 10;
constexpr int kFooterInset = 12;

int roundedUp(float pixels)
{
    return static_cast<int>(std::ceil(pixels));
}

// The measuring context, switched to a style.
TextContext& measuring(TextContext& text, const MBXTextStyle& style)
{
    applyTextStyle(text, style);
    return text;
}

// The baseline that centres a style's capitals in a band of the given top and height.
float centredBaseline(TextContext& text, const MBXTextStyle& style, int top, int height)
{
    measuring(text, style);
    return static_cast<float>(top) + (static_cast<float>(height) - style.lineHeight) * 0.5f + text.ascent();
}

// Adds lines of one style below `top` and gives the bottom of the last one; widest grows to the
// widest line.
int addLines(TextContext& text, MBXBoxLayout& layout, const std::vector<std::string>& lines,
             const MBXTextStyle& style, int x, int top, int& widest)
{
    measuring(text, style);
    float lineTop = static_cast<float>(top);
    for (const std::string& line : lines)
    {
        layout.lines.push_back({line, &style, x, lineTop + text.ascent(), false});
        widest = std::max(widest, roundedUp(markupWidth(text, line)));
        lineTop += style.lineHeight;
    }
    return roundedUp(lineTop);
}

// Adds the rectangles that a link covers on one line; gives whether the line ends inside it.
bool coverLinks(const TextContext& text, const MBXTextLine& line, std::vector<MBXRect>& links)
{
    const int top = static_cast<int>(line.baseline - text.ascent());
    bool inLink = line.startsInLink;
    float pen = static_cast<float>(line.x);
    float linkStart = pen;
    const auto endLink = [&]
    {
        if (inLink && pen > linkStart)
            links.push_back({static_cast<int>(linkStart), top, roundedUp(pen - linkStart),
                             static_cast<int>(kMBXBodyText.lineHeight)});
    };
    for (std::size_t index = 0; index < line.text.size(); ++index)
    {
        const std::size_t markup = linkMarkupLength(line.text, index);
        if (markup == 0)
        {
            pen += text.characterAdvance(static_cast<unsigned char>(line.text[index]));
            continue;
        }
        endLink();
        inLink = markup == kMBXLinkStart.size();
        linkStart = pen;
        index += markup - 1;
    }
    endLink();
    return inLink;
}

// Marks the message lines that open inside a link and where the link lies on each line.
void placeLinks(TextContext& text, MBXBoxLayout& layout)
{
    measuring(text, kMBXBodyText);
    bool inLink = false;
    for (MBXTextLine& line : layout.lines)
    {
        if (line.style != &kMBXBodyText)
            continue;
        line.startsInLink = inLink;
        inLink = coverLinks(text, line, layout.links);
    }
}

std::string firstLinkOf(const std::string& text)
{
    const std::size_t start = text.find(kMBXLinkStart);
    if (start == std::string::npos)
        return {};
    const std::size_t first = start + kMBXLinkStart.size();
    const std::size_t end = text.find(kMBXLinkEnd, first);
    return text.substr(first, end == std::string::npos ? std::string::npos : end - first);
}

// Button widths from their labels; gives the width of the whole row.
int sizeButtons(TextContext& text, const MBXObject& box, MBXBoxLayout& layout)
{
    measuring(text, kMBXButtonText);
    int row = 0;
    for (const std::string& label : box.buttons())
    {
        const int width =
            std::max(kButtonMinWidth, roundedUp(text.textWidth(label.c_str())) + 2 * kButtonLabelInset);
        layout.buttons.push_back({0, 0, width, kButtonHeight});
        row += width + (row > 0 ? kButtonGap : 0);
    }
    return row;
}

// The row of buttons right-aligned in the footer.
void placeButtons(MBXBoxLayout& layout)
{
    int right = layout.width - kPadding;
    for (auto button = layout.buttons.rbegin(); button != layout.buttons.rend(); ++button)
    {
        button->x = right - button->width;
        button->y = layout.footer.y + kFooterInset;
        right = button->x - kButtonGap;
    }
}

} // namespace

MBXBoxLayout layoutBox(const MBXObject& box)
{
    MBXBoxLayout layout;
    TextContext text(velmoran::platform::SoftwareCanvas{});

    layout.titleBar = {0, 0, 0, kTitleBarHeight};
    layout.titleX = kTitleInset;
    layout.titleBaseline = centredBaseline(text, kMBXTitleText, 0, kTitleBarHeight);
    const int titleWidth = roundedUp(measuring(text, kMBXTitleText).textWidth(box.title().c_str()));

    const int contentTop = kTitleBarHeight + kPadding;
    int textLeft = kPadding;
    if (box.icon() != MBXIcon::kNone)
    {
        // Centred on the first line of text.
        layout.icon = {kPadding, contentTop + (static_cast<int>(kMBXBodyText.lineHeight) - kIconSize) / 2,
                       kIconSize, kIconSize};
        textLeft += kIconSize + kIconGap;
    }

    int widest = 0;
    int textBottom = contentTop;
    if (!box.heading().name.empty())
    {
        textBottom =
            addLines(text, layout, {box.heading().name}, kMBXHeadingText, textLeft, textBottom, widest);
        textBottom =
            addLines(text, layout, {box.heading().detail}, kMBXDetailText, textLeft, textBottom, widest);
        textBottom += kHeadingGap;
    }
    layout.textWidth = kMaxTextWidth;
    std::vector<std::string> message =
        wrapText(measuring(text, kMBXBodyText), box.text(), static_cast<float>(kMaxTextWidth));
    if (message.size() > kMaxMessageLines)
    {
        message.resize(kMaxMessageLines - 1);
        message.push_back("...");
    }
    textBottom = addLines(text, layout, message, kMBXBodyText, textLeft, textBottom, widest);

    const int buttonRow = sizeButtons(text, box, layout);
    layout.width = std::max(
        {kMinBoxWidth, textLeft + widest + kPadding, buttonRow + 2 * kPadding, titleWidth + 2 * kTitleInset});
    layout.titleBar.width = layout.width;

    const int contentBottom = std::max(textBottom, layout.icon.bottom());
    layout.footer = {0, contentBottom + kPadding, layout.width, kButtonHeight + 2 * kFooterInset};
    layout.height = layout.footer.bottom();
    placeButtons(layout);
    layout.buttonBaseline =
        centredBaseline(text, kMBXButtonText, layout.footer.y + kFooterInset, kButtonHeight);

    placeLinks(text, layout);
    layout.linkTarget = firstLinkOf(box.text());
    return layout;
}

int buttonAt(const MBXBoxLayout& layout, int x, int y)
{
    for (std::size_t index = 0; index < layout.buttons.size(); ++index)
        if (layout.buttons[index].contains(x, y))
            return static_cast<int>(index);
    return -1;
}

bool linkAt(const MBXBoxLayout& layout, int x, int y)
{
    return std::any_of(layout.links.begin(), layout.links.end(),
                       [x, y](const MBXRect& link) { return link.contains(x, y); });
}

} // namespace Steinberg::Vst::Velmoran
