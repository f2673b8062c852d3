#include "TextBox.h"

#include "editor/EditorLayout.h"
#include "editor/TextMeasure.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

constexpr float kPadding = 8.0f;
constexpr float kIconSize = 16.0f;
constexpr float kIconGap = 6.0f;
constexpr Rgba kPanelTop{34, 37, 42, 232};
constexpr Rgba kPanelBottom{20, 22, 25, 232};
constexpr Rgba kBorder{90, 96, 105, 255};

} // namespace

TextBox::TextBox(const TextStyle& style, bool framed)
    : Widget({0.0f, 0.0f, 0.0f, 0.0f}), mStyle(style), mFramed(framed)
{
    setVisible(false);
}

void TextBox::setLines(std::vector<Line> lines)
{
    mLines = std::move(lines);
    fitToLines();
}

void TextBox::setTexts(const std::vector<std::string>& texts, Rgba colour)
{
    std::vector<Line> lines;
    for (const std::string& text : texts)
        lines.push_back({text, colour, 0, false});
    setLines(std::move(lines));
}

void TextBox::centreOn(float x, float y)
{
    moveTo(x - bounds().width / 2.0f, y - bounds().height / 2.0f);
}

int TextBox::lineAt(float x, float y) const
{
    if (!hitTest(x, y))
        return -1;
    const float top = bounds().y + (mFramed ? kPadding : 0.0f);
    const int line = static_cast<int>(std::floor((y - top) / rowHeight()));
    return line >= 0 && line < static_cast<int>(mLines.size()) ? line : -1;
}

float TextBox::rowHeight() const
{
    return std::max(lineHeight(mStyle), hasIcons() ? kIconSize + 2.0f : 0.0f);
}

bool TextBox::hasIcons() const
{
    return std::any_of(mLines.begin(), mLines.end(), [](const Line& line) { return line.icon != 0; });
}

void TextBox::fitToLines()
{
    float widest = 0.0f;
    for (const Line& line : mLines)
        widest = std::max(widest, textWidth(line.text.c_str(), mStyle));
    const float iconRoom = hasIcons() ? kIconSize + kIconGap : 0.0f;
    const float padding = mFramed ? kPadding : 0.0f;
    Rect box = bounds();
    box.width = std::ceil(widest + iconRoom + 2.0f * padding);
    box.height = std::ceil(rowHeight() * static_cast<float>(mLines.size()) + 2.0f * padding);
    setBounds(box);
}

void TextBox::draw(Painter& painter) const
{
    const Rect& box = bounds();
    const float padding = mFramed ? kPadding : 0.0f;
    if (mFramed)
    {
        painter.fillRect(box, kBorder);
        painter.fillRectGradient({box.x + 1.0f, box.y + 1.0f, box.width - 2.0f, box.height - 2.0f}, kPanelTop,
                                 kPanelBottom);
    }
    const float row = rowHeight();
    const float iconRoom = hasIcons() ? kIconSize + kIconGap : 0.0f;
    float y = box.y + padding;
    for (const Line& line : mLines)
    {
        if (line.highlighted)
            painter.fillRect({box.x + 2.0f, y, box.width - 4.0f, row}, withAlpha(kAmber, 56));
        if (line.icon != 0)
            painter.drawImage(line.icon, 1, 0, box.x + padding, y + (row - kIconSize) / 2.0f);
        TextStyle style = mStyle;
        style.colour = line.highlighted ? kAmber : line.colour;
        painter.drawText(box.x + padding + iconRoom, y + (row - lineHeight(mStyle)) / 2.0f, line.text.c_str(),
                         style);
        y += row;
    }
}

} // namespace velmoran::editor
