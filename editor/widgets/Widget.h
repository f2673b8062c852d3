#pragma once

#include "editor/Painter.h"

namespace velmoran::editor
{

// Mouse buttons as the window reports them.
enum class MouseButton
{
    Left = 0,
    Right = 1,
    WheelUp = 2,
    WheelDown = 3,
};

// One element of the editor's screen: a rectangle in design pixels, a value, visibility and its
// own drawing. The editor owns its widgets, decides what a click on one means and routes the
// window's input to them; widgets only keep the state they draw (value, hover, pressed).
class Widget
{
public:
    explicit Widget(const Rect& bounds) : mBounds(bounds) {}
    virtual ~Widget() = default;
    Widget(const Widget&) = delete;
    Widget& operator=(const Widget&) = delete;

    // Draws the widget if it is visible.
    void paint(Painter& painter) const
    {
        if (mVisible)
            draw(painter);
    }

    // True when the widget is visible and (x, y) lies on it.
    virtual bool hitTest(float x, float y) const { return mVisible && mBounds.contains(x, y); }
    // Follows the mouse: hover is set while it is over the widget; true when that changed.
    bool trackHover(float x, float y)
    {
        const bool hovered = hitTest(x, y);
        const bool changed = hovered != mHovered;
        mHovered = hovered;
        return changed;
    }

    const Rect& bounds() const { return mBounds; }
    void setBounds(const Rect& bounds) { mBounds = bounds; }
    void moveTo(float x, float y)
    {
        mBounds.x = x;
        mBounds.y = y;
    }
    bool visible() const { return mVisible; }
    void setVisible(bool visible) { mVisible = visible; }
    // The widget's value, 0..100 for switches (a normalised value times 100).
    float value() const { return mValue; }
    void setValue(float value) { mValue = value; }
    bool hovered() const { return mHovered; }
    bool pressed() const { return mPressed; }
    void setPressed(bool pressed) { mPressed = pressed; }

protected:
    virtual void draw(Painter& painter) const = 0;

private:
    Rect mBounds;
    float mValue = 0.0f;
    bool mVisible = true;
    bool mHovered = false;
    bool mPressed = false;
};

} // namespace velmoran::editor
