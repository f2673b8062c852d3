#pragma once

#include "Widget.h"

namespace velmoran::editor
{

// A button from a strip of frames; its value picks the frame (0, 100, 200, ... for frames 0, 1,
// 2, ...). The selector is the same with a frame of its own shown while pressed.
class ImageButton : public Widget
{
public:
    // pressedFrame: the frame shown while the mouse holds the button, -1 for none.
    ImageButton(int imageId, int frameCount, float x, float y, float size, int pressedFrame = -1);

    // The frame the value selects, limited to the strip.
    int valueFrame() const;
    int frameCount() const { return mFrameCount; }
    int imageId() const { return mImageId; }

protected:
    void draw(Painter& painter) const override;

private:
    int mImageId;
    int mFrameCount;
    int mPressedFrame;
};

} // namespace velmoran::editor
