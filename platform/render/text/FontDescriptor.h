#pragma once

#include "resources/GlyphMetrics.h"

#include <array>
#include <cstdint>

namespace velmoran::platform
{

// One built-in font: its distance-field atlas (an image resource) and the metrics of its glyphs.
struct FontDescriptor
{
    const char* name;
    std::int32_t designSize;  // pixels: the size the atlas was rendered at, also its line height
    std::int32_t atlasWidth;  // pixels
    std::int32_t atlasHeight; // pixels addressed by the metrics (may be less than the image)
    std::int32_t glyphCount;
    const resources::GlyphMetrics* metrics; // indexed by character code - 32
    std::int32_t atlasResourceId;
};

extern const FontDescriptor kDejaVuSansFont;
extern const FontDescriptor kSairaFont;
extern const FontDescriptor kMichromaFont;
extern const FontDescriptor kArialSmallFont;

// Gives the four built-in fonts in the order of their atlas ids.
const std::array<const FontDescriptor*, 4>& builtInFonts();

} // namespace velmoran::platform
