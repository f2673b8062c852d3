#include "BandEngine.h"

#include "FilterDesign.h"

#include <algorithm>
#include <cmath>

namespace velmoran::dsp
{

namespace
{

constexpr int kLargestTypeCode = 20;
constexpr int kLastChannelMode = 2;

constexpr float kMinFrequencyHz = 20.0f;
constexpr float kMaxFrequencyHz = 20000.0f;
constexpr float kMaxBandGainDb = 18.0f;
constexpr float kMinQ = 0.3f;
constexpr float kMaxQ = 5.0f;
constexpr float kMaxTrimGainDb = 24.0f;

constexpr double kSwitchFadeMs = 50.0;
constexpr double kPolarityRampSeconds = 0.02;
constexpr double kInputFlushLevel = 1e-32;

// Codes whose design does nothing, so the band costs nothing while it is not fading.
bool IsPassThrough(int typeCode) noexcept
{
    return typeCode == kTypeNone || typeCode == kTypeNoFilter;
}

// What the soloed band plays instead of its own shape: the part of the signal the band acts on.
int ListenType(int typeCode) noexcept
{
    switch (typeCode)
    {
    case kTypePeakHalfGain:
    case kTypePeakMinus3Db:
    case kTypePeakPlus3Db:
    case kTypePeakAsymmetric:
    case kTypePeakInverse:
    case kTypeBandPass:
        return kTypeBandPass;
    case kTypeLowShelf:
    case kTypeHighPass:
        return kTypeLowPass;
    case kTypeHighShelf:
    case kTypeLowPass:
        return kTypeHighPass;
    default:
        return typeCode;
    }
}

// A tenth of the way to the target, snapping once the step would be below 0.001 (or too small to
// change a float at all); true when the value moved.
bool Glide(float& value, float target) noexcept
{
    if (value == target)
    {
        return false;
    }
    const float step = (target - value) * 0.1f;
    const float next = value + step;
    value = (std::fabs(step) < 0.001f || next == value) ? target : next;
    return true;
}

double DbToGain(float db) noexcept
{
    return std::pow(10.0, static_cast<double>(db) / 20.0);
}

// Input samples the filters must never see: non-finite values, and tiny ones that would turn
// into denormals in the filter state.
double CleanInput(float sample) noexcept
{
    if (!std::isfinite(sample) || std::fabs(sample) < kInputFlushLevel)
    {
        return 0.0;
    }
    return sample;
}

} // namespace

BandEngine::BandEngine() = default;

void BandEngine::setSampleRate(float sampleRateHz)
{
    if (!std::isfinite(sampleRateHz) || !(sampleRateHz > 0.0f))
    {
        return;
    }
    mSampleRate = sampleRateHz;
    for (int i = 0; i < kBandCount; ++i)
    {
        designBand(i, DesignMode::Direct);
    }
    mAnalyser.setSampleRate(sampleRateHz);
}

void BandEngine::setBandFrequency(int band, float hz)
{
    if (IsValidBand(band) && std::isfinite(hz))
    {
        bandAt(band).target.frequencyHz = std::clamp(hz, kMinFrequencyHz, kMaxFrequencyHz);
    }
}

void BandEngine::setBandGain(int band, float db)
{
    if (IsValidBand(band) && std::isfinite(db))
    {
        bandAt(band).target.gainDb = std::clamp(db, -kMaxBandGainDb, kMaxBandGainDb);
    }
}

void BandEngine::setBandQ(int band, float q)
{
    if (IsValidBand(band) && std::isfinite(q))
    {
        bandAt(band).target.q = std::clamp(q, kMinQ, kMaxQ);
    }
}

void BandEngine::setBandType(int band, int typeCode)
{
    if (IsValidBand(band) && typeCode >= 0 && typeCode <= kLargestTypeCode)
    {
        bandAt(band).target.type = typeCode;
    }
}

void BandEngine::setBandEnabled(int band, bool enabled)
{
    if (IsValidBand(band))
    {
        bandAt(band).target.enabled = enabled;
    }
}

void BandEngine::setBandMode(int band, int mode)
{
    if (IsValidBand(band) && mode >= 0 && mode <= kLastChannelMode)
    {
        bandAt(band).target.mode = mode;
    }
}

void BandEngine::setSoloBand(int band)
{
    if (band == 0 || IsValidBand(band))
    {
        mSoloSet = band;
    }
}

void BandEngine::setInputGainDb(float db)
{
    if (std::isfinite(db))
    {
        mInputGainTargetDb = std::clamp(db, -kMaxTrimGainDb, kMaxTrimGainDb);
    }
}

void BandEngine::setOutputGainDb(float db)
{
    if (std::isfinite(db))
    {
        mOutputGainTargetDb = std::clamp(db, -kMaxTrimGainDb, kMaxTrimGainDb);
    }
}

void BandEngine::setPolarityInverted(bool inverted)
{
    mPolaritySet = inverted;
}

void BandEngine::setEffectOn(bool on)
{
    mEffectSet = on;
}

void BandEngine::setAnalyserOn(bool on)
{
    mAnalyserSet = on;
}

void BandEngine::setAnalyserSourceOutput(bool output)
{
    mAnalyserSourceSet = output;
}

void BandEngine::updateBlock(int frameCount) noexcept
{
    if (frameCount < 1)
    {
        return;
    }
    updateGain(mOutputGainDb, mOutputGainTargetDb, mOutputGainRamps, frameCount);
    updateGain(mInputGainDb, mInputGainTargetDb, mInputGainRamps, frameCount);
    updateBandSwitches();
    updateSolo();
    glideBands();
    updateEffectSwitch();
    updateAnalyser();
    updatePolarity();
}

void BandEngine::processFrame(float inL, float inR, float& outL, float& outR) noexcept
{
    std::array<double, 2> input{CleanInput(inL), CleanInput(inR)};
    for (SwitchRamp& ramp : mSwitchRamps)
    {
        AdvanceSwitchRamp(ramp);
    }
    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        input[channel] *= NextGain(mPolarityRamps[channel]);
    }
    const float inputMean = static_cast<float>((input[0] + input[1]) * 0.5);

