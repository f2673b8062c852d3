#include "platform/render/text/TextContext.h"

#include "platform/render/images/ImageLoader.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

namespace velmoran::platform
{

namespace
{

constexpr int kFirstCode = 32;
constexpr int kLastCode = 126;
constexpr std::int64_t kOne = 65536; // 1.0 in 16.16 fixed point
constexpr int kShadowOffset = 2;     // atlas pixels up and to the left of the glyph's own sample

std::int64_t toFixed(double value)
{
    return static_cast<std::int64_t>(std::llround(value * static_cast<double>(kOne)));
}

int clampChannel(int value)
{
    return std::clamp(value, 0, 255);
}

// Reads distance fields out of one glyph's cell with bilinear interpolation; coordinates are
// 16.16 atlas pixels with integers at texel centres, held inside the cell so that a neighbouring
// glyph never bleeds in.
class CellSampler
{
public:
    CellSampler(const SoftwareImage& atlas, const resources::GlyphMetrics& glyph)
        : mAtlas(atlas), mLeft(std::clamp(glyph.x, 0, atlas.width - 1)),
          mTop(std::clamp(glyph.y, 0, atlas.height - 1)),
          mRight(std::clamp(glyph.x + glyph.width - 1, mLeft, atlas.width - 1)),
          mBottom(std::clamp(glyph.y + glyph.height - 1, mTop, atlas.height - 1))
    {
    }

    // Gives the distance value at (u, v) as 16.16 fixed point, 0 (far outside) to 1 (deep inside).
    std::int64_t distance(std::int64_t u, std::int64_t v) const
    {
        u = std::clamp<std::int64_t>(u, std::int64_t{mLeft} * kOne, std::int64_t{mRight} * kOne);
        v = std::clamp<std::int64_t>(v, std::int64_t{mTop} * kOne, std::int64_t{mBottom} * kOne);
        const int x0 = static_cast<int>(u >> 16);
        const int y0 = static_cast<int>(v >> 16);
        const int x1 = std::min(x0 + 1, mRight);
        const int y1 = std::min(y0 + 1, mBottom);
        const std::int64_t fu = u & (kOne - 1);
        const std::int64_t fv = v & (kOne - 1);
        const std::int64_t upper = texel(x0, y0) * (kOne - fu) + texel(x1, y0) * fu;
        const std::int64_t lower = texel(x0, y1) * (kOne - fu) + texel(x1, y1) * fu;
        return ((upper * (kOne - fv) + lower * fv) >> 16) / 255;
    }

private:
    std::int64_t texel(int x, int y) const
    {
        return mAtlas.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(mAtlas.rowstride) +
                             static_cast<std::size_t>(x) * 4];
    }

    const SoftwareImage& mAtlas;
    int mLeft;
    int mTop;
    int mRight;
    int mBottom;
};

// Gives the smoothed coverage (16.16, 0..1) of a distance value with edge softness w and gain:
// clamp((d * gain + (w - 0.5)) / (2 w), 0, 1) through the smoothstep v^2 (3 - 2 v).
std::int64_t smoothCoverage(std::int64_t distance, std::int64_t gain, std::int64_t softness)
{
    const std::int64_t numerator = ((distance * gain) >> 16) + softness - kOne / 2;
    const std::int64_t coverage = std::clamp<std::int64_t>(numerator * kOne / (2 * softness), 0, kOne);
    return (((coverage * coverage) >> 16) * (3 * kOne - 2 * coverage)) >> 16;
}

} // namespace

TextContext::TextContext(const SoftwareCanvas& target)
{
    setTarget(target);
    selectFont(kDejaVuSansFont);
}

void TextContext::selectFont(const FontDescriptor& font)
{
    mAtlas = loadImageSilently(font.atlasResourceId);
    mFont = &font;
    mLineHeight = static_cast<float>(font.designSize);
    const resources::GlyphMetrics* capital = glyphFor('H');
    mCapHeight = capital != nullptr ? static_cast<float>(capital->height) : mLineHeight;
    mEdgeSoftness = 0.25f / (mScale * 2.5f);
    recomputeBaseline();
}

void TextContext::setTarget(const SoftwareCanvas& target)
{
    mTarget = target;
    mClipLeftF = 0.0f;
    mClipTopF = 0.0f;
    mClipRightF = static_cast<float>(target.width);
    mClipBottomF = static_cast<float>(target.height);
}

