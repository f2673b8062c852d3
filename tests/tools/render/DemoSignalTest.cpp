#include "RenderTestSupport.h"

#include "tools/render/DemoSignal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velmoran::render
{
namespace
{

// Its length and channels as the tool writes them are checked in RenderToolTest.cpp.
TEST(DemoSignal, HasHeadroomSoundsThroughoutAndDiffersBetweenChannels)
{
    const std::vector<float> demo = makeDemoSignal();
    float peak = 0.0f;
    for (float sample : demo)
        peak = std::max(peak, std::fabs(sample));
    EXPECT_NEAR(20.0 * std::log10(peak), kDemoPeakDb, 0.01);
    const test::Sound sound{{kDemoSampleRate, 2, 0, 0}, demo};
    const size_t quarterSecond = kDemoSampleRate / 4;
    for (size_t first = 0; first + quarterSecond <= demo.size() / 2; first += quarterSecond)
        EXPECT_GT(test::rmsDb(sound, 0, first, quarterSecond), -40.0) << "silent near frame " << first;
    size_t differing = 0;
    for (size_t frame = 0; frame < demo.size() / 2; ++frame)
        differing += demo[2 * frame] != demo[2 * frame + 1] ? 1 : 0;
    EXPECT_GT(differing, demo.size() / 4);
    EXPECT_EQ(makeDemoSignal(), demo);
}

} // namespace
} // namespace velmoran::render