    if (IsSettledOff(mSwitchRamps[0]) && IsSettledOff(mSwitchRamps[1]))
    {
        outL = static_cast<float>(input[0]);
        outR = static_cast<float>(input[1]);
        feedAnalyser(inputMean, inputMean);
        return;
    }

    std::array<double, 2> wet{};
    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        wet[channel] = input[channel] * NextGain(mInputGainRamps[channel]);
    }
    for (Band& band : mBands)
    {
        const bool filtering = band.current.enabled && !IsPassThrough(band.current.type);
        for (std::size_t channel = 0; channel < 2; ++channel)
        {
            BandFilter& filter = band.filters[channel];
            if (filtering || IsCrossFading(filter))
            {
                wet[channel] = ProcessBandFilter(filter, wet[channel]);
            }
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
    feedAnalyser(inputMean, (outL + outR) * 0.5f);
}

void BandEngine::reset() noexcept
{
    for (Band& band : mBands)
    {
        for (BandFilter& filter : band.filters)
        {
            // The pending biquad is always the latest design, so a cut-short fade lands on it.
            InstallSection(filter, filter.pending);
        }
    }
    for (auto* ramps : {&mInputGainRamps, &mOutputGainRamps, &mPolarityRamps})
    {
        for (GainRamp& ramp : *ramps)
        {
            StartGainRamp(ramp, ramp.target, 0);
        }
    }
    for (SwitchRamp& ramp : mSwitchRamps)
    {
        ramp.current = ramp.target;
        ramp.done = true;
    }
    mAnalyser.reset();
}

BiquadSection BandEngine::designChannel(int bandIndex, int channel) const noexcept
{
    const BandSettings& settings = mBands[static_cast<std::size_t>(bandIndex)].current;
    const bool soloed = mSoloApplied == bandIndex + 1;
    // While another band is soloed this one stays out of the way, so only the listened band is heard.
    if (!settings.enabled || IsPassThrough(settings.type) || (mSoloApplied != 0 && !soloed))
    {
        return BiquadSection{};
    }
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

void BandEngine::designBand(int bandIndex, DesignMode mode) noexcept
{
    Band& band = mBands[static_cast<std::size_t>(bandIndex)];
    for (int channel = 0; channel < 2; ++channel)
    {
        BandFilter& filter = band.filters[static_cast<std::size_t>(channel)];
        const BiquadSection section = designChannel(bandIndex, channel);
        if (mode == DesignMode::Direct)
        {
            InstallSection(filter, section);
        }
        else
        {
            StartCrossFade(filter, section);
        }
    }
}

bool BandEngine::isBandFading(const Band& band) const noexcept
{
    return IsCrossFading(band.filters[0]) || IsCrossFading(band.filters[1]);
}

bool BandEngine::isAnyBandFading() const noexcept
{
    return std::any_of(mBands.begin(), mBands.end(), [this](const Band& band) { return isBandFading(band); });
}

void BandEngine::updateGain(float& currentDb, float targetDb, std::array<GainRamp, 2>& ramps,
                            int frameCount) noexcept
{
    if (!Glide(currentDb, targetDb))
    {
        return;
    }
    const double gain = DbToGain(currentDb);
    for (GainRamp& ramp : ramps)
    {
        StartGainRamp(ramp, gain, frameCount);
    }
}

// Type, enable and channel-mode changes. A band still fading waits until its fade is over, so two
// fades never overlap; a solo waiting for its turn holds them back too.
void BandEngine::updateBandSwitches() noexcept
{
    if (mSoloSet != mSoloApplied)
    {
        return;
    }
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
            designBand(i, DesignMode::CrossFade);
        }
    }
}

