#pragma once

#include <algorithm>
#include <cmath>

namespace velmoran::dsp
{

// The effect in/out mix (0 = dry only, 1 = processed only): a one-pole glide towards 0 or 1 that
// snaps once within 0.05 of it.
struct SwitchRamp
{
    double riseRate = 0.0;
    double fallRate = 0.0;
    double current = 0.0;
    double target = 0.0;
    bool done = true;
};

// Per-sample coefficient for a glide of about `milliseconds` at `sampleRateHz` (three time
// constants in that time). At rates so low that the glide would take less than three samples it
// reaches its target in one step instead of overshooting.
inline double SwitchRate(double milliseconds, double sampleRateHz) noexcept
{
    return std::min(1.0, 3.0 / (std::max(milliseconds, 0.001) / 1000.0 * sampleRateHz));
}

// Sends the ramp towards 1 (on) or 0 (off) with the given rise and fall times.
inline void StartSwitchRamp(SwitchRamp& ramp, bool on, double riseMs, double fallMs,
                            double sampleRateHz) noexcept
{
    ramp.riseRate = SwitchRate(riseMs, sampleRateHz);
    ramp.fallRate = SwitchRate(fallMs, sampleRateHz);
    ramp.target = on ? 1.0 : 0.0;
    ramp.done = false;
}

// Moves the ramp on by one sample (audio thread).
inline void AdvanceSwitchRamp(SwitchRamp& ramp) noexcept
{
    if (ramp.done)
    {
        return;
    }
    if (ramp.target > 0.5)
    {
        ramp.current += ramp.riseRate * (1.0 - ramp.current);
    }
    else
    {
        ramp.current -= ramp.fallRate * ramp.current;
    }
    if (std::fabs(ramp.current - ramp.target) < 0.05)
    {
        ramp.current = ramp.target;
        ramp.done = true;
    }
}

// True once the ramp has settled with the effect fully out.
inline bool IsSettledOff(const SwitchRamp& ramp) noexcept
{
    return ramp.done && ramp.current < 0.5;
}

} // namespace velmoran::dsp
