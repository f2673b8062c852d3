// The engine's buffers are made once, at construction: every global allocation made in this program
// is counted, and resetting the engine or changing its rate must not move the count. That
// processing never allocates, frees or locks, whatever the changes, is counted through the plug-in
// in tests/plugin/PlugRealTimeTest.cpp.
#include "dsp/BandEngine.h"

#include "support/EngineRun.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>

namespace
{

std::atomic<long> gAllocationCount{0};

void* CountedAllocate(std::size_t size)
{
    gAllocationCount.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return CountedAllocate(size);
}

void* operator new[](std::size_t size)
{
    return CountedAllocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    gAllocationCount.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    gAllocationCount.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{

using velmoran::dsp::BandEngine;

std::unique_ptr<BandEngine> MakeBusyEngine(float sampleRate)
{
    auto engine = std::make_unique<BandEngine>();
    engine->setSampleRate(sampleRate);
    for (int band = 1; band <= BandEngine::kBandCount; ++band)
        velmoran::testing::SetBand(*engine, band, 2 + (band % 10), 50.0f * static_cast<float>(band * band),
                                   band % 2 == 0 ? 9.0f : -9.0f, 1.0f, band % 3);
    engine->setAnalyserOn(true);
    engine->setEffectOn(true);
    return engine;
}

TEST(BandEngineAllocationTest, CountingIsLive)
{
    const long before = gAllocationCount.load();
    auto probe = std::make_unique<int>(3);
    EXPECT_GT(gAllocationCount.load(), before);
}

TEST(BandEngineAllocationTest, ResetAndRateChangesDoNotAllocate)
{
    auto engine = MakeBusyEngine(48000.0f);
    const long before = gAllocationCount.load();
    engine->reset();
    for (const float rate : {192000.0f, 44100.0f, 96000.0f})
        engine->setSampleRate(rate);
    EXPECT_EQ(gAllocationCount.load() - before, 0);
}

} // namespace
