#include "BandEngine.h"

#include "FilterDesign.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

// Both channels of an input frame in double precision, with the samples the filters must never
// see taken as 0: non-finite values, and tiny ones that would turn into denormals in the filter
// state.
__m128d CleanInputs(float left, float right) noexcept
{
    const __m128d input = _mm_cvtps_pd(_mm_set_ps(0.0f, 0.0f, right, left));
    const __m128d magnitude = _mm_andnot_pd(_mm_set1_pd(-0.0), input);
    const __m128d usable =
        _mm_and_pd(_mm_cmpge_pd(magnitude, _mm_set1_pd(kInputFlushLevel)),
                   _mm_cmple_pd(magnitude, _mm_set1_pd(std::numeric_limits<double>::max())));
    return _mm_and_pd(usable, input);
}

// A stereo frame handed out in single precision.
void StoreFrame(__m128d frame, float* left, float* right) noexcept
{
    const __m128 output = _mm_cvtpd_ps(frame);
    *left = _mm_cvtss_f32(output);
    *right = _mm_cvtss_f32(_mm_shuffle_ps(output, output, 1));
}

// Multiplies each frame by both channels' ramp gains, moving the ramps on by frameCount samples.
void ApplyGainRamps(std::array<GainRamp, 2>& ramps, const __m128d* from, __m128d* to, int frameCount) noexcept
{
    if (ramps[0].samplesLeft == 0 && ramps[1].samplesLeft == 0)
    {
        // Unity leaves every sample as it is (normal polarity, 0 dB), so it costs nothing.
        if (ramps[0].current == 1.0 && ramps[1].current == 1.0)
        {
            if (to != from)
            {
                std::copy(from, from + frameCount, to);
            }
            return;
        }
        const __m128d gains = _mm_set_pd(ramps[1].current, ramps[0].current);
        for (int i = 0; i < frameCount; ++i)
        {
            to[i] = _mm_mul_pd(from[i], gains);
        }
        return;
    }
    for (int i = 0; i < frameCount; ++i)
    {
        const double first = NextGain(ramps[0]);
        to[i] = _mm_mul_pd(from[i], _mm_set_pd(NextGain(ramps[1]), first));
    }
}

// The mean of a frame's two input channels, formed in double precision.
float InputMean(__m128d frame) noexcept
{
    return static_cast<float>((_mm_cvtsd_f64(frame) + _mm_cvtsd_f64(_mm_unpackhi_pd(frame, frame))) * 0.5);
}

