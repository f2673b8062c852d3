// The audio thread must never reach the heap: every global allocation made in this program is
// counted, and the count must not move while the engine processes.
#include "dsp/BandEngine.h"

#include "support/EngineRun.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
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

constexpr int kChunk = BandEngine::kMaxChunkLength;

// Allocations made while `chunks` chunks of a test tone run through the engine, with `between`
// called (outside the count) before each chunk.
long AllocationsWhileProcessing(BandEngine& engine, int chunks, const std::function<void(int)>& between)
{
    long allocations = 0;
    std::array<float, kChunk> left{};
    std::array<float, kChunk> right{};
    for (int chunk = 0; chunk < chunks; ++chunk)
    {
        between(chunk);
        for (int i = 0; i < kChunk; ++i)
        {
            left[i] = static_cast<float>(((chunk * kChunk + i) % 97) - 48) / 64.0f;
            right[i] = -left[i];
        }
        const long before = gAllocationCount.load();
        engine.updateBlock(kChunk);
        engine.processChunk(left.data(), right.data(), left.data(), right.data(), kChunk);
        allocations += gAllocationCount.load() - before;
    }
    return allocations;
}

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

using AllocationRateTest = ::testing::TestWithParam<float>;

TEST_P(AllocationRateTest, ProcessingNeverAllocates)
{
    auto engine = MakeBusyEngine(GetParam());
    // Two seconds at 48 kHz: every kind of change the block update handles, several times over.
    const long allocations = AllocationsWhileProcessing(
        *engine, 1500,
        [&](int chunk)
        {
            const int band = 1 + chunk % BandEngine::kBandCount;
            engine->setBandFrequency(band, 100.0f + static_cast<float>((chunk * 37) % 15000));
            engine->setBandGain(band, static_cast<float>((chunk % 37) - 18));
            engine->setBandQ(band, 0.3f + static_cast<float>(chunk % 40) * 0.1f);
            if (chunk % 50 == 0)
            {
                engine->setBandType(band, chunk % 21);
                engine->setBandMode(band, (chunk / 50) % 3);
                engine->setBandEnabled(band, chunk % 150 != 0);
                engine->setSoloBand((chunk / 50) % 11);
                engine->setPolarityInverted(chunk % 100 == 0);
                engine->setInputGainDb(static_cast<float>(chunk % 13) - 6.0f);
                engine->setOutputGainDb(6.0f - static_cast<float>(chunk % 13));
                engine->setAnalyserSourceOutput(chunk % 100 == 0);
            }
            if (chunk % 300 == 0)
            {
                engine->setEffectOn(chunk % 600 != 0);
                engine->setAnalyserOn(chunk % 900 != 0);
            }
        });
    EXPECT_EQ(allocations, 0);
}

TEST_P(AllocationRateTest, ResetAndRateChangesDoNotAllocate)
{
    auto engine = MakeBusyEngine(GetParam());
    const long before = gAllocationCount.load();
    engine->reset();
    engine->setSampleRate(192000.0f);
    engine->setSampleRate(44100.0f);
    engine->setSampleRate(GetParam());
    EXPECT_EQ(gAllocationCount.load() - before, 0);
}

INSTANTIATE_TEST_SUITE_P(Rates, AllocationRateTest, ::testing::Values(44100.0f, 96000.0f, 192000.0f));

} // namespace
