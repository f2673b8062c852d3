// The anti-aliased stroke and the fill of a curve.

#include "editor/ResponseCurve.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using velmoran::editor::ColouredVertex;
using velmoran::editor::ResponseCurve;
using velmoran::editor::Rgba;

constexpr Rgba kColour{200, 100, 50, 255};

struct Slope
{
    float dx;
    float dy;
};

using StrokeTest = ::testing::TestWithParam<Slope>;

// Solid vertices lie halfWidth from the line on either side, the transparent ones a pixel further.
TEST_P(StrokeTest, HasASolidCoreAndAOnePixelFeather)
{
    ResponseCurve curve(20);
    for (int k = 0; k < curve.size(); ++k)
    {
        curve[k].x = 100.0f + GetParam().dx * k;
        curve[k].y = 200.0f + GetParam().dy * k;
    }
    curve.buildStroke(kColour, 0.7f);
    ASSERT_EQ(curve.strokeVertices().size(), 19u * 18u);
    const float length = std::hypot(GetParam().dx, GetParam().dy);
    for (const ColouredVertex& v : curve.strokeVertices())
    {
        const float distance =
            std::fabs((v.x - 100.0f) * GetParam().dy - (v.y - 200.0f) * GetParam().dx) / length;
        EXPECT_NEAR(distance, v.colour.a == 0 ? 1.7f : 0.7f, 1e-3);
        EXPECT_TRUE(v.colour.a == 0 || v.colour.a == 255);
        EXPECT_EQ(v.colour.r, kColour.r);
    }
}

INSTANTIATE_TEST_SUITE_P(Lines, StrokeTest,
                         ::testing::Values(Slope{1.5f, 0.0f}, Slope{1.5f, 1.5f}, Slope{1.5f, -40.0f}));

// Where the curve passes 0 dB the fill splits, so no triangle reaches across the baseline.
TEST(CurveFill, StaysOnOneSideOfTheBaselinePerTriangle)
{
    ResponseCurve curve(9);
    const float levels[9] = {6.0f, 4.0f, 1.0f, -2.0f, -5.0f, -1.0f, 3.0f, 0.0f, -0.5f};
    for (int k = 0; k < curve.size(); ++k)
    {
        curve[k].x = 10.0f * k;
        curve[k].responseDb = levels[k];
        curve[k].y = 100.0f - 5.0f * levels[k];
    }
    curve.flagZeroCrossings();
    curve.buildFill(100.0f, kColour, kColour);
    const std::vector<ColouredVertex>& fill = curve.fillVertices();
    ASSERT_EQ(fill.size(), 8u * 6u);
    for (std::size_t i = 0; i < fill.size(); i += 3)
    {
        const bool above = fill[i].y < 100.0f || fill[i + 1].y < 100.0f || fill[i + 2].y < 100.0f;
        const bool below = fill[i].y > 100.0f || fill[i + 1].y > 100.0f || fill[i + 2].y > 100.0f;
        EXPECT_FALSE(above && below) << "triangle " << i / 3;
    }
}

} // namespace
