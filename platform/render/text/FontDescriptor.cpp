#include "platform/render/text/FontDescriptor.h"

#include "resources/ResourceIds.h"

namespace velmoran::platform
{

// "DejaVu Sans" addresses 302 rows of its 308-row atlas; the rows below are never sampled.
const FontDescriptor kDejaVuSansFont = {"DejaVu Sans",
                                        64,
                                        884,
                                        302,
                                        resources::kGlyphCount,
                                        resources::kDejaVuSansGlyphs,
                                        resources::kDejaVuSansAtlas};
const FontDescriptor kSairaFont = {
    "Saira", 64, 825, 280, resources::kGlyphCount, resources::kSairaGlyphs, resources::kSairaAtlas};
const FontDescriptor kMichromaFont = {
    "Michroma", 64, 1017, 320, resources::kGlyphCount, resources::kMichromaGlyphs, resources::kMichromaAtlas};
const FontDescriptor kArialSmallFont = {"Arial Small",
                                        32,
                                        521,
                                        175,
                                        resources::kGlyphCount,
                                        resources::kArialSmallGlyphs,
                                        resources::kArialSmallAtlas};

const std::array<const FontDescriptor*, 4>& builtInFonts()
{
    static const std::array<const FontDescriptor*, 4> fonts = {&kDejaVuSansFont, &kSairaFont, &kMichromaFont,
                                                               &kArialSmallFont};
    return fonts;
}

} // namespace velmoran::platform
