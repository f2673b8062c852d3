#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace velmoran::platform
{

// One glyph of the renderer's label font: its size and pen advance in pixels and one coverage
// byte (0..255) per pixel, top row first.
struct BitmapGlyph
{
    uint8_t width = 0;
    uint8_t height = 0;
    uint8_t advance = 0;
    std::vector<uint8_t> coverage;
};

using BitmapGlyphTable = std::array<BitmapGlyph, 256>;

// Cell size of the label font's atlas in pixels (16 x 16 cells) and the glyph's inset in its cell.
inline constexpr int kBitmapFontCell = 32;
inline constexpr int kBitmapFontInset = 4;
inline constexpr int kBitmapFontAtlasSide = 16 * kBitmapFontCell;
// Pixels of room left of the pen in every glyph bitmap, for glyphs that reach back (such as "j").
inline constexpr int kOverhang = 1;

// The label font's glyphs indexed by character code, rasterised once from the "Arial Small"
// distance-field atlas; codes outside 32..126 are empty.
const BitmapGlyphTable& bitmapGlyphs();
// Coverage mapping that thickens small text: truncation of 255 * (a / 255) ^ 0.5555556.
const std::array<uint8_t, 256>& coverageBrightening();
// The opposite mapping, exponent 1.8, for text on light backgrounds.
const std::array<uint8_t, 256>& coverageDarkening();
// RGBA pixels of the atlas (kBitmapFontAtlasSide square): glyph k in row k / 16 and column k % 16,
// white with the brightened coverage as alpha, drawn kBitmapFontInset pixels into its cell.
std::vector<uint8_t> bitmapFontAtlasPixels();
// Width of a string in pixels: the sum of its glyphs' advances over at most 1024 characters.
int bitmapStringWidth(const char* text);

} // namespace velmoran::platform
