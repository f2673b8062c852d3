#pragma once

#include "Widget.h"

namespace velmoran::editor
{

// A machined plate of the frame: shaded from top to bottom with a dark rim and a faint lit top
// edge; optionally with the amber corner brackets.
class Panel : public Widget
{
public:
    Panel(const Rect& bounds, Rgba top, Rgba bottom, bool cornerBrackets);

protected:
    void draw(Painter& painter) const override;

private:
    Rgba mTop;
    Rgba mBottom;
    bool mCornerBrackets;
};

} // namespace velmoran::editor
