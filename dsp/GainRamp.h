#pragma once

namespace velmoran::dsp
{

// A linear gain that moves to a target over a given number of samples and then holds it exactly.
struct GainRamp
{
    double current = 1.0;
    double target = 1.0;
    double increment = 0.0;
    int samplesLeft = 0;
};

// Starts a straight line from the present gain to `target` over `length` samples (at once if
// length < 1).
inline void StartGainRamp(GainRamp& ramp, double target, int length) noexcept
{
    ramp.target = target;
    if (length < 1)
    {
        ramp.current = target;
        ramp.increment = 0.0;
        ramp.samplesLeft = 0;
        return;
    }
    ramp.increment = (target - ramp.current) / length;
    ramp.samplesLeft = length;
}

// The gain for this sample (linear); moves the ramp on by one sample, landing exactly on the target.
inline double NextGain(GainRamp& ramp) noexcept
{
    const double gain = ramp.current;
    if (ramp.samplesLeft > 0)
    {
        --ramp.samplesLeft;
        ramp.current = ramp.samplesLeft == 0 ? ramp.target : ramp.current + ramp.increment;
    }
    return gain;
}

} // namespace velmoran::dsp
