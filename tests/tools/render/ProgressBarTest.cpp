#include "tools/render/ProgressBar.h"

#include <gtest/gtest.h>

namespace velmoran::render
{
namespace
{

TEST(ProgressBar, LineShowsTheShareDone)
{
    EXPECT_EQ(progressLine("Rendering", 50, 100, 10), "Rendering [#####.....]  50%");
    EXPECT_EQ(progressLine("Rendering", 150, 100, 4), "Rendering [####] 100%");
}

} // namespace
} // namespace velmoran::render
