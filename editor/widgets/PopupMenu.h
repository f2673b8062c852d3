#pragma once

#include "Widget.h"

#include <string>
#include <vector>

namespace velmoran::editor
{

// A popup menu: a title with its icon, entries with icons, separators. It opens at a point,
// follows the mouse and the arrow keys, and gives the chosen entry's code.
class PopupMenu : public Widget
{
public:
    struct Entry
    {
        std::string label;
        int icon = 0;
        int code = 0;
        bool separator = false; // a dividing line instead of an entry
    };

    PopupMenu(std::string title, int titleIcon, const TextStyle& style, Rgba accent, Rgba text);

    void addEntry(const std::string& label, int icon, int code);
    void addSeparator();

    // Shows the menu with its top-left corner at (x, y), kept inside the area; nothing is marked.
    void open(float x, float y, const Rect& area);
    // The entry whose code is current (the band's type) carries a dot; any other code marks none.
    void setCurrentCode(int code);
    // The entry carrying the dot, -1 for none.
    int currentEntry() const { return mCurrent; }
    void close();
    // The entry under (x, y), -1 over the title, a separator or outside.
    int entryAt(float x, float y) const;
    // Marks the entry under the mouse; true when the mark moved.
    bool hover(float x, float y);
    // Moves the mark to the next (+1) or previous (-1) entry, skipping separators.
    void step(int direction);
    // The marked entry, -1 for none.
    int markedEntry() const { return mMarked; }
    const std::vector<Entry>& entries() const { return mEntries; }
    const std::string& title() const { return mTitle; }

protected:
    void draw(Painter& painter) const override;

private:
    float rowTop(int index) const;
    float rowHeight(int index) const;
    float titleHeight() const;
    void fitToEntries();

    std::string mTitle;
    int mTitleIcon;
    TextStyle mStyle;
    Rgba mAccent;
    Rgba mTextColour;
    std::vector<Entry> mEntries;
    int mMarked = -1;
    int mCurrent = -1;
};

} // namespace velmoran::editor
