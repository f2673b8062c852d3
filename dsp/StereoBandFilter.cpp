#include "StereoBandFilter.h"

#include <algorithm>

namespace velmoran::dsp
{

namespace
{

StereoBiquad Pack(const BiquadSection& first, const BiquadSection& second) noexcept
{
    return StereoBiquad{_mm_set_pd(second.b0, first.b0), _mm_set_pd(second.b1, first.b1),
                        _mm_set_pd(second.b2, first.b2), _mm_set_pd(second.negA1, first.negA1),
                        _mm_set_pd(second.negA2, first.negA2)};
}

// Results below 1e-32 in magnitude become +0, so a decaying tail never turns into denormals.
inline __m128d FlushTiny(__m128d value) noexcept
{
    const __m128d magnitude = _mm_andnot_pd(_mm_set1_pd(-0.0), value);
    return _mm_andnot_pd(_mm_cmplt_pd(magnitude, _mm_set1_pd(1e-32)), value);
}

// One direct-form-I step of both channels. The sum runs left to right as in
// b0*x + b1*x1 + b2*x2 - a1*y1 - a2*y2; a fused multiply-add would round differently, and the
// project is built so that none is formed.
inline __m128d Tick(const StereoBiquad& c, StereoBiquadState& s, __m128d x) noexcept
{
    __m128d y = _mm_add_pd(_mm_mul_pd(c.b0, x), _mm_mul_pd(c.b1, s.x1));
    y = _mm_add_pd(y, _mm_mul_pd(c.b2, s.x2));
    y = _mm_add_pd(y, _mm_mul_pd(c.negA1, s.y1));
    y = FlushTiny(_mm_add_pd(y, _mm_mul_pd(c.negA2, s.y2)));
    s.x2 = s.x1;
    s.x1 = x;
    s.y2 = s.y1;
    s.y1 = y;
    return y;
}

// Band k runs k frames behind band 0, each taking the frame that the band before it left in
// `signal` one step earlier, so that the bands' recursions, each waiting on its own previous
// output, overlap in the processor instead of following one another.
template <int Count>
void RunSkewed(StereoBandFilter* const* filters, __m128d* signal, int frameCount) noexcept
{
    StereoBiquad sections[Count];
    StereoBiquadState states[Count];
    for (int k = 0; k < Count; ++k)
    {
        sections[k] = filters[k]->active;
        states[k] = filters[k]->activeState;
    }
    // At each step every band takes its own frame; the bands join one after the other at the
    // start of the chunk and leave one after the other at its end.
    for (int step = 0; step < frameCount + Count - 1; ++step)
    {
        for (int k = 0; k < Count; ++k)
        {
            const int frame = step - k;
            if (frame >= 0 && frame < frameCount)
            {
                signal[frame] = Tick(sections[k], states[k], signal[frame]);
            }
        }
    }
    for (int k = 0; k < Count; ++k)
    {
        filters[k]->activeState = states[k];
    }
}

} // namespace

void InstallSections(StereoBandFilter& filter, const BiquadSection& first,
                     const BiquadSection& second) noexcept
{
    filter.pending = Pack(first, second);
    InstallPending(filter);
}

void InstallPending(StereoBandFilter& filter) noexcept
{
    filter.active = filter.pending;
    filter.activeState = StereoBiquadState{};
    filter.pendingState = StereoBiquadState{};
    filter.fadeSamplesLeft = 0;
}

void StartCrossFade(StereoBandFilter& filter, const BiquadSection& first,
                    const BiquadSection& second) noexcept
{
    filter.pending = Pack(first, second);
    filter.pendingState = filter.activeState;
    filter.fadeSamplesLeft = kCrossFadeSamples;
}

void RunBands(StereoBandFilter* const* filters, int count, __m128d* signal, int frameCount) noexcept
{
    // Groups of three or four keep the processor busy without running out of registers.
    while (count > 0)
    {
        const int group = count > 4 ? 3 : count;
        switch (group)
        {
        case 1:
            RunSkewed<1>(filters, signal, frameCount);
            break;
        case 2:
            RunSkewed<2>(filters, signal, frameCount);
            break;
        case 3:
            RunSkewed<3>(filters, signal, frameCount);
            break;
        default:
            RunSkewed<4>(filters, signal, frameCount);
            break;
        }
        filters += group;
        count -= group;
    }
}

void RunCrossFade(StereoBandFilter& filter, __m128d* signal, int frameCount, bool keepsRunning) noexcept
{
    const int fadeFrames = std::min(frameCount, filter.fadeSamplesLeft);
    const StereoBiquad oldSection = filter.active;
    const StereoBiquad newSection = filter.pending;
    StereoBiquadState oldState = filter.activeState;
    StereoBiquadState newState = filter.pendingState;
    const int samplesDone = kCrossFadeSamples - filter.fadeSamplesLeft;
    for (int i = 0; i < fadeFrames; ++i)
    {
        const __m128d oldOutput = Tick(oldSection, oldState, signal[i]);
        const __m128d newOutput = Tick(newSection, newState, signal[i]);
        const double newGain = kCrossFadeShares[static_cast<std::size_t>(samplesDone + i)];
        signal[i] = _mm_add_pd(_mm_mul_pd(_mm_set1_pd(1.0 - newGain), oldOutput),
                               _mm_mul_pd(_mm_set1_pd(newGain), newOutput));
    }
    filter.pendingState = newState;
    filter.fadeSamplesLeft -= fadeFrames;
    if (filter.fadeSamplesLeft > 0)
    {
        filter.activeState = oldState;
        return;
    }
    filter.active = newSection;
    filter.activeState = keepsRunning ? newState : StereoBiquadState{};
    if (keepsRunning)
    {
        StereoBandFilter* const running = &filter;
        RunBands(&running, 1, signal + fadeFrames, frameCount - fadeFrames);
    }
}

} // namespace velmoran::dsp