// A new solo band redesigns all twenty filters at once, so it waits until no band is fading.
void BandEngine::updateSolo() noexcept
{
    if (mSoloSet == mSoloApplied || isAnyBandFading())
    {
        return;
    }
    mSoloApplied = mSoloSet;
    for (int i = 0; i < kBandCount; ++i)
    {
        Band& band = mBands[static_cast<std::size_t>(i)];
        band.current = band.target;
        designBand(i, DesignMode::CrossFade);
    }
}

// While a band is soloed only that band glides; the others are held at unity and take their
// settings over when the solo ends.
void BandEngine::glideBands() noexcept
{
    if (mSoloSet != mSoloApplied)
    {
        return;
    }
    for (int i = 0; i < kBandCount; ++i)
    {
        Band& band = mBands[static_cast<std::size_t>(i)];
        const bool heldBySolo = mSoloApplied != 0 && mSoloApplied != i + 1;
        if (!band.current.enabled || heldBySolo || isBandFading(band))
        {
            continue;
        }
        if (IsPassThrough(band.current.type))
        {
            // Nothing to hear, so nothing to glide.
            band.current.frequencyHz = band.target.frequencyHz;
            band.current.gainDb = band.target.gainDb;
            band.current.q = band.target.q;
            continue;
        }
        const bool frequencyMoved = Glide(band.current.frequencyHz, band.target.frequencyHz);
        const bool gainMoved = Glide(band.current.gainDb, band.target.gainDb);
        const bool qMoved = Glide(band.current.q, band.target.q);
        if (frequencyMoved || gainMoved || qMoved)
        {
            designBand(i, DesignMode::CrossFade);
        }
    }
}

void BandEngine::updateEffectSwitch() noexcept
{
    if (mEffectSet == mEffectApplied)
    {
        return;
    }
    // Coming in from fully out: whatever was set meanwhile is taken at once, so the effect fades
    // in with up-to-date filters instead of gliding from stale ones.
    if (mEffectSet && IsSettledOff(mSwitchRamps[0]) && IsSettledOff(mSwitchRamps[1]))
    {
        takeOverAllSettings();
    }
    mEffectApplied = mEffectSet;
    for (SwitchRamp& ramp : mSwitchRamps)
    {
        StartSwitchRamp(ramp, mEffectSet, kSwitchFadeMs, kSwitchFadeMs, mSampleRate);
    }
}

void BandEngine::updateAnalyser() noexcept
{
    if (mAnalyserSet != mAnalyserOn)
    {
        mAnalyserOn = mAnalyserSet;
        if (mAnalyserOn)
        {
            mAnalyser.reset();
        }
    }
    mAnalyserSourceOutput = mAnalyserSourceSet;
}

// The polarity only turns while the effect is in; a change made while it is out waits for it.
void BandEngine::updatePolarity() noexcept
{
    if (!mEffectApplied || mPolaritySet == mPolarityApplied)
    {
        return;
    }
    mPolarityApplied = mPolaritySet;
    const int length = static_cast<int>(mSampleRate * kPolarityRampSeconds);
    for (GainRamp& ramp : mPolarityRamps)
    {
        StartGainRamp(ramp, mPolarityApplied ? -1.0 : 1.0, length);
    }
}

void BandEngine::takeOverAllSettings() noexcept
{
    mSoloApplied = mSoloSet;
    for (int i = 0; i < kBandCount; ++i)
    {
        Band& band = mBands[static_cast<std::size_t>(i)];
        band.current = band.target;
        designBand(i, DesignMode::Direct);
    }
    mInputGainDb = mInputGainTargetDb;
    mOutputGainDb = mOutputGainTargetDb;
    for (GainRamp& ramp : mInputGainRamps)
    {
        StartGainRamp(ramp, DbToGain(mInputGainDb), 0);
    }
    for (GainRamp& ramp : mOutputGainRamps)
    {
        StartGainRamp(ramp, DbToGain(mOutputGainDb), 0);
    }
}

void BandEngine::feedAnalyser(float inputMean, float outputMean) noexcept
{
    if (mAnalyserOn)
    {
        mAnalyser.feed(mAnalyserSourceOutput ? outputMean : inputMean);
    }
}

} // namespace velmoran::dsp