// The mean of a frame's two output channels, formed from the single-precision samples handed out.
float OutputMean(__m128d frame) noexcept
{
    const __m128 output = _mm_cvtpd_ps(frame);
    return (_mm_cvtss_f32(output) + _mm_cvtss_f32(_mm_shuffle_ps(output, output, 1))) * 0.5f;
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

void BandEngine::processChunk(const float* inL, const float* inR, float* outL, float* outR,
                              int frameCount) noexcept
{
    const int count = std::clamp(frameCount, 0, kMaxChunkLength);
    // One stereo frame per element, the chunk taken stage by stage. Plain arrays: a vector type's
    // alignment attribute does not survive as a template argument.
    __m128d input[kMaxChunkLength];
    __m128d mix[kMaxChunkLength];
    __m128d signal[kMaxChunkLength];
    for (int i = 0; i < count; ++i)
    {
        input[i] = CleanInputs(inL[i], inR[i]);
    }
    // From the first frame on which the effect has settled fully out, the rest of the chunk
    // passes with polarity only.
    const int effectFrames = advanceSwitchRamps(mix, count);
    ApplyGainRamps(mPolarityRamps, input, input, count);
    ApplyGainRamps(mInputGainRamps, input, signal, effectFrames);
    runBands(signal, effectFrames);
    // A settled output gain is applied in the same pass as the mix with the dry signal and the
    // output's conversion; a gain still ramping goes first, and the pass then multiplies by one.
    const bool outputGainSettled =
        mOutputGainRamps[0].samplesLeft == 0 && mOutputGainRamps[1].samplesLeft == 0;
    if (!outputGainSettled)
    {
        ApplyGainRamps(mOutputGainRamps, signal, signal, effectFrames);
    }
    const __m128d outputGains = outputGainSettled
                                    ? _mm_set_pd(mOutputGainRamps[1].current, mOutputGainRamps[0].current)
                                    : _mm_set1_pd(1.0);
    const __m128d one = _mm_set1_pd(1.0);
    for (int i = 0; i < effectFrames; ++i)
    {
        const __m128d wet = _mm_mul_pd(signal[i], outputGains);
        signal[i] = _mm_add_pd(_mm_mul_pd(wet, mix[i]), _mm_mul_pd(_mm_sub_pd(one, mix[i]), input[i]));
        StoreFrame(signal[i], outL + i, outR + i);
    }
    for (int i = effectFrames; i < count; ++i)
    {
        StoreFrame(input[i], outL + i, outR + i);
    }
    feedAnalyser(input, signal, effectFrames, count);
}

void BandEngine::reset() noexcept
{
    for (Band& band : mBands)
    {
        InstallPending(band.filter);
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
    const BiquadSection first = designChannel(bandIndex, 0);
    // A band on both channels gives both the same design; it is made once.
    const BiquadSection second = band.current.mode == 0 ? first : designChannel(bandIndex, 1);
    if (mode == DesignMode::Direct)
    {
        InstallSections(band.filter, first, second);
    }
    else
    {
        StartCrossFade(band.filter, first, second);
    }
    if (mDesignHook)
    {
        mDesignHook(mDesignHookContext, bandIndex + 1, first, second, mode == DesignMode::CrossFade);
    }
}

bool BandEngine::bandFilters(int band) const noexcept
{
    const BandSettings& settings = mBands[static_cast<std::size_t>(band - 1)].current;
    return settings.enabled && !IsPassThrough(settings.type);
}

bool BandEngine::isAnyBandFading() const noexcept
{
    return std::any_of(mBands.begin(), mBands.end(),
                       [](const Band& band) { return IsCrossFading(band.filter); });
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
        if (changed && !IsCrossFading(band.filter))
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
    // Redesigns are the costly part of a chunk. Bands that start gliding together would redesign
    // together at the end of every cross-fade; taking at most a few a chunk, in turn from where
    // the last chunk stopped, spreads them over the fade while each band still glides as often.
    int redesigns = 0;
    for (int step = 0; step < kBandCount; ++step)
    {
        const int i = (mGlideCursor + step) % kBandCount;
        Band& band = mBands[static_cast<std::size_t>(i)];
        const bool heldBySolo = mSoloApplied != 0 && mSoloApplied != i + 1;
        if (!band.current.enabled || heldBySolo || IsCrossFading(band.filter))
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
        if (redesigns == kGlideRedesignsPerChunk)
        {
            continue;
        }
        const bool frequencyMoved = Glide(band.current.frequencyHz, band.target.frequencyHz);
        const bool gainMoved = Glide(band.current.gainDb, band.target.gainDb);
        const bool qMoved = Glide(band.current.q, band.target.q);
        if (frequencyMoved || gainMoved || qMoved)
        {
            designBand(i, DesignMode::CrossFade);
            ++redesigns;
            mGlideCursor = (i + 1) % kBandCount;
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

// The effect reaches the frames before effectFrames; from there on the chunk is the input.
int BandEngine::advanceSwitchRamps(__m128d* mix, int frameCount) noexcept
{
    SwitchRamp& first = mSwitchRamps[0];
    SwitchRamp& second = mSwitchRamps[1];
    if (first.done && second.done)
    {
        std::fill(mix, mix + frameCount, _mm_set_pd(second.current, first.current));
        return IsSettledOff(first) && IsSettledOff(second) ? 0 : frameCount;
    }
    for (int i = 0; i < frameCount; ++i)
    {
        AdvanceSwitchRamp(first);
        AdvanceSwitchRamp(second);
        if (IsSettledOff(first) && IsSettledOff(second))
        {
            return i;
        }
        mix[i] = _mm_set_pd(second.current, first.current);
    }
    return frameCount;
}

// Bands that do nothing are left out for the whole chunk; the others run band after band over
// the chunk. A band switched off fades out over its 512 samples.
void BandEngine::runBands(__m128d* signal, int frameCount) noexcept
{
    if (frameCount < 1)
    {
        return;
    }
    std::array<StereoBandFilter*, kBandCount> steady{};
    int steadyCount = 0;
    for (Band& band : mBands)
    {
        const bool filtering = band.current.enabled && !IsPassThrough(band.current.type);
        if (IsCrossFading(band.filter))
        {
            RunBands(steady.data(), steadyCount, signal, frameCount);
            steadyCount = 0;
            RunCrossFade(band.filter, signal, frameCount, filtering);
        }
        else if (filtering)
        {
            steady[static_cast<std::size_t>(steadyCount++)] = &band.filter;
        }
    }
    RunBands(steady.data(), steadyCount, signal, frameCount);
}

// While the effect is settled out the analyser sees the input whatever its source switch says.
void BandEngine::feedAnalyser(const __m128d* input, const __m128d* output, int effectFrames,
                              int frameCount) noexcept
{
    if (!mAnalyserOn)
    {
        return;
    }
    std::array<float, kMaxChunkLength> mono;
    for (int i = 0; i < frameCount; ++i)
    {
        const bool fromOutput = mAnalyserSourceOutput && i < effectFrames;
        mono[static_cast<std::size_t>(i)] = fromOutput ? OutputMean(output[i]) : InputMean(input[i]);
    }
    mAnalyser.feed(mono.data(), frameCount);
}

} // namespace velmoran::dsp
