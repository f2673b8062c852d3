#include "resources/GlyphMetrics.h"
#include "resources/ResourceData.h"

#include <gtest/gtest.h>

#include <string>

using velmoran::resources::GlyphMetrics;
using velmoran::resources::kGlyphCount;

namespace
{

struct FontTable
{
    const char* name;
    const GlyphMetrics* glyphs;
    int atlasId;
    int usableWidth;
    int usableHeight;
};

class EveryFontTable : public ::testing::TestWithParam<FontTable>
{
};

// Distance value (0..255) of atlas pixel (x, y).
int fieldAt(int atlasId, int x, int y)
{
    const auto bytes = velmoran::resources::findBinaryResource(atlasId);
    const int width =
        (bytes.data[16] << 24) | (bytes.data[17] << 16) | (bytes.data[18] << 8) | bytes.data[19];
    return bytes.data[24 + (static_cast<std::size_t>(y) * width + x) * 4];
}

} // namespace

// The table lists printable ASCII in order, each cell inside the atlas and clear of the others.
TEST_P(EveryFontTable, ListsPrintableAsciiInCellsInsideTheAtlasWithoutOverlapping)
{
    const FontTable& font = GetParam();
    for (int i = 0; i < kGlyphCount; ++i)
    {
        const GlyphMetrics& a = font.glyphs[i];
        EXPECT_EQ(a.code, 32 + i);
        EXPECT_GE(a.x, 0);
        EXPECT_GE(a.y, 0);
        EXPECT_LE(a.x + a.width, font.usableWidth) << char(a.code);
        EXPECT_LE(a.y + a.height, font.usableHeight) << char(a.code);
        for (int j = i + 1; j < kGlyphCount; ++j)
        {
            const GlyphMetrics& b = font.glyphs[j];
            const bool apart = a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y ||
                               b.y + b.height <= a.y;
            EXPECT_TRUE(apart) << char(a.code) << " and " << char(b.code);
        }
    }
}

// How each font's capitals stand on the baseline is measured on the drawn text (TextContextTest.cpp).

TEST_P(EveryFontTable, FieldIsInsideOnTheInkAndOutsideAtTheCellEdge)
{
    const FontTable& font = GetParam();
    const GlyphMetrics& bar = font.glyphs['|' - 32];
    const int middleX = bar.x + bar.width / 2;
    const int middleY = bar.y + bar.height / 2;
    EXPECT_GT(fieldAt(font.atlasId, middleX, middleY), 150);
    EXPECT_EQ(fieldAt(font.atlasId, bar.x, bar.y), 0);
    const GlyphMetrics& space = font.glyphs[0];
    EXPECT_LT(fieldAt(font.atlasId, space.x + space.width / 2, space.y + space.height / 2), 128);
}

INSTANTIATE_TEST_SUITE_P(
    BuiltInFonts, EveryFontTable,
    ::testing::Values(FontTable{"DejaVuSans", velmoran::resources::kDejaVuSansGlyphs, 1024, 884, 302},
                      FontTable{"Saira", velmoran::resources::kSairaGlyphs, 1025, 825, 280},
                      FontTable{"Michroma", velmoran::resources::kMichromaGlyphs, 1026, 1017, 320},
                      FontTable{"ArialSmall", velmoran::resources::kArialSmallGlyphs, 1027, 521, 175}),
    [](const ::testing::TestParamInfo<FontTable>& info) { return std::string(info.param.name); });
