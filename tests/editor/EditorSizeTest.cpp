#include "editor/EditorSize.h"

#include <gtest/gtest.h>

namespace velmoran::editor
{
namespace
{

struct SizeCase
{
    float scale;
    bool hostRect;
    int hostWidth;
    int hostHeight;
    int width;
    int height;
};

class EditorSizes : public ::testing::TestWithParam<SizeCase>
{
};

// Without a rectangle the design size follows the display scale; a host's rectangle wins.
TEST_P(EditorSizes, FollowScaleOrHostRectangle)
{
    const SizeCase& c = GetParam();
    const EditorSize size = editorSize(998.0f, 634.0f, c.scale, c.hostRect, c.hostWidth, c.hostHeight);
    EXPECT_EQ(size.widthPixels, c.width);
    EXPECT_EQ(size.heightPixels, c.height);
}

INSTANTIATE_TEST_SUITE_P(ScalesAndRectangles, EditorSizes,
                         ::testing::Values(SizeCase{1.0f, false, 0, 0, 998, 634},
                                           SizeCase{2.0f, false, 0, 0, 1996, 1268},
                                           SizeCase{1.25f, false, 0, 0, 1248, 793},
                                           SizeCase{2.0f, true, 1200, 700, 1200, 700}));

} // namespace
} // namespace velmoran::editor
