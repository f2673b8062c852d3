#pragma once

#include <cstdint>

namespace velmoran::resources
{

// Where one glyph's distance field sits in its atlas and how it is placed on the baseline, in
// atlas pixels at the font's design size.
struct GlyphMetrics
{
    std::int32_t code;    // character code, 32 to 126
    std::int32_t x;       // left edge of the cell in the atlas
    std::int32_t y;       // top edge of the cell in the atlas
    std::int32_t width;   // cell width
    std::int32_t height;  // cell height
    std::int32_t originX; // how far the cell's left edge lies left of the pen
    std::int32_t originY; // how far the cell's top lies above the baseline
    std::int32_t advance; // pen advance
};

// Printable ASCII, space (32) to tilde (126).
constexpr int kGlyphCount = 95;

// Metrics tables of the four built-in fonts, indexed by character code - 32; made at build time
// with their atlases.
extern const GlyphMetrics kDejaVuSansGlyphs[kGlyphCount];
extern const GlyphMetrics kSairaGlyphs[kGlyphCount];
extern const GlyphMetrics kMichromaGlyphs[kGlyphCount];
extern const GlyphMetrics kArialSmallGlyphs[kGlyphCount];

} // namespace velmoran::resources