void TextContext::setColour(int red, int green, int blue, int opacity)
{
    mRed = clampChannel(red);
    mGreen = clampChannel(green);
    mBlue = clampChannel(blue);
    if (opacity != -1)
        mOpacity = clampChannel(opacity);
}

void TextContext::setTextSize(float pixels)
{
    if (!(pixels > 0.0f) || !std::isfinite(pixels))
        return;
    mScale = pixels / static_cast<float>(mFont->designSize);
    const resources::GlyphMetrics* capital = glyphFor('H');
    mCapHeight = capital != nullptr ? static_cast<float>(capital->height) : mLineHeight;
    mEdgeSoftness = 0.25f / (mScale * 2.5f);
    recomputeBaseline();
}

void TextContext::setLineHeight(float pixels)
{
    if (!(pixels > 0.0f) || !std::isfinite(pixels))
        return;
    mLineHeight = pixels / mScale;
    mEdgeSoftness = 0.25f / (mScale * 2.5f);
    recomputeBaseline();
}

void TextContext::setClipRect(int x, int y, int width, int height)
{
    mClipLeftF = static_cast<float>(x);
    mClipTopF = static_cast<float>(y);
    mClipRightF = static_cast<float>(x) + static_cast<float>(width);
    mClipBottomF = static_cast<float>(y) + static_cast<float>(height);
    mPenX = static_cast<float>(x);
    mPenY = static_cast<float>(y) + mBaselineOffset * mScale;
}

void TextContext::setPen(float x, float y)
{
    mPenX = x;
    mPenY = y;
}

void TextContext::newLine()
{
    mPenX = mClipLeftF;
    mPenY += mLineHeight * mScale;
}

void TextContext::drawCharacter(int code)
{
    const resources::GlyphMetrics* glyph = glyphFor(code);
    if (glyph == nullptr)
        return;
    drawGlyph(*glyph);
    mPenX += static_cast<float>(glyph->advance) * mScale;
}

void TextContext::drawString(const char* text)
{
    if (text == nullptr)
        return;
    for (const char* c = text; *c != '\0'; ++c)
    {
        const int code = static_cast<unsigned char>(*c);
        if (code >= kFirstCode)
            drawCharacter(code);
    }
}

float TextContext::characterAdvance(int code) const
{
    const resources::GlyphMetrics* glyph = glyphFor(code);
    return glyph != nullptr ? static_cast<float>(glyph->advance) * mScale : 0.0f;
}

float TextContext::textWidth(const char* text)
{
    float width = 0.0f;
    if (text == nullptr)
        return width;
    for (const char* c = text; *c != '\0'; ++c)
    {
        if (*c == '\n')
        {
            newLine();
            width = 0.0f;
        }
        else
        {
            width += characterAdvance(static_cast<unsigned char>(*c));
        }
    }
    return width;
}

TextExtent TextContext::measure(float maxWidth, float maxHeight, const char* format, ...) const
{
    std::vector<char> text(1, '\0');
    if (format != nullptr)
    {
        std::va_list arguments;
        va_start(arguments, format);
        std::va_list sizing;
        va_copy(sizing, arguments);
        const int length = std::vsnprintf(nullptr, 0, format, sizing);
        va_end(sizing);
        if (length > 0)
        {
            text.resize(static_cast<std::size_t>(length) + 1);
            std::vsnprintf(text.data(), text.size(), format, arguments);
        }
        va_end(arguments);
    }

    const float lineStep = mLineHeight * mScale;
    float widest = 0.0f;
    float line = 0.0f;
    float height = lineStep;
    for (const char* c = text.data(); *c != '\0'; ++c)
    {
        if (std::strncmp(c, "<a>", 3) == 0)
        {
            c += 2;
            continue;
        }
        if (std::strncmp(c, "</a>", 4) == 0)
        {
            c += 3;
            continue;
        }
        const int code = static_cast<unsigned char>(*c);
        if (code == '\n')
        {
            widest = std::max(widest, line);
            line = 0.0f;
            height += lineStep;
            continue;
        }
        if (code < kFirstCode)
            continue;
        const float advance = characterAdvance(code);
        line += advance;
        if (line > maxWidth)
        {
            // The character that overflowed is consumed without being counted on any line.
            line -= advance;
            widest = std::max(widest, line);
            line = 0.0f;
            height += lineStep;
        }
    }
    widest = std::max(widest, line);
    return {static_cast<int>(std::ceil(std::min(maxWidth, widest))),
            static_cast<int>(std::ceil(std::min(maxHeight, height)))};
}

