#include "ReferenceEngine.h"

#include "dsp/CrossFadeShape.h"
#include "dsp/FilterDesign.h"

#include <algorithm>
#include <cmath>

namespace velmoran::testing
{

using namespace velmoran::dsp;

namespace
{

constexpr double kPi = 3.14159265358979323846;
constexpr int kFade = 512;

bool IsPassThrough(int type)
{
    return type == kTypeNone || type == kTypeNoFilter;
}

int ListenType(int type)
{
    if ((type >= kTypePeakHalfGain && type <= kTypePeakInverse) || type == kTypeBandPass)
        return kTypeBandPass;
    if (type == kTypeLowShelf || type == kTypeHighPass)
        return kTypeLowPass;
    if (type == kTypeHighShelf || type == kTypeLowPass)
        return kTypeHighPass;
    return type;
}

bool Glide(float& value, float target)
{
    if (value == target)
        return false;
    const float step = (target - value) * 0.1f;
    const float next = value + step;
    value = (std::fabs(step) < 0.001f || next == value) ? target : next;
    return true;
}

double DbToGain(float db)
{
    return std::pow(10.0, static_cast<double>(db) / 20.0);
}

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

void ReferenceBandEngine::setSampleRate(float sampleRateHz)
{
    if (!std::isfinite(sampleRateHz) || !(sampleRateHz > 0.0f))
        return;
    mSampleRate = sampleRateHz;
    for (int i = 0; i < kBandCount; ++i)
        designBand(i, false);
    mAnalyser.setSampleRate(sampleRateHz);
}

void ReferenceBandEngine::setBandFrequency(int band, float hz)
{
    if (IsValidBand(band) && std::isfinite(hz))
        bandAt(band).target.frequencyHz = std::clamp(hz, 20.0f, 20000.0f);
}

void ReferenceBandEngine::setBandGain(int band, float db)
{
    if (IsValidBand(band) && std::isfinite(db))
        bandAt(band).target.gainDb = std::clamp(db, -18.0f, 18.0f);
}

void ReferenceBandEngine::setBandQ(int band, float q)
{
    if (IsValidBand(band) && std::isfinite(q))
        bandAt(band).target.q = std::clamp(q, 0.3f, 5.0f);
}

void ReferenceBandEngine::setBandType(int band, int typeCode)
{
    if (IsValidBand(band) && typeCode >= 0 && typeCode <= 20)
        bandAt(band).target.type = typeCode;
}

void ReferenceBandEngine::setBandEnabled(int band, bool enabled)
{
    if (IsValidBand(band))
        bandAt(band).target.enabled = enabled;
}

void ReferenceBandEngine::setBandMode(int band, int mode)
{
    if (IsValidBand(band) && mode >= 0 && mode <= 2)
        bandAt(band).target.mode = mode;
}

void ReferenceBandEngine::setSoloBand(int band)
{
    if (band == 0 || IsValidBand(band))
        mSoloSet = band;
}

void ReferenceBandEngine::setInputGainDb(float db)
{
    if (std::isfinite(db))
        mInputGainTargetDb = std::clamp(db, -24.0f, 24.0f);
}

void ReferenceBandEngine::setOutputGainDb(float db)
{
    if (std::isfinite(db))
        mOutputGainTargetDb = std::clamp(db, -24.0f, 24.0f);
}

void ReferenceBandEngine::setPolarityInverted(bool inverted)
{
    mPolaritySet = inverted;
}

void ReferenceBandEngine::setEffectOn(bool on)
{
    mEffectSet = on;
}

void ReferenceBandEngine::setAnalyserOn(bool on)
{
    mAnalyserSet = on;
}

void ReferenceBandEngine::setAnalyserSourceOutput(bool output)
{
    mAnalyserSourceSet = output;
}

void ReferenceBandEngine::updateBlock(int frameCount)
{
    if (frameCount < 1)
        return;
    updateGain(mOutputGainDb, mOutputGainTargetDb, mOutputGainRamps, frameCount);
    updateGain(mInputGainDb, mInputGainTargetDb, mInputGainRamps, frameCount);
    updateBandSwitches();
    updateSolo();
    glideBands();
    updateEffectSwitch();
    if (mAnalyserSet != mAnalyserOn)
    {
        mAnalyserOn = mAnalyserSet;
        if (mAnalyserOn)
            mAnalyser.reset();
    }
    mAnalyserSourceOutput = mAnalyserSourceSet;
    updatePolarity();
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
    for (Band& band : mBands)
    {
        const bool filtering = band.current.enabled && !IsPassThrough(band.current.type);
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            if (filtering || band.filters[channel].fadeSamplesLeft > 0)
                wet[channel] = ProcessBandFilter(band.filters[channel], wet[channel], filtering);
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
        mAnalyser.feed(mAnalyserSourceOutput ? (outL + outR) * 0.5f : inputMean);
}

void ReferenceBandEngine::reset()
{
    for (Band& band : mBands)
        for (BandFilter& filter : band.filters)
            InstallSection(filter, filter.pending);
    for (auto* ramps : {&mInputGainRamps, &mOutputGainRamps, &mPolarityRamps})
        for (GainRamp& ramp : *ramps)
            StartGainRamp(ramp, ramp.target, 0);
    for (SwitchRamp& ramp : mSwitchRamps)
    {
        ramp.current = ramp.target;
        ramp.done = true;
    }
    mAnalyser.reset();
}

BiquadSection ReferenceBandEngine::designChannel(int bandIndex, int channel) const
{
    const BandSettings& settings = mBands[static_cast<std::size_t>(bandIndex)].current;
    const bool soloed = mSoloApplied == bandIndex + 1;
    if (!settings.enabled || IsPassThrough(settings.type) || (mSoloApplied != 0 && !soloed))
        return BiquadSection{};
    const bool channelInBand = settings.mode == 0 || settings.mode == channel + 1;
    int typeCode = settings.type;
    float gainDb = settings.gainDb;
    if (soloed)
    {
        typeCode = channelInBand ? ListenType(settings.type) : kTypeSilence;
        gainDb = 1.0f;
    }
    else if (!channelInBand)
    {
        return BiquadSection{};
    }
    BandFilter scratch;
    DesignBandFilter(scratch, settings.frequencyHz, gainDb, settings.q, mSampleRate, typeCode);
    return scratch.active;
}

void ReferenceBandEngine::designBand(int bandIndex, bool crossFade)
{
    for (int channel = 0; channel < 2; ++channel)
    {
        BandFilter& filter =
            mBands[static_cast<std::size_t>(bandIndex)].filters[static_cast<std::size_t>(channel)];
        const BiquadSection section = designChannel(bandIndex, channel);
        if (crossFade)
            StartCrossFade(filter, section);
        else
            InstallSection(filter, section);
    }
}

bool ReferenceBandEngine::isBandFading(const Band& band) const
{
    return band.filters[0].fadeSamplesLeft > 0 || band.filters[1].fadeSamplesLeft > 0;
}

bool ReferenceBandEngine::isAnyBandFading() const
{
    return std::any_of(mBands.begin(), mBands.end(), [this](const Band& band) { return isBandFading(band); });
}

void ReferenceBandEngine::updateGain(float& currentDb, float targetDb, std::array<GainRamp, 2>& ramps,
                                     int frameCount)
{
    if (!Glide(currentDb, targetDb))
        return;
    for (GainRamp& ramp : ramps)
        StartGainRamp(ramp, DbToGain(currentDb), frameCount);
}

void ReferenceBandEngine::updateBandSwitches()
{
    if (mSoloSet != mSoloApplied)
        return;
    for (int i = 0; i < kBandCount; ++i)
    {
        Band& band = mBands[static_cast<std::size_t>(i)];
        const bool changed = band.current.type != band.target.type ||
                             band.current.enabled != band.target.enabled ||
                             band.current.mode != band.target.mode;
        if (changed && !isBandFading(band))
        {
            band.current.type = band.target.type;
            band.current.enabled = band.target.enabled;
            band.current.mode = band.target.mode;
            designBand(i, true);
        }
    }
}

void ReferenceBandEngine::updateSolo()
{
    if (mSoloSet == mSoloApplied || isAnyBandFading())
        return;
    mSoloApplied = mSoloSet;
    for (int i = 0; i < kBandCount; ++i)
    {
        mBands[static_cast<std::size_t>(i)].current = mBands[static_cast<std::size_t>(i)].target;
        designBand(i, true);
    }
}

void ReferenceBandEngine::glideBands()
{
    if (mSoloSet != mSoloApplied)
        return;
    for (int i = 0; i < kBandCount; ++i)
    {
        Band& band = mBands[static_cast<std::size_t>(i)];
        const bool heldBySolo = mSoloApplied != 0 && mSoloApplied != i + 1;
        if (!band.current.enabled || heldBySolo || isBandFading(band))
            continue;
        if (IsPassThrough(band.current.type))
        {
            band.current.frequencyHz = band.target.frequencyHz;
            band.current.gainDb = band.target.gainDb;
            band.current.q = band.target.q;
            continue;
        }
        const bool frequencyMoved = Glide(band.current.frequencyHz, band.target.frequencyHz);
        const bool gainMoved = Glide(band.current.gainDb, band.target.gainDb);
        const bool qMoved = Glide(band.current.q, band.target.q);
        if (frequencyMoved || gainMoved || qMoved)
            designBand(i, true);
    }
}

void ReferenceBandEngine::updateEffectSwitch()
{
    if (mEffectSet == mEffectApplied)
        return;
    if (mEffectSet && IsSettledOff(mSwitchRamps[0]) && IsSettledOff(mSwitchRamps[1]))
        takeOverAllSettings();
    mEffectApplied = mEffectSet;
    for (SwitchRamp& ramp : mSwitchRamps)
        StartSwitchRamp(ramp, mEffectSet, 50.0, 50.0, mSampleRate);
}

void ReferenceBandEngine::updatePolarity()
{
    if (!mEffectApplied || mPolaritySet == mPolarityApplied)
        return;
    mPolarityApplied = mPolaritySet;
    for (GainRamp& ramp : mPolarityRamps)
        StartGainRamp(ramp, mPolarityApplied ? -1.0 : 1.0, static_cast<int>(mSampleRate * 0.02));
}

void ReferenceBandEngine::takeOverAllSettings()
{
    mSoloApplied = mSoloSet;
    for (int i = 0; i < kBandCount; ++i)
    {
        mBands[static_cast<std::size_t>(i)].current = mBands[static_cast<std::size_t>(i)].target;
        designBand(i, false);
    }
    mInputGainDb = mInputGainTargetDb;
    mOutputGainDb = mOutputGainTargetDb;
    for (GainRamp& ramp : mInputGainRamps)
        StartGainRamp(ramp, DbToGain(mInputGainDb), 0);
    for (GainRamp& ramp : mOutputGainRamps)
        StartGainRamp(ramp, DbToGain(mOutputGainDb), 0);
}

} // namespace velmoran::testing
