#pragma once

#include "Widget.h"

namespace velmoran::editor
{

// A switch face from a two-frame strip: frame 1 while on (value 50 and above) or pressed.
class ImageToggle : public Widget
{
public:
    ImageToggle(int imageId, float x, float y, float width, float height);

    bool on() const { return value() >= 50.0f; }
    int imageId() const { return mImageId; }

protected:
    void draw(Painter& painter) const override;

private:
    int mImageId;
};

} // namespace velmoran::editor
