#pragma once

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

// One band of one channel as the design entry fills it in: the running biquad and, while a
// coefficient change is being hidden, the pending biquad with its own history.
struct BandFilter
{
    BiquadSection active;
    BiquadState activeState;
    BiquadSection pending;
    BiquadState pendingState;

    int fadeSamplesLeft = 0; // 0 = no cross-fade running
    bool running = false;
};

} // namespace velmoran::dsp
