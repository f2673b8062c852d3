#include "ImageButton.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

ImageButton::ImageButton(int imageId, int frameCount, float x, float y, float size, int pressedFrame)
    : Widget({x, y, size, size}), mImageId(imageId), mFrameCount(frameCount), mPressedFrame(pressedFrame)
{
}

int ImageButton::valueFrame() const
{
    const int frame = static_cast<int>(std::floor(value() / 100.0f + 0.5f));
    const int lastValueFrame = (mPressedFrame >= 0 ? mPressedFrame : mFrameCount) - 1;
    return std::clamp(frame, 0, lastValueFrame);
}

void ImageButton::draw(Painter& painter) const
{
    const int frame = pressed() && mPressedFrame >= 0 ? mPressedFrame : valueFrame();
    const float opacity = hovered() || frame > 0 ? 1.0f : 0.9f;
    painter.drawImage(mImageId, mFrameCount, frame, bounds().x, bounds().y, opacity);
}

} // namespace velmoran::editor
