#include "Panel.h"

#include "resources/ResourceIds.h"

namespace velmoran::editor
{

namespace
{

constexpr Rgba kRim{10, 11, 13, 255};
constexpr Rgba kLitEdge{255, 255, 255, 28};
constexpr float kBracketSize = 32.0f;
constexpr float kBracketInset = -6.0f;

} // namespace

Panel::Panel(const Rect& bounds, Rgba top, Rgba bottom, bool cornerBrackets)
    : Widget(bounds), mTop(top), mBottom(bottom), mCornerBrackets(cornerBrackets)
{
}

void Panel::draw(Painter& painter) const
{
    const Rect& box = bounds();
    painter.fillRect(box, kRim);
    painter.fillRectGradient({box.x + 1.0f, box.y + 1.0f, box.width - 2.0f, box.height - 2.0f}, mTop,
                             mBottom);
    painter.fillRect({box.x + 2.0f, box.y + 1.0f, box.width - 4.0f, 1.0f}, kLitEdge);
    if (!mCornerBrackets)
        return;
    // One bracket image, mirrored into the other three corners.
    const float left = box.x + kBracketInset;
    const float top = box.y + kBracketInset;
    const float right = box.right() - kBracketSize - kBracketInset;
    const float bottom = box.bottom() - kBracketSize - kBracketInset;
    painter.drawImage(resources::kPanelCorner, 2, 0, left, top);
    painter.drawImage(resources::kPanelCorner, 2, 0, right, top, 1.0f, true, false);
    painter.drawImage(resources::kPanelCorner, 2, 0, left, bottom, 1.0f, false, true);
    painter.drawImage(resources::kPanelCorner, 2, 0, right, bottom, 1.0f, true, true);
}

} // namespace velmoran::editor
