#pragma once

#include <cmath>

namespace velmoran::dsp
{

// One biquad's coefficients as the band engine runs them: numerator b0..b2 and the denominator
// terms already negated (a0 is 1), so the recursion is a plain sum of five products.
struct BiquadSection
{
    double b0 = 1.0;
    double b1 = 0.0;
    double b2 = 0.0;
    double negA1 = 0.0;
    double negA2 = 0.0;
};

// Direct-form-I history: the last two inputs and the last two outputs.
struct BiquadState
{
    double x1 = 0.0;
    double x2 = 0.0;
    double y1 = 0.0;
    double y2 = 0.0;
};

// One band of one channel: the running biquad and, while a coefficient change is being hidden,
// the pending biquad with its own history, faded in over the cross-fade.
struct BandFilter
{
    BiquadSection active;
    BiquadState activeState;
    BiquadSection pending;
    BiquadState pendingState;

    int fadeSamplesLeft = 0; // 0 = no cross-fade running
    double oldGain = 1.0;
    double newGain = 0.0;
    double oldGainStep = 0.0;
    double newGainStep = 0.0;
    bool running = false;
};

// Length of the cross-fade that hides every coefficient change, in samples.
constexpr int kCrossFadeSamples = 512;

// True while the record is fading from its active to its pending biquad.
inline bool IsCrossFading(const BandFilter& filter) noexcept
{
    return filter.fadeSamplesLeft > 0;
}

// Puts `next` in as the pending biquad with an empty history and starts the cross-fade to it.
inline void StartCrossFade(BandFilter& filter, const BiquadSection& next) noexcept
{
    filter.pending = next;
    filter.pendingState = BiquadState{};
    filter.fadeSamplesLeft = kCrossFadeSamples;
    filter.oldGain = 1.0;
    filter.newGain = 0.0;
    filter.oldGainStep = -1.0 / kCrossFadeSamples;
    filter.newGainStep = 1.0 / kCrossFadeSamples;
    filter.running = true;
}

// Makes `section` the active biquad at once, with empty histories and no fade.
inline void InstallSection(BandFilter& filter, const BiquadSection& section) noexcept
{
    filter.active = section;
    filter.pending = section;
    filter.activeState = BiquadState{};
    filter.pendingState = BiquadState{};
    filter.fadeSamplesLeft = 0;
    filter.oldGain = 1.0;
    filter.newGain = 0.0;
    filter.running = false;
}

// One direct-form-I step; results below 1e-32 are flushed so a decaying tail never turns into
// denormals.
inline double RunBiquad(const BiquadSection& section, BiquadState& state, double input) noexcept
{
    double output = section.b0 * input + section.b1 * state.x1 + section.b2 * state.x2 +
                    section.negA1 * state.y1 + section.negA2 * state.y2;
    if (std::fabs(output) < 1e-32)
    {
        output = 0.0;
    }
    state.x2 = state.x1;
    state.x1 = input;
    state.y2 = state.y1;
    state.y1 = output;
    return output;
}

// Filters one sample (audio thread). During a cross-fade both biquads run on the same input and
// their outputs are mixed with linear gains; at the end the pending biquad and its history
// become the active ones.
inline double ProcessBandFilter(BandFilter& filter, double input) noexcept
{
    const double output = RunBiquad(filter.active, filter.activeState, input);
    if (filter.fadeSamplesLeft <= 0)
    {
        return output;
    }
    const double pendingOutput = RunBiquad(filter.pending, filter.pendingState, input);
    const double mixed = filter.oldGain * output + filter.newGain * pendingOutput;
    filter.oldGain += filter.oldGainStep;
    filter.newGain += filter.newGainStep;
    if (--filter.fadeSamplesLeft == 0)
    {
        filter.active = filter.pending;
        filter.activeState = filter.pendingState;
        filter.running = false;
    }
    return mixed;
}

} // namespace velmoran::dsp
