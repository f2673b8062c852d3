#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <vector>

namespace velmoran::testing
{

constexpr double kPi = 3.14159265358979323846;

// A sine of the given frequency (Hz) and peak amplitude, starting at phase 0.
inline std::vector<float> MakeSine(double frequencyHz, double sampleRateHz, std::size_t length,
                                   double amplitude = 1.0)
{
    std::vector<float> signal(length);
    for (std::size_t i = 0; i < length; ++i)
        signal[i] = static_cast<float>(amplitude * std::sin(2.0 * kPi * frequencyHz * i / sampleRateHz));
    return signal;
}

// Largest absolute difference between neighbouring samples: a click shows up as a jump here.
inline double LargestStep(const std::vector<float>& signal)
{
    double largest = 0.0;
    for (std::size_t i = 1; i < signal.size(); ++i)
        largest = std::max(largest, std::fabs(static_cast<double>(signal[i]) - signal[i - 1]));
    return largest;
}

// Root mean square of signal[begin, end).
inline double Rms(const std::vector<float>& signal, std::size_t begin, std::size_t end)
{
    double sum = 0.0;
    for (std::size_t i = begin; i < end; ++i)
        sum += static_cast<double>(signal[i]) * signal[i];
    return std::sqrt(sum / static_cast<double>(end - begin));
}

// Level of the output relative to the input in dB, both measured over [begin, end).
inline double GainDb(const std::vector<float>& input, const std::vector<float>& output, std::size_t begin,
                     std::size_t end)
{
    return 20.0 * std::log10(Rms(output, begin, end) / Rms(input, begin, end));
}

// Direct evaluation of the discrete Fourier transform of `input` at bin `bin` of a `size`-point
// transform (input shorter than size counts as zero-padded), kernel exp(-j 2 pi k n / size).
inline std::complex<double> DirectDft(const std::vector<std::complex<double>>& input, std::size_t size,
                                      std::size_t bin)
{
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < input.size(); ++n)
    {
        const double angle = -2.0 * kPi * static_cast<double>((bin * n) % size) / static_cast<double>(size);
        sum += input[n] * std::complex<double>(std::cos(angle), std::sin(angle));
    }
    return sum;
}

} // namespace velmoran::testing
