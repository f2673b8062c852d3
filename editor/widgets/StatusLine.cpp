#include "StatusLine.h"

#include "editor/TextMeasure.h"
#include "resources/ResourceIds.h"

namespace velmoran::editor
{

namespace
{

constexpr float kPlateWidth = 256.0f;
constexpr float kPlateHeight = 32.0f;
// Room for the amber mark at the plate's left end.
constexpr float kTextInset = 14.0f;

} // namespace

StatusLine::StatusLine(float x, float y, const TextStyle& style)
    : Widget({x, y, kPlateWidth, kPlateHeight}), mStyle(style)
{
}

void StatusLine::clear()
{
    mText.clear();
    setVisible(false);
}

void StatusLine::paintPlate(Painter& painter) const
{
    painter.drawImage(resources::kStatusPlate, 1, 0, bounds().x, bounds().y);
}

void StatusLine::draw(Painter& painter) const
{
    const float top = bounds().y + (bounds().height - lineHeight(mStyle)) / 2.0f;
    painter.drawText(bounds().x + kTextInset, top, mText.c_str(), mStyle);
}

} // namespace velmoran::editor
