#include "ReferenceEngine.h"

#include "dsp/CrossFadeShape.h"

#include <algorithm>
#include <cmath>

namespace velmoran::testing
{

using namespace velmoran::dsp;

namespace
{

constexpr double kPi = 3.14159265358979323846;
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

ReferenceAnalyser::ReferenceAnalyser()
    : mFillReal(16384), mFillImag(16384), mTransformReal(16384), mTransformImag(16384), mWindow(4096)
{
    setSampleRate(48000.0f);
}

void ReferenceAnalyser::setSampleRate(float sampleRateHz)
{
    const int multiple = static_cast<int>(sampleRateHz / 44100.0f + 0.5f);
    mLog2Size = multiple < 2 ? 12 : (multiple < 3 ? 13 : 14);
    const int size = 1 << mLog2Size;
    mFrameLength = size / 4;
    mStepBudget = static_cast<int>(static_cast<double>(size / 2 * mLog2Size) / size + 0.5);
    mAttack = std::min(1.0, mFrameLength / (0.1 * sampleRateHz));
    mRelease = std::min(1.0, mFrameLength / (0.5 * sampleRateHz));
    for (int i = 0; i < mFrameLength; ++i)
    {
        const double phase = 2.0 * kPi * i / (mFrameLength - 1);
        mWindow[i] = 0.35875 - 0.48829 * std::cos(phase) + 0.14128 * std::cos(2.0 * phase) -
                     0.01168 * std::cos(3.0 * phase);
    }
    reset();
}

void ReferenceAnalyser::reset()
{
    mMagnitudes.fill(0.0f);
    for (auto* buffer : {&mFillReal, &mFillImag, &mTransformReal, &mTransformImag})
        std::fill(buffer->begin(), buffer->end(), 0.0);
    mDone = true;
    mWritePosition = 0;
}

void ReferenceAnalyser::feed(float sample)
{
    const double value = std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
    if (mWritePosition == 0)
        finishFrame();
    unsigned reversed = 0;
    for (int bit = 0; bit < mLog2Size; ++bit)
        reversed |= ((static_cast<unsigned>(mWritePosition) >> bit) & 1u) << (mLog2Size - 1 - bit);
    mFillReal[reversed] = value * mWindow[mWritePosition];
    mFillImag[reversed] = 0.0;
    runSteps();
    for (const unsigned lowBits : {2u, 1u, 3u})
    {
        mFillReal[reversed | lowBits] = 0.0;
        mFillImag[reversed | lowBits] = 0.0;
        runSteps();
    }
    if (++mWritePosition == mFrameLength)
        mWritePosition = 0;
}

void ReferenceAnalyser::finishFrame()
{
    for (int bin = 0; bin < kBinCount; ++bin)
    {
        const double level =
            std::sqrt(mTransformReal[bin] * mTransformReal[bin] + mTransformImag[bin] * mTransformImag[bin]) *
            (1.0 / mFrameLength);
        const double smoothed = mMagnitudes[bin];
        const double difference = level - smoothed;
        double next = smoothed + (difference > 0.0 ? mAttack : mRelease) * difference;
        if (std::fabs(next) < 1e-32)
            next = 0.0;
        mMagnitudes[bin] = static_cast<float>(next);
    }
    mFillReal.swap(mTransformReal);
    mFillImag.swap(mTransformImag);
    mReal = mTransformReal.data();
    mImag = mTransformImag.data();
    mSize = 1 << mLog2Size;
    mSpan = 1;
    mGroup = 0;
    mPosition = 0;
    mTwiddleCos = 1.0;
    mTwiddleSin = 0.0;
    mStepCos = -1.0;
    mStepSin = 0.0;
    mDone = false;
}

void ReferenceAnalyser::runSteps()
{
    for (int i = 0; i < mStepBudget && !step(); ++i)
        continue;
}

bool ReferenceAnalyser::step()
{
    if (mDone)
        return true;
    const int first = mPosition;
    const int second = first + mSpan;
    const double rotatedReal = mTwiddleCos * mReal[second] - mTwiddleSin * mImag[second];
    const double rotatedImag = mTwiddleCos * mImag[second] + mTwiddleSin * mReal[second];
    mReal[second] = mReal[first] - rotatedReal;
    mImag[second] = mImag[first] - rotatedImag;
    mReal[first] += rotatedReal;
    mImag[first] += rotatedImag;
    mPosition += 2 * mSpan;
    if (mPosition >= mSize)
        advanceGroup();
    return mDone;
}

void ReferenceAnalyser::advanceGroup()
{
    if (++mGroup < mSpan)
    {
        const double previousCos = mTwiddleCos;
        mTwiddleCos = previousCos * mStepCos - mTwiddleSin * mStepSin;
        mTwiddleSin = previousCos * mStepSin + mTwiddleSin * mStepCos;
        mPosition = mGroup;
        return;
    }
    mSpan *= 2;
    if (mSpan >= mSize)
    {
        mDone = true;
        return;
    }
    mGroup = 0;
    mPosition = 0;
    mTwiddleCos = 1.0;
    mTwiddleSin = 0.0;
    const double previousStepCos = mStepCos;
    mStepCos = std::sqrt((1.0 + previousStepCos) * 0.5);
    mStepSin = -std::sqrt((1.0 - previousStepCos) * 0.5);
}

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

void ReferenceBandEngine::processFrame(float inL, float inR, float& outL, float& outR)
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
        if (mAnalyserOn)
            mAnalyser.feed(inputMean);
        return;
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
    if (mAnalyserOn)
        mAnalyser.feed(mEngine.analyserSourceOutput() ? (outL + outR) * 0.5f : inputMean);
}

void ReferenceBandEngine::reset()
{
    for (auto& filters : mFilters)
        for (BandFilter& filter : filters)
            InstallSection(filter, filter.pending);
    mAnalyser.reset();
}

} // namespace velmoran::testing
