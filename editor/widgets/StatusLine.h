#pragma once

#include "Widget.h"

#include <string>

namespace velmoran::editor
{

// The status line: one line of at most 64 characters on its plate. The plate is part of the
// frame and always drawn; the text only while the line is visible.
class StatusLine : public Widget
{
public:
    static constexpr size_t kMaxLength = 64;

    StatusLine(float x, float y, const TextStyle& style);

    void setText(const std::string& text) { mText = text.substr(0, kMaxLength); }
    const std::string& text() const { return mText; }
    // Removes the text and hides the line.
    void clear();
    // The plate is drawn whether or not the line shows text.
    void paintPlate(Painter& painter) const;

protected:
    void draw(Painter& painter) const override;

private:
    std::string mText;
    TextStyle mStyle;
};

} // namespace velmoran::editor
