#include "dsp/FftStepper.h"
#include "dsp/FftButterflies.h"

#include "support/Signals.h"

#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace
{

using velmoran::dsp::FftStepper;
using velmoran::dsp::PlacePadded;
using velmoran::testing::DirectDft;

std::vector<std::complex<double>> RandomSignal(std::size_t size, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> distribution(-1.0, 1.0);
    std::vector<std::complex<double>> signal(size);
    for (auto& value : signal)
        value = {distribution(generator), distribution(generator)};
    return signal;
}

struct Transformed
{
    std::vector<std::complex<double>> result;
    long pairCalls = 0; // calls of run(1) until the transform reported completion
};

// Places the frame (N/4 values) zero-padded to N = 2^log2Size and runs the stepper one butterfly
// pair per call to completion.
Transformed Transform(const std::vector<std::complex<double>>& frame, int log2Size)
{
    const std::size_t size = std::size_t{1} << log2Size;
    alignas(16) static double real[1 << 14];
    alignas(16) static double imag[1 << 14];
    for (std::size_t i = 0; i < frame.size(); ++i)
        PlacePadded(real, imag, log2Size, static_cast<int>(i), frame[i].real(), frame[i].imag());
    FftStepper stepper;
    stepper.start(real, imag, log2Size);
    Transformed transformed;
    for (; !stepper.finished(); ++transformed.pairCalls)
        stepper.run(1);
    for (std::size_t i = 0; i < size; ++i)
        transformed.result.emplace_back(real[i], imag[i]);
    return transformed;
}

using FftStepperSizeTest = ::testing::TestWithParam<int>;

TEST_P(FftStepperSizeTest, MatchesTheDirectTransformOfThePaddedFrame)
{
    const int log2Size = GetParam();
    const std::size_t size = std::size_t{1} << log2Size;
    const auto frame = RandomSignal(size / 4, 7u + static_cast<unsigned>(log2Size));
    const Transformed transformed = Transform(frame, log2Size);
    // The analyser plans its work by the count of butterfly pairs.
    EXPECT_EQ(transformed.pairCalls, FftStepper::PairCount(log2Size));
    // Every bin for small sizes; 97 bins spread over the range (prime stride) for the large ones.
    const std::size_t stride = size <= 1024 ? 1 : 97;
    for (std::size_t bin = 0; bin < size; bin += stride)
    {
        const auto expected = DirectDft(frame, size, bin);
        ASSERT_NEAR(transformed.result[bin].real(), expected.real(), 1e-9 * static_cast<double>(size))
            << "bin " << bin;
        ASSERT_NEAR(transformed.result[bin].imag(), expected.imag(), 1e-9 * static_cast<double>(size))
            << "bin " << bin;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, FftStepperSizeTest, ::testing::Values(2, 3, 5, 10, 12, 13, 14));

// The AVX kernel does the SSE2 kernel's operations two pairs at a time: the same bits for any
// stage, starting pair and portion, so the display does not depend on the processor.
TEST(FftKernelsTest, AvxAndSse2GiveTheSameBits)
{
    if (!__builtin_cpu_supports("avx"))
        GTEST_SKIP() << "this processor has no AVX";
    constexpr int kSize = 1 << 10;
    const auto signal = RandomSignal(kSize, 11u);
    for (const int span : {4, 8, 64, 512})
        for (const auto& [first, count] :
             {std::pair{0, kSize / 4}, std::pair{1, 6}, std::pair{3, 40}, std::pair{7, 1}})
        {
            SCOPED_TRACE(testing::Message() << "span " << span << ", pairs " << first << " + " << count);
            alignas(32) double re[2][kSize];
            alignas(32) double im[2][kSize];
            velmoran::dsp::TwiddlePair twiddles[2];
            for (int kernel = 0; kernel < 2; ++kernel)
            {
                for (int i = 0; i < kSize; ++i)
                {
                    re[kernel][i] = signal[static_cast<std::size_t>(i)].real();
                    im[kernel][i] = signal[static_cast<std::size_t>(i)].imag();
                }
                // Both kernels start from the same twiddles, whichever pair comes first.
                twiddles[kernel].setStep(velmoran::dsp::TwiddleStepForSpan(span));
                (kernel == 0 ? velmoran::dsp::RunButterflyPairsSse2 : velmoran::dsp::RunButterflyPairsAvx)(
                    re[kernel], im[kernel], span, first, count, twiddles[kernel]);
            }
            EXPECT_EQ(std::memcmp(re[0], re[1], sizeof(re[0])), 0);
            EXPECT_EQ(std::memcmp(im[0], im[1], sizeof(im[0])), 0);
            EXPECT_EQ(std::memcmp(&twiddles[0], &twiddles[1], sizeof(twiddles[0])), 0);
        }
}

} // namespace
