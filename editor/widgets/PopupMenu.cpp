#include "PopupMenu.h"

#include "editor/TextMeasure.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

constexpr float kRowHeight = 21.0f;
constexpr float kSeparatorHeight = 9.0f;
constexpr float kPadding = 6.0f;
constexpr float kIconSize = 16.0f;
constexpr float kIconGap = 8.0f;
constexpr Rgba kBorder{255, 176, 0, 160};
constexpr Rgba kPanelTop{38, 41, 47, 246};
constexpr Rgba kPanelBottom{22, 24, 28, 246};
constexpr Rgba kDivider{90, 96, 105, 255};
constexpr float kCurrentDotSize = 6.0f;

} // namespace

PopupMenu::PopupMenu(std::string title, int titleIcon, const TextStyle& style, Rgba accent, Rgba text)
    : Widget({0.0f, 0.0f, 0.0f, 0.0f}), mTitle(std::move(title)), mTitleIcon(titleIcon), mStyle(style),
      mAccent(accent), mTextColour(text)
{
    setVisible(false);
    fitToEntries();
}

void PopupMenu::addEntry(const std::string& label, int icon, int code)
{
    mEntries.push_back({label, icon, code, false});
    fitToEntries();
}

void PopupMenu::addSeparator()
{
    mEntries.push_back({"", 0, 0, true});
    fitToEntries();
}

float PopupMenu::titleHeight() const
{
    return kRowHeight + 4.0f;
}

float PopupMenu::rowHeight(int index) const
{
    return mEntries[static_cast<size_t>(index)].separator ? kSeparatorHeight : kRowHeight;
}

float PopupMenu::rowTop(int index) const
{
    float top = bounds().y + kPadding + titleHeight();
    for (int row = 0; row < index; ++row)
        top += rowHeight(row);
    return top;
}

void PopupMenu::fitToEntries()
{
    float widest = textWidth(mTitle.c_str(), mStyle);
    float height = titleHeight();
    for (int index = 0; index < static_cast<int>(mEntries.size()); ++index)
    {
        widest = std::max(widest, textWidth(mEntries[static_cast<size_t>(index)].label.c_str(), mStyle));
        height += rowHeight(index);
    }
    Rect box = bounds();
    box.width = std::ceil(widest + kIconSize + kIconGap + kCurrentDotSize + 4.0f * kPadding);
    box.height = std::ceil(height + 2.0f * kPadding);
    setBounds(box);
}

void PopupMenu::open(float x, float y, const Rect& area)
{
    const float left = std::clamp(x, area.x, std::max(area.x, area.right() - bounds().width));
    const float top = std::clamp(y, area.y, std::max(area.y, area.bottom() - bounds().height));
    moveTo(left, top);
    mMarked = -1;
    setVisible(true);
}

void PopupMenu::setCurrentCode(int code)
{
    mCurrent = -1;
    for (int index = 0; index < static_cast<int>(mEntries.size()); ++index)
    {
        const Entry& entry = mEntries[static_cast<size_t>(index)];
        if (!entry.separator && entry.code == code)
            mCurrent = index;
    }
}

void PopupMenu::close()
{
    mMarked = -1;
    setVisible(false);
}

int PopupMenu::entryAt(float x, float y) const
{
    if (!hitTest(x, y))
        return -1;
    for (int index = 0; index < static_cast<int>(mEntries.size()); ++index)
    {
        const float top = rowTop(index);
        if (y >= top && y < top + rowHeight(index))
            return mEntries[static_cast<size_t>(index)].separator ? -1 : index;
    }
    return -1;
}

bool PopupMenu::hover(float x, float y)
{
    const int entry = entryAt(x, y);
    const bool changed = entry != mMarked;
    mMarked = entry;
    return changed;
}

void PopupMenu::step(int direction)
{
    const int count = static_cast<int>(mEntries.size());
    if (count == 0)
        return;
    int index = mMarked;
    for (int tries = 0; tries < count; ++tries)
    {
        index = index < 0 ? (direction > 0 ? 0 : count - 1) : (index + direction + count) % count;
        if (!mEntries[static_cast<size_t>(index)].separator)
        {
            mMarked = index;
            return;
        }
    }
}

void PopupMenu::draw(Painter& painter) const
{
    const Rect& box = bounds();
    painter.fillRect({box.x + 3.0f, box.y + 4.0f, box.width, box.height}, {0, 0, 0, 90});
    painter.fillRect(box, kBorder);
    painter.fillRectGradient({box.x + 1.0f, box.y + 1.0f, box.width - 2.0f, box.height - 2.0f}, kPanelTop,
                             kPanelBottom);
    const float textLeft = box.x + kPadding + kIconSize + kIconGap;
    const float textOffset = (kRowHeight - lineHeight(mStyle)) / 2.0f;
    TextStyle titleStyle = mStyle;
    titleStyle.colour = mAccent;
    painter.drawImage(mTitleIcon, 1, 0, box.x + kPadding, box.y + kPadding + (kRowHeight - kIconSize) / 2.0f);
    painter.drawText(textLeft, box.y + kPadding + textOffset, mTitle.c_str(), titleStyle);
    painter.fillRect(
        {box.x + kPadding, box.y + kPadding + kRowHeight + 1.0f, box.width - 2.0f * kPadding, 1.0f},
        withAlpha(mAccent, 120));
    for (int index = 0; index < static_cast<int>(mEntries.size()); ++index)
    {
        const Entry& entry = mEntries[static_cast<size_t>(index)];
        const float top = rowTop(index);
        if (entry.separator)
        {
            painter.fillRect(
                {box.x + kPadding, top + kSeparatorHeight / 2.0f, box.width - 2.0f * kPadding, 1.0f},
                kDivider);
            continue;
        }
        TextStyle style = mStyle;
        style.colour = mTextColour;
        if (index == mMarked)
        {
            painter.fillRect({box.x + 2.0f, top, box.width - 4.0f, kRowHeight}, withAlpha(mAccent, 64));
            style.colour = mAccent;
        }
        if (entry.icon != 0)
            painter.drawImage(entry.icon, 1, 0, box.x + kPadding, top + (kRowHeight - kIconSize) / 2.0f);
        painter.drawText(textLeft, top + textOffset, entry.label.c_str(), style);
        if (index == mCurrent)
            painter.fillRect({box.right() - kPadding - kCurrentDotSize,
                              top + (kRowHeight - kCurrentDotSize) / 2.0f, kCurrentDotSize, kCurrentDotSize},
                             mAccent);
    }
}

} // namespace velmoran::editor
