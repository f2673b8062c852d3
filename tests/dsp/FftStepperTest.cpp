#include "dsp/FftStepper.h"

#include "support/Signals.h"

#include <gtest/gtest.h>

#include <complex>
#include <random>
#include <vector>

namespace
{

using velmoran::dsp::FftDirection;
using velmoran::dsp::FftStepper;
using velmoran::dsp::ReverseBits;
using velmoran::testing::DirectDft;

std::vector<std::complex<double>> RandomSignal(std::size_t size, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> distribution(-1.0, 1.0);
    std::vector<std::complex<double>> signal(size);
    for (auto& value : signal)
    {
        value = {distribution(generator), distribution(generator)};
    }
    return signal;
}

// Loads the signal in bit-reversed order, runs the stepper to completion and returns the result
// together with the number of calls it took.
std::vector<std::complex<double>> Transform(const std::vector<std::complex<double>>& signal, int log2Size,
                                            FftDirection direction, long* callCount = nullptr)
{
    const std::size_t size = signal.size();
    std::vector<double> real(size);
    std::vector<double> imag(size);
    for (std::size_t i = 0; i < size; ++i)
    {
        const unsigned target = ReverseBits(static_cast<unsigned>(i), log2Size);
        real[target] = signal[i].real();
        imag[target] = signal[i].imag();
    }
    FftStepper stepper;
    stepper.start(real.data(), imag.data(), log2Size, direction);
    long calls = 1;
    while (!stepper.step())
    {
        ++calls;
    }
    if (callCount != nullptr)
    {
        *callCount = calls;
    }
    std::vector<std::complex<double>> result(size);
    for (std::size_t i = 0; i < size; ++i)
    {
        result[i] = {real[i], imag[i]};
    }
    return result;
}

TEST(ReverseBitsTest, MirrorsTheLowBits)
{
    EXPECT_EQ(ReverseBits(1u, 12), 2048u);
    EXPECT_EQ(ReverseBits(2048u, 12), 1u);
    EXPECT_EQ(ReverseBits(0b0011u, 4), 0b1100u);
    EXPECT_EQ(ReverseBits(0b10110u, 5), 0b01101u);
    EXPECT_EQ(ReverseBits(0u, 14), 0u);
    EXPECT_EQ(ReverseBits(16383u, 14), 16383u);
}

TEST(ReverseBitsTest, IsItsOwnInverseOverAFullRange)
{
    for (unsigned value = 0; value < 8192u; ++value)
    {
        ASSERT_EQ(ReverseBits(ReverseBits(value, 13), 13), value);
        ASSERT_LT(ReverseBits(value, 13), 8192u);
    }
}

class FftStepperSizeTest : public ::testing::TestWithParam<int>
{
};

TEST_P(FftStepperSizeTest, MatchesTheDirectTransform)
{
    const int log2Size = GetParam();
    const std::size_t size = std::size_t{1} << log2Size;
    const auto signal = RandomSignal(size, 7u + static_cast<unsigned>(log2Size));
    const auto result = Transform(signal, log2Size, FftDirection::Forward);
    // Every bin for small sizes; 97 bins spread over the range (prime stride) for the large ones.
    const std::size_t stride = size <= 1024 ? 1 : 97;
    for (std::size_t bin = 0; bin < size; bin += stride)
    {
        const auto expected = DirectDft(signal, size, bin);
        ASSERT_NEAR(result[bin].real(), expected.real(), 1e-9 * static_cast<double>(size)) << "bin " << bin;
        ASSERT_NEAR(result[bin].imag(), expected.imag(), 1e-9 * static_cast<double>(size)) << "bin " << bin;
    }
}

TEST_P(FftStepperSizeTest, TakesOneCallPerButterfly)
{
    const int log2Size = GetParam();
    const std::size_t size = std::size_t{1} << log2Size;
    long calls = 0;
    Transform(RandomSignal(size, 3u), log2Size, FftDirection::Forward, &calls);
    EXPECT_EQ(calls, static_cast<long>(size / 2) * log2Size);
}

TEST_P(FftStepperSizeTest, InverseUndoesForwardUpToTheSize)
{
    const int log2Size = GetParam();
    const std::size_t size = std::size_t{1} << log2Size;
    const auto signal = RandomSignal(size, 11u);
    const auto restored =
        Transform(Transform(signal, log2Size, FftDirection::Forward), log2Size, FftDirection::Inverse);
    for (std::size_t i = 0; i < size; ++i)
    {
        ASSERT_NEAR(restored[i].real() / static_cast<double>(size), signal[i].real(), 1e-10);
        ASSERT_NEAR(restored[i].imag() / static_cast<double>(size), signal[i].imag(), 1e-10);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, FftStepperSizeTest, ::testing::Values(1, 2, 5, 10, 12, 13, 14));

TEST(FftStepperTest, FinishedTransformReportsCompletionAndLeavesDataAlone)
{
    std::vector<double> real{1.0, 2.0, 3.0, 4.0};
    std::vector<double> imag(4, 0.0);
    FftStepper stepper;
    stepper.start(real.data(), imag.data(), 2, FftDirection::Forward);
    while (!stepper.step())
    {
    }
    const auto doneReal = real;
    EXPECT_TRUE(stepper.finished());
    EXPECT_TRUE(stepper.step());
    EXPECT_EQ(real, doneReal);
}

TEST(FftStepperTest, NeverStartedStepperIsFinished)
{
    FftStepper stepper;
    EXPECT_TRUE(stepper.finished());
    EXPECT_TRUE(stepper.step());
}

} // namespace
