#include "tools/render/ProgressBar.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace velmoran::render
{
namespace
{

TEST(ProgressBar, LineShowsTheShareDone)
{
    EXPECT_EQ(progressLine("Rendering", 0, 100, 10), "Rendering [..........]   0%");
    EXPECT_EQ(progressLine("Rendering", 50, 100, 10), "Rendering [#####.....]  50%");
    EXPECT_EQ(progressLine("Rendering", 100, 100, 10), "Rendering [##########] 100%");
    EXPECT_EQ(progressLine("Rendering", 150, 100, 4), "Rendering [####] 100%");
}

TEST(ProgressBar, StaysSilentWhenNotOnATerminal)
{
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    {
        ProgressBar bar(file, "Rendering", 1000, true);
        EXPECT_FALSE(bar.enabled());
        bar.update(500);
        bar.finish();
    }
    EXPECT_EQ(std::ftell(file), 0L);
    std::fclose(file);
}

} // namespace
} // namespace velmoran::render
