#include "ImageToggle.h"

namespace velmoran::editor
{

ImageToggle::ImageToggle(int imageId, float x, float y, float width, float height)
    : Widget({x, y, width, height}), mImageId(imageId)
{
}

void ImageToggle::draw(Painter& painter) const
{
    const int frame = on() || pressed() ? 1 : 0;
    // A touch of transparency on a face the mouse is not over keeps the row calm.
    const float opacity = hovered() || on() ? 1.0f : 0.92f;
    painter.drawImage(mImageId, 2, frame, bounds().x, bounds().y, opacity);
}

} // namespace velmoran::editor
