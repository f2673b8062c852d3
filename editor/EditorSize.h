#pragma once

namespace velmoran::editor
{

// The editor's size in device pixels: the host's rectangle when it gives one, else the default
// size times the display scale; the integer copies are rounded half up.
struct EditorSize
{
    float width = 0.0f;
    float height = 0.0f;
    int widthPixels = 0;
    int heightPixels = 0;
};

// hostWidth and hostHeight are used when hasHostRect is set.
inline EditorSize editorSize(float defaultWidth, float defaultHeight, float displayScale, bool hasHostRect,
                             int hostWidth, int hostHeight)
{
    EditorSize size;
    size.width = hasHostRect ? static_cast<float>(hostWidth) : defaultWidth * displayScale;
    size.height = hasHostRect ? static_cast<float>(hostHeight) : defaultHeight * displayScale;
    size.widthPixels = static_cast<int>(size.width + 0.5f);
    size.heightPixels = static_cast<int>(size.height + 0.5f);
    return size;
}

} // namespace velmoran::editor
