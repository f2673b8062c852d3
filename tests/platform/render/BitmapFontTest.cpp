#include "RenderTestWindow.h"

#include "platform/render/BitmapFont.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using velmoran::platform::bitmapGlyphs;
using velmoran::platform::kBitmapFontCell;
using velmoran::platform::kBitmapFontInset;

int inkIn(const velmoran::platform::BitmapGlyph& glyph)
{
    int ink = 0;
    for (uint8_t coverage : glyph.coverage)
        ink += coverage > 128 ? 1 : 0;
    return ink;
}

TEST(BitmapFont, PrintableGlyphsHaveInkAndAdvanceOthersAreEmpty)
{
    const auto& glyphs = bitmapGlyphs();
    for (int code = 33; code <= 126; ++code)
    {
        EXPECT_GT(inkIn(glyphs[code]), 0) << static_cast<char>(code);
        EXPECT_GT(glyphs[code].advance, 0) << static_cast<char>(code);
        EXPECT_EQ(glyphs[code].coverage.size(),
                  static_cast<size_t>(glyphs[code].width * glyphs[code].height));
    }
    EXPECT_EQ(inkIn(glyphs[' ']), 0);
    EXPECT_GT(glyphs[' '].advance, 0);
    EXPECT_EQ(glyphs[10].advance, 0);
    EXPECT_EQ(glyphs[200].width, 0);
}

TEST(BitmapFont, StringWidthSumsAdvancesOverAtMost1024Characters)
{
    const auto& glyphs = bitmapGlyphs();
    EXPECT_EQ(velmoran::platform::bitmapStringWidth("Hi"), glyphs['H'].advance + glyphs['i'].advance);
    const std::string longLabel(2000, 'm');
    EXPECT_EQ(velmoran::platform::bitmapStringWidth(longLabel.c_str()), 1024 * glyphs['m'].advance);
}

TEST(BitmapFont, AtlasPutsGlyphKInRowKOver16AndColumnKMod16)
{
    const std::vector<uint8_t> atlas = velmoran::platform::bitmapFontAtlasPixels();
    const int side = velmoran::platform::kBitmapFontAtlasSide;
    ASSERT_EQ(atlas.size(), static_cast<size_t>(side * side * 4));
    const auto& glyph = bitmapGlyphs()['A'];
    const int left = ('A' % 16) * kBitmapFontCell + kBitmapFontInset;
    const int top = ('A' / 16) * kBitmapFontCell + kBitmapFontInset;
    for (int y = 0; y < glyph.height; ++y)
        for (int x = 0; x < glyph.width; ++x)
        {
            const uint8_t* pixel = &atlas[static_cast<size_t>(((top + y) * side + left + x) * 4)];
            EXPECT_EQ(pixel[0], 255);
            EXPECT_EQ(pixel[3],
                      velmoran::platform::coverageBrightening()[glyph.coverage[y * glyph.width + x]]);
        }
    // Nothing in the inset of the cell.
    for (int x = 0; x < kBitmapFontCell; ++x)
        EXPECT_EQ(atlas[static_cast<size_t>(
                      (('A' / 16) * kBitmapFontCell * side + ('A' % 16) * kBitmapFontCell + x) * 4 + 3)],
                  0);
}

} // namespace
