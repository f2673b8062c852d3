#include "ReferenceEngine.h"

#include "dsp/CrossFadeShape.h"

#include <cmath>

namespace velmoran::testing
{

using namespace velmoran::dsp;

namespace
{

constexpr int kFade = 512;

double CleanInput(float sample)
{
    return !std::isfinite(sample) || std::fabs(sample) < 1e-32 ? 0.0 : sample;
}

void InstallSection(BandFilter& filter, BiquadSection section)
{
    filter = BandFilter{};
    filter.active = section;
    filter.pending = section;
}

// The new filter starts from the running one's history.
void StartCrossFade(BandFilter& filter, const BiquadSection& next)
{
    filter.pending = next;
    filter.pendingState = filter.activeState;
    filter.fadeSamplesLeft = kFade;
}

double RunBiquad(const BiquadSection& c, BiquadState& s, double x)
{
    double y = c.b0 * x + c.b1 * s.x1 + c.b2 * s.x2 + c.negA1 * s.y1 + c.negA2 * s.y2;
    if (std::fabs(y) < 1e-32)
        y = 0.0;
    s = BiquadState{x, s.x1, y, s.y1};
    return y;
}

// A filter that is not run once its fade ends (a band faded out) forgets its history.
double ProcessBandFilter(BandFilter& f, double x, bool keepsRunning)
{
    const double y = RunBiquad(f.active, f.activeState, x);
    if (f.fadeSamplesLeft <= 0)
        return y;
    const double newGain = kCrossFadeShares[static_cast<std::size_t>(kFade - f.fadeSamplesLeft)];
    const double mixed = (1.0 - newGain) * y + newGain * RunBiquad(f.pending, f.pendingState, x);
    if (--f.fadeSamplesLeft == 0)
    {
        f.active = f.pending;
        f.activeState = keepsRunning ? f.pendingState : BiquadState{};
    }
    return mixed;
}

} // namespace

ReferenceBandEngine::ReferenceBandEngine(BandEngine& engine) : mEngine(engine)
{
    engine.setDesignHook(designed, this);
}

void ReferenceBandEngine::designed(void* context, int band, const BiquadSection& first,
                                   const BiquadSection& second, bool crossFade)
{
    auto& filters = static_cast<ReferenceBandEngine*>(context)->mFilters[static_cast<std::size_t>(band - 1)];
    for (auto [filter, section] : {std::pair{&filters[0], first}, std::pair{&filters[1], second}})
    {
        if (crossFade)
            StartCrossFade(*filter, section);
        else
            InstallSection(*filter, section);
    }
}

void ReferenceBandEngine::updateBlock()
{
    mInputGainRamps = mEngine.inputGainRamps();
    mOutputGainRamps = mEngine.outputGainRamps();
    mPolarityRamps = mEngine.polarityRamps();
    mSwitchRamps = mEngine.switchRamps();
    if (mEngine.analyserOn() && !mAnalyserOn)
        mAnalyser.reset();
    mAnalyserOn = mEngine.analyserOn();
}

void ReferenceBandEngine::processChunk(const float* inL, const float* inR, float* outL, float* outR,
                                       int frameCount)
{
    std::array<float, BandEngine::kMaxChunkLength> mono{};
    for (int i = 0; i < frameCount; ++i)
        mono[static_cast<std::size_t>(i)] = processFrame(inL[i], inR[i], outL[i], outR[i]);
    if (mAnalyserOn)
        mAnalyser.feed(mono.data(), frameCount);
}

float ReferenceBandEngine::processFrame(float inL, float inR, float& outL, float& outR)
{
    std::array<double, 2> input{CleanInput(inL), CleanInput(inR)};
    for (SwitchRamp& ramp : mSwitchRamps)
        AdvanceSwitchRamp(ramp);
    for (std::size_t channel = 0; channel < 2; ++channel)
        input[channel] *= NextGain(mPolarityRamps[channel]);
    const float inputMean = static_cast<float>((input[0] + input[1]) * 0.5);
    if (IsSettledOff(mSwitchRamps[0]) && IsSettledOff(mSwitchRamps[1]))
    {
        outL = static_cast<float>(input[0]);
        outR = static_cast<float>(input[1]);
        return inputMean;
    }
    std::array<double, 2> wet{};
    for (std::size_t channel = 0; channel < 2; ++channel)
        wet[channel] = input[channel] * NextGain(mInputGainRamps[channel]);
    for (int band = 1; band <= kBandCount; ++band)
    {
        auto& filters = mFilters[static_cast<std::size_t>(band - 1)];
        const bool filtering = mEngine.bandFilters(band);
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            if (filtering || filters[channel].fadeSamplesLeft > 0)
                wet[channel] = ProcessBandFilter(filters[channel], wet[channel], filtering);
        }
    }
    std::array<double, 2> output{};
    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        const double mix = mSwitchRamps[channel].current;
        output[channel] =
            wet[channel] * NextGain(mOutputGainRamps[channel]) * mix + (1.0 - mix) * input[channel];
    }
    outL = static_cast<float>(output[0]);
    outR = static_cast<float>(output[1]);
    return mEngine.analyserSourceOutput() ? (outL + outR) * 0.5f : inputMean;
}

void ReferenceBandEngine::reset()
{
    for (auto& filters : mFilters)
        for (BandFilter& filter : filters)
            InstallSection(filter, filter.pending);
    mAnalyser.reset();
}

} // namespace velmoran::testing
