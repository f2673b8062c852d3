#pragma once

#include <array>
#include <cstddef>

namespace velmoran::dsp
{

// Length of the cross-fade that hides every coefficient change, in samples.
constexpr int kCrossFadeSamples = 512;

// Share of the new filter in a cross-fade's output after `samplesDone` (0 .. kCrossFadeSamples) of
// its samples; the old filter has the rest. The share leaves 0 and reaches 1 with its first four
// derivatives at zero (the polynomial of lowest degree that does so), so a tone's level and phase
// bend from the old filter's to the new one's without a corner that would spread energy far from
// the tone, and the new filter is hardly heard while it settles from the history it took over.
constexpr double CrossFadeShare(int samplesDone) noexcept
{
    const double t = samplesDone * (1.0 / kCrossFadeSamples);
    return t * t * t * t * t * (126.0 + t * (-420.0 + t * (540.0 + t * (-315.0 + 70.0 * t))));
}

// The share of every sample of a fade, worked out when compiling, so a fade costs a look-up.
constexpr std::array<double, kCrossFadeSamples> MakeCrossFadeShares() noexcept
{
    std::array<double, kCrossFadeSamples> shares{};
    for (int i = 0; i < kCrossFadeSamples; ++i)
    {
        shares[static_cast<std::size_t>(i)] = CrossFadeShare(i);
    }
    return shares;
}

inline constexpr std::array<double, kCrossFadeSamples> kCrossFadeShares = MakeCrossFadeShares();

} // namespace velmoran::dsp
