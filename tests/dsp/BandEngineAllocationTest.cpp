// The engine's buffers are made once, at construction: resetting it or changing its rate must not
// allocate, free or lock. That processing never does either, whatever the changes, is counted
// through the plug-in in tests/plugin/PlugRealTimeTest.cpp.
#include "dsp/BandEngine.h"

#include "support/EngineRun.h"
#include "support/RealTimeProbe.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

using velmoran::dsp::BandEngine;

TEST(BandEngineAllocationTest, ResetAndRateChangesNeitherAllocateNorLock)
{
    auto engine = std::make_unique<BandEngine>();
    for (int band = 1; band <= BandEngine::kBandCount; ++band)
        velmoran::testing::SetBand(*engine, band, 2 + (band % 10), 50.0f * static_cast<float>(band * band),
                                   band % 2 == 0 ? 9.0f : -9.0f, 1.0f, band % 3);
    engine->setAnalyserOn(true);
    engine->setEffectOn(true);
    velmoran::test::armRealTimeProbe();
    engine->reset();
    for (const float rate : {192000.0f, 44100.0f, 96000.0f})
        engine->setSampleRate(rate);
    const velmoran::test::RealTimeCounts counts = velmoran::test::disarmRealTimeProbe();
    EXPECT_EQ(counts.allocations, 0);
    EXPECT_EQ(counts.frees, 0);
    EXPECT_EQ(counts.locks, 0);
}

} // namespace
