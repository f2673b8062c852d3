// Colours of the graph's slots: golden-ratio hues for the bands, two fixed marker colours.

#include "editor/BandColours.h"

#include <gtest/gtest.h>

#include <tuple>

namespace
{

using velmoran::editor::Rgba;
using velmoran::editor::slotCurveColour;
using velmoran::editor::slotFillColour;

std::tuple<int, int, int, int> Components(Rgba colour)
{
    return {colour.r, colour.g, colour.b, colour.a};
}

struct SlotColours
{
    int slot;
    Rgba curve;
    Rgba fill;
};

using SlotColourTest = ::testing::TestWithParam<SlotColours>;

TEST_P(SlotColourTest, MatchesTheLookOfTheProduct)
{
    EXPECT_EQ(Components(slotCurveColour(GetParam().slot)), Components(GetParam().curve));
    EXPECT_EQ(Components(slotFillColour(GetParam().slot)), Components(GetParam().fill));
}

// Expected values from Python's colorsys.hsv_to_rgb at hues 0, 0.618034, 0.236068 .., each
// component times 255 and truncated.
INSTANTIATE_TEST_SUITE_P(Slots, SlotColourTest,
                         ::testing::Values(SlotColours{0, {242, 60, 60, 255}, {242, 2, 2, 127}},
                                           SlotColours{1, {60, 113, 242, 255}, {2, 72, 242, 127}},
                                           SlotColours{2, {166, 242, 60, 255}, {142, 242, 2, 127}},
                                           SlotColours{3, {242, 60, 219, 255}, {242, 2, 212, 127}},
                                           SlotColours{4, {60, 242, 211, 255}, {2, 242, 202, 127}},
                                           SlotColours{5, {242, 158, 60, 255}, {242, 132, 2, 127}},
                                           SlotColours{6, {105, 60, 242, 255}, {62, 2, 242, 127}},
                                           SlotColours{7, {68, 242, 60, 255}, {12, 242, 2, 127}},
                                           SlotColours{8, {242, 60, 121, 255}, {242, 2, 82, 127}},
                                           SlotColours{9, {60, 174, 242, 255}, {2, 152, 242, 127}},
                                           SlotColours{10, {189, 162, 216, 255}, {189, 162, 216, 127}},
                                           SlotColours{11, {229, 165, 0, 255}, {229, 165, 0, 127}}));

} // namespace