const resources::GlyphMetrics* TextContext::glyphFor(int code) const
{
    if (mFont == nullptr || mFont->metrics == nullptr || code < kFirstCode || code > kLastCode ||
        code - kFirstCode >= mFont->glyphCount)
        return nullptr;
    return &mFont->metrics[code - kFirstCode];
}

void TextContext::recomputeBaseline()
{
    mBaselineOffset = mLineHeight - (mLineHeight - mCapHeight) * 0.5f;
}

void TextContext::drawGlyph(const resources::GlyphMetrics& glyph)
{
    if (!mAtlas || mAtlas->pixels == nullptr || mAtlas->width <= 0 || mAtlas->height <= 0 ||
        mTarget.pixels == nullptr)
        return;
    const float left = mPenX - static_cast<float>(glyph.originX) * mScale;
    const float top = mPenY - static_cast<float>(glyph.originY) * mScale;
    const float right = left + static_cast<float>(glyph.width) * mScale;
    const float bottom = top + static_cast<float>(glyph.height) * mScale;

    const int firstX =
        std::max({static_cast<int>(std::floor(left)), static_cast<int>(std::floor(mClipLeftF)), 0});
    const int endX = std::min(
        {static_cast<int>(std::ceil(right)), static_cast<int>(std::ceil(mClipRightF)), mTarget.width});
    const int firstY =
        std::max({static_cast<int>(std::floor(top)), static_cast<int>(std::floor(mClipTopF)), 0});
    const int endY = std::min(
        {static_cast<int>(std::ceil(bottom)), static_cast<int>(std::ceil(mClipBottomF)), mTarget.height});
    if (firstX >= endX || firstY >= endY)
        return;

    // Destination pixel centres mapped back into the atlas, one step of 1 / scale a pixel.
    const CellSampler sampler(*mAtlas, glyph);
    const std::int64_t step = toFixed(1.0 / mScale);
    const std::int64_t startU = toFixed(glyph.x + (firstX + 0.5 - left) / mScale - 0.5);
    const std::int64_t startV = toFixed(glyph.y + (firstY + 0.5 - top) / mScale - 0.5);
    const std::int64_t gain = toFixed(mDistanceGain);
    const std::int64_t softness = std::max<std::int64_t>(toFixed(mEdgeSoftness), 1);
    const std::int64_t shadowOffset = std::int64_t{kShadowOffset} * kOne;

    for (int y = firstY; y < endY; ++y)
    {
        const std::int64_t v = startV + (y - firstY) * step;
        std::uint8_t* row =
            mTarget.pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(mTarget.rowstride);
        for (int x = firstX; x < endX; ++x)
        {
            const std::int64_t u = startU + (x - firstX) * step;
            std::uint8_t* pixel = row + static_cast<std::size_t>(x) * 4;
            if (mShadow)
            {
                const std::int64_t shade =
                    smoothCoverage(sampler.distance(u - shadowOffset, v - shadowOffset), gain, softness) >> 2;
                blendPixel(pixel, static_cast<int>(((shade >> 8) * mOpacity) >> 8));
            }
            const std::int64_t ink = smoothCoverage(sampler.distance(u, v), gain, softness);
            blendPixel(pixel, static_cast<int>(((ink >> 8) * mOpacity) >> 8));
        }
    }
}

void TextContext::blendPixel(std::uint8_t* pixel, int alpha) const
{
    if (alpha <= 0)
        return;
    alpha = std::min(alpha, 255);
    // Straight-alpha "over": the colour underneath counts with its own alpha, so text on a
    // transparent canvas keeps its colour instead of darkening towards black.
    const int below = pixel[3] * (255 - alpha);
    const int outAlpha255 = alpha * 255 + below; // output alpha times 255
    const int source[3] = {mRed, mGreen, mBlue};
    for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<std::uint8_t>(
            (source[channel] * alpha * 255 + pixel[channel] * below + outAlpha255 / 2) / outAlpha255);
    pixel[3] = static_cast<std::uint8_t>((outAlpha255 + 127) / 255);
}

} // namespace velmoran::platform
