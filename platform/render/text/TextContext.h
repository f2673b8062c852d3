#pragma once

#include "platform/render/images/SoftwareImage.h"
#include "platform/render/text/FontDescriptor.h"

#include <cstdint>
#include <optional>

namespace velmoran::platform
{

// Width and height of a measured text, in whole pixels.
struct TextExtent
{
    int width = 0;
    int height = 0;
};

// Draws and measures text with the distance-field fonts into one RGBA canvas: the text of the
// message boxes, the about window and the other panels that are composed in memory. UI thread.
class TextContext
{
public:
    // Gives a context drawing into `target` in white at full opacity, with "DejaVu Sans" at its
    // design size and the clip rectangle covering the whole canvas.
    explicit TextContext(const SoftwareCanvas& target);

    // Switches to `font`: loads its atlas and recomputes line height, cap height, baseline offset
    // and edge softness. A font whose atlas is missing measures normally and draws nothing.
    void selectFont(const FontDescriptor& font);

    // Draws into `target` from now on; the clip rectangle becomes the whole canvas.
    void setTarget(const SoftwareCanvas& target);

    // Sets the text colour (0..255 each); an opacity of -1 keeps the current one.
    void setColour(int red, int green, int blue, int opacity = -1);

    // Sets the glyph size in pixels (the font's design size is scale 1).
    void setTextSize(float pixels);

    // Sets the distance between baselines in pixels at the current size.
    void setLineHeight(float pixels);

    // Clips drawing to the rectangle (pixels) and puts the pen on its first baseline.
    void setClipRect(int x, int y, int width, int height);

    // Puts the pen at (x, y): x at the left edge of the next glyph's origin, y on the baseline.
    void setPen(float x, float y);

    // Turns the faint lower-right copy under each glyph on or off.
    void setShadow(bool on) { mShadow = on; }

    // Gives the distance from the top of a line to its baseline, in pixels.
    float ascent() const { return mBaselineOffset * mScale; }

    // Moves the pen to the clip's left edge one line further down.
    void newLine();

    // Draws one character at the pen and advances the pen; codes outside 32..126 draw nothing.
    void drawCharacter(int code);

    // Draws a zero-terminated string; characters below 32 (newline included) are skipped.
    void drawString(const char* text);

    // Gives the pen advance of one character in pixels (0 for codes outside 32..126).
    float characterAdvance(int code) const;

    // Gives the width in pixels of the last line of `text`; every newline in it moves the pen to
    // a new line, as drawing it line by line would.
    float textWidth(const char* text);

    // Formats the text printf-style and gives the size it needs when wrapped, character by
    // character, at maxWidth pixels and cut at maxHeight pixels. The link markup <a> and </a> takes
    // no room; a character that would overflow a line is dropped and the line ends there.
    TextExtent measure(float maxWidth, float maxHeight, const char* format, ...) const
#if defined(__GNUC__)
        __attribute__((format(printf, 4, 5)))
#endif
        ;

    float penX() const
    {
        return mPenX;
    }
    float penY() const
    {
        return mPenY;
    }
    float scale() const
    {
        return mScale;
    }
    float lineHeight() const
    {
        return mLineHeight;
    }
    float capHeight() const
    {
        return mCapHeight;
    }
    float edgeSoftness() const
    {
        return mEdgeSoftness;
    }
    const FontDescriptor& font() const
    {
        return *mFont;
    }

private:
    const resources::GlyphMetrics* glyphFor(int code) const;
    void recomputeBaseline();
    void drawGlyph(const resources::GlyphMetrics& glyph);
    void blendPixel(std::uint8_t* pixel, int alpha) const;

    int mRed = 255;
    int mGreen = 255;
    int mBlue = 255;
    int mOpacity = 255;
    float mClipLeftF = 0.0f;
    float mClipRightF = 0.0f;
    float mClipTopF = 0.0f;
    float mClipBottomF = 0.0f;
    float mScale = 1.0f;
    float mEdgeSoftness = 0.1f;
    float mDistanceGain = 1.25f;
    float mBaselineOffset = 0.0f;
    float mCapHeight = 0.0f;
    float mLineHeight = 0.0f;
    std::optional<SoftwareImage> mAtlas;
    const FontDescriptor* mFont = nullptr;
    float mPenX = 0.0f;
    float mPenY = 0.0f;
    bool mShadow = false;
    SoftwareCanvas mTarget;
};

} // namespace velmoran::platform
