#include "resources/GlyphMetrics.h"

// The rows come from the atlas generator, one brace-enclosed row of eight integers a glyph.
namespace velmoran::resources
{

const GlyphMetrics kDejaVuSansGlyphs[kGlyphCount] = {
#include "DejaVuSansGlyphs.inc"
};

const GlyphMetrics kSairaGlyphs[kGlyphCount] = {
#include "SairaGlyphs.inc"
};

const GlyphMetrics kMichromaGlyphs[kGlyphCount] = {
#include "MichromaGlyphs.inc"
};

const GlyphMetrics kArialSmallGlyphs[kGlyphCount] = {
#include "ArialSmallGlyphs.inc"
};

} // namespace velmoran::resources
