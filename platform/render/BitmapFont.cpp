#include "BitmapFont.h"

#include "platform/render/images/SoftwareImage.h"
#include "platform/render/text/FontDescriptor.h"
#include "platform/render/text/TextContext.h"

#include <algorithm>
#include <cmath>

namespace velmoran::platform
{

namespace
{

constexpr float kLabelTextSize = 13.0f; // pixels
constexpr int kLineHeight = 18;         // pixels: tallest glyph cell, descenders included
constexpr int kMaximumCharacters = 1024;

std::array<uint8_t, 256> coverageTable(double exponent)
{
    std::array<uint8_t, 256> table{};
    for (int a = 0; a < 256; ++a)
        table[static_cast<size_t>(a)] = static_cast<uint8_t>(255.0 * std::pow(a / 255.0, exponent));
    return table;
}

BitmapGlyph rasterise(TextContext& text, CanvasBuffer& buffer, int code)
{
    BitmapGlyph glyph;
    const float advance = text.characterAdvance(code);
    glyph.advance = static_cast<uint8_t>(std::lround(advance));
    glyph.width = static_cast<uint8_t>(
        std::min(kBitmapFontCell - kBitmapFontInset, static_cast<int>(std::ceil(advance)) + 2 * kOverhang));
    glyph.height = kLineHeight;
    buffer.fill(0, 0, 0, 0);
    text.setPen(static_cast<float>(kOverhang), std::round(text.ascent()));
    text.drawCharacter(code);
    glyph.coverage.resize(static_cast<size_t>(glyph.width) * glyph.height);
    for (int y = 0; y < glyph.height; ++y)
        for (int x = 0; x < glyph.width; ++x)
            glyph.coverage[static_cast<size_t>(y * glyph.width + x)] = buffer.pixel(x, y)[3];
    return glyph;
}

BitmapGlyphTable makeGlyphs()
{
    BitmapGlyphTable glyphs;
    CanvasBuffer buffer(kBitmapFontCell, kLineHeight);
    TextContext text(buffer.canvas());
    text.selectFont(kArialSmallFont);
    text.setTextSize(kLabelTextSize);
    text.setColour(255, 255, 255, 255);
    for (int code = 32; code <= 126; ++code)
        glyphs[static_cast<size_t>(code)] = rasterise(text, buffer, code);
    return glyphs;
}

} // namespace

const BitmapGlyphTable& bitmapGlyphs()
{
    static const BitmapGlyphTable glyphs = makeGlyphs();
    return glyphs;
}

const std::array<uint8_t, 256>& coverageBrightening()
{
    static const std::array<uint8_t, 256> table = coverageTable(0.5555556);
    return table;
}

const std::array<uint8_t, 256>& coverageDarkening()
{
    static const std::array<uint8_t, 256> table = coverageTable(1.8);
    return table;
}

std::vector<uint8_t> bitmapFontAtlasPixels()
{
    std::vector<uint8_t> pixels(static_cast<size_t>(kBitmapFontAtlasSide) * kBitmapFontAtlasSide * 4, 0);
    const std::array<uint8_t, 256>& mapping = coverageBrightening();
    const BitmapGlyphTable& glyphs = bitmapGlyphs();
    for (int code = 0; code < 256; ++code)
    {
        const BitmapGlyph& glyph = glyphs[static_cast<size_t>(code)];
        const int left = (code % 16) * kBitmapFontCell + kBitmapFontInset;
        const int top = (code / 16) * kBitmapFontCell + kBitmapFontInset;
        for (int y = 0; y < glyph.height; ++y)
        {
            for (int x = 0; x < glyph.width; ++x)
            {
                uint8_t* pixel =
                    &pixels[(static_cast<size_t>(top + y) * kBitmapFontAtlasSide + left + x) * 4];
                pixel[0] = pixel[1] = pixel[2] = 255;
                pixel[3] = mapping[glyph.coverage[static_cast<size_t>(y * glyph.width + x)]];
            }
        }
    }
    return pixels;
}

int bitmapStringWidth(const char* text)
{
    const BitmapGlyphTable& glyphs = bitmapGlyphs();
    int width = 0;
    for (int i = 0; i < kMaximumCharacters && text[i] != '\0'; ++i)
        width += glyphs[static_cast<uint8_t>(text[i])].advance;
    return width;
}

} // namespace velmoran::platform
