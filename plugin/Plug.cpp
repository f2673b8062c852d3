#include "Plug.h"

#include "PlugIds.h"
#include "PlugState.h"
#include "dsp/BandEngine.h"

#include "base/source/fstring.h"
#include "pluginterfaces/base/fstrdefs.h"
#include "pluginterfaces/vst/ivstmessage.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "pluginterfaces/vst/vstspeaker.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

// A normalised value limited to 0..1.
float clamp01(float value)
{
    return std::clamp(value, 0.0f, 1.0f);
}

// The number of channels of an arrangement: one per speaker bit.
int32 channelCount(SpeakerArrangement arrangement)
{
    return SpeakerArr::getChannelCount(arrangement);
}

// Copies one chunk of input channel `channel` into `target`, silence where the input has none.
void copyThrough(const AudioBusBuffers& input, int32 inputChannels, Sample32* target, int32 channel,
                 int32 start, int32 length)
{
    if (!target)
    {
        return;
    }
    // Hosts may process in place, so source and target can be the same buffer.
    const Sample32* source = channel < inputChannels ? input.channelBuffers32[channel] : nullptr;
    for (int32 sample = start; sample < start + length; ++sample)
    {
        target[sample] = source ? source[sample] : 0.0f;
    }
}

} // namespace

CPlug::CPlug()
{
    setControllerClass(kPlugControllerUID);
    mEngine = std::make_unique<velmoran::dsp::BandEngine>();
    for (ParamID tag = 0; tag < kTagTableSize; ++tag)
    {
        mValues[tag] = defaultValue(tag);
    }
    pushAllToEngine();
    mSpectrumFrame = makeSpectrumFrame();
    mSender = std::make_unique<SpectrumSender>(*this, *mSpectrumFrame, mLinkLock);
    mSender->start();
}

CPlug::~CPlug()
{
    mSender.reset();
    mSpectrumFrame.reset();
    mEngine.reset();
}

FUnknown* CPlug::createInstance(void* /*context*/)
{
    try
    {
        return static_cast<IAudioProcessor*>(new CPlug());
    }
    catch (...)
    {
        return nullptr;
    }
}

void CPlug::pushAllToEngine()
{
    mEngine->setSampleRate(mEngineSampleRate);
    updateEffectSwitch();
    mEngine->setAnalyserOn(analyserWanted());
    mEngine->setAnalyserSourceOutput(isOn(mValues[kFftSourceTag]));
    // The stored input gain reads -0.06 dB; the engine starts at unity all the same.
    mEngine->setInputGainDb(0.0f);
    for (int band = 1; band <= kBandCount; ++band)
    {
        for (ParamID tag : {frequencyTag(band), gainTag(band), qTag(band), filterTypeTag(band),
                            enableTag(band), modeTag(band)})
        {
            setParameter(tag, mValues[tag]);
        }
    }
    for (ParamID tag : {kOutputGainTag, kPolarityTag, kSoloTag})
    {
        setParameter(tag, mValues[tag]);
    }
}

void CPlug::updateEffectSwitch() noexcept
{
    const float passing = (1.0f - clamp01(mValues[kHostBypassTag])) * clamp01(mValues[kEqTag]);
    mEngine->setEffectOn(passing >= 0.5f);
}

// With no editor open nobody sees the spectrum, so the analyser rests; opening one switches it
// on afresh, and the display rises to the signal with its 0.1 s attack.
bool CPlug::analyserWanted() const noexcept
{
    return isOn(mValues[kFftTag]) && mEditorOpen.load(std::memory_order_relaxed);
}

void CPlug::setParameter(ParamID tag, float value) noexcept
{
    if (tag >= kTagTableSize || tag == kUnusedTag || tag == kPresetTag)
    {
        return;
    }
    mValues[tag] = value;
    if (tag == kEqTag || tag == kHostBypassTag)
    {
        updateEffectSwitch();
    }
    else if (tag == kInputGainTag)
    {
        mEngine->setInputGainDb(ioGainDb(value));
    }
    else if (tag == kOutputGainTag)
    {
        mEngine->setOutputGainDb(ioGainDb(value));
    }
    else if (tag >= filterTypeTag(1) && tag <= filterTypeTag(kBandCount))
    {
        mEngine->setBandType(static_cast<int>(tag) - 1, filterTypeCode(value));
    }
    else if (tag == kFftTag)
    {
        mEngine->setAnalyserOn(analyserWanted());
    }
    else if (tag == kFftSourceTag)
    {
        mEngine->setAnalyserSourceOutput(isOn(value));
    }
    else if (tag >= frequencyTag(1) && tag <= frequencyTag(kBandCount))
    {
        mEngine->setBandFrequency(static_cast<int>(tag) - 16, bandFrequencyHz(value));
    }
    else if (tag >= gainTag(1) && tag <= gainTag(kBandCount))
    {
        mEngine->setBandGain(static_cast<int>(tag) - 26, bandGainDb(value));
    }
    else if (tag >= qTag(1) && tag <= qTag(kBandCount))
    {
        mEngine->setBandQ(static_cast<int>(tag) - 36, bandQ(value));
    }
    else if (tag >= enableTag(1) && tag <= enableTag(kBandCount))
    {
        mEngine->setBandEnabled(static_cast<int>(tag) - 46, isOn(value));
    }
    else if (tag == kPolarityTag)
    {
        mEngine->setPolarityInverted(isOn(value));
    }
    else if (tag >= modeTag(1) && tag <= modeTag(kBandCount))
    {
        mEngine->setBandMode(static_cast<int>(tag) - 57, channelMode(value));
    }
    else if (tag == kSoloTag)
    {
        mEngine->setSoloBand(soloBand(value));
    }
    // "FFT Slope" is only kept: the slope is applied where the spectrum is drawn.
}

tresult PLUGIN_API CPlug::initialize(FUnknown* context)
{
    {
        std::lock_guard<std::recursive_mutex> guard(mLinkLock);
        tresult result = AudioEffect::initialize(context);
        if (result != kResultOk)
        {
            return result;
        }
    }
    addAudioInput(STR16("Stereo In"), SpeakerArr::kStereo);
    addAudioOutput(STR16("Stereo Out"), SpeakerArr::kStereo);
    addEventInput(STR16("Event In"), 1);
    return kResultOk;
}

tresult PLUGIN_API CPlug::terminate()
{
    std::lock_guard<std::recursive_mutex> guard(mLinkLock);
    // Whether an editor is open is the controller's to tell again after the next connection.
    mEditorOpen.store(false, std::memory_order_relaxed);
    return AudioEffect::terminate();
}

tresult PLUGIN_API CPlug::connect(IConnectionPoint* other)
{
    std::lock_guard<std::recursive_mutex> guard(mLinkLock);
    return AudioEffect::connect(other);
}

tresult PLUGIN_API CPlug::disconnect(IConnectionPoint* other)
{
    std::lock_guard<std::recursive_mutex> guard(mLinkLock);
    mEditorOpen.store(false, std::memory_order_relaxed);
    return AudioEffect::disconnect(other);
}

tresult PLUGIN_API CPlug::notify(IMessage* message)
{
    if (message && message->getMessageID() && std::strcmp(message->getMessageID(), "EditorOpen") == 0)
    {
        int64 open = 0;
        IAttributeList* attributes = message->getAttributes();
        if (!attributes || attributes->getInt("open", open) != kResultOk)
        {
            return kResultFalse;
        }
        mEditorOpen.store(open != 0, std::memory_order_relaxed);
        return kResultOk;
    }
    if (message && message->getMessageID() && std::strcmp(message->getMessageID(), "BinaryMessage") == 0)
    {
        const void* data = nullptr;
        uint32 size = 0;
        IAttributeList* attributes = message->getAttributes();
        if (attributes && attributes->getBinary("MyData", data, size) == kResultOk)
        {
            return kResultOk;
        }
    }
    // The SDK reads the attributes of a "TextMessage" without asking whether there are any.
    if (message && !message->getAttributes())
    {
        return kResultFalse;
    }
    return AudioEffect::notify(message);
}

void CPlug::replaceAudioBuses(const TChar* inputName, SpeakerArrangement inputArrangement,
                              const TChar* outputName, SpeakerArrangement outputArrangement)
{
    removeAudioBusses();
    addAudioInput(inputName, inputArrangement);
    addAudioOutput(outputName, outputArrangement);
}

tresult PLUGIN_API CPlug::setBusArrangements(SpeakerArrangement* inputs, int32 numIns,
                                             SpeakerArrangement* outputs, int32 numOuts)
{
    if (numIns != 1 || numOuts != 1 || !inputs || !outputs)
    {
        return kResultFalse;
    }
    const int32 inputChannels = channelCount(inputs[0]);
    const int32 outputChannels = channelCount(outputs[0]);
    AudioBus* currentInput = getAudioInput(0);
    if (inputChannels == 1 && outputChannels == 1)
    {
        if (!currentInput || currentInput->getArrangement() != inputs[0])
        {
            replaceAudioBuses(STR16("Mono In"), inputs[0], STR16("Mono Out"), inputs[0]);
        }
        return kResultOk;
    }
    if (inputChannels == 2 && outputChannels == 2)
    {
        replaceAudioBuses(STR16("Stereo In"), inputs[0], STR16("Stereo Out"), outputs[0]);
        return kResultOk;
    }
    if (!currentInput || currentInput->getArrangement() != SpeakerArr::kStereo)
    {
        replaceAudioBuses(STR16("Stereo In"), SpeakerArr::kStereo, STR16("Stereo Out"), SpeakerArr::kStereo);
    }
    return kResultFalse;
}

tresult PLUGIN_API CPlug::setupProcessing(ProcessSetup& setup)
{
    const auto rate = static_cast<float>(setup.sampleRate);
    if (!std::isfinite(rate) || rate <= 0.0f)
    {
        return kInvalidArgument;
    }
    if (canProcessSampleSize(setup.symbolicSampleSize) != kResultTrue)
    {
        return kResultFalse;
    }
    mSampleRate = rate;
    if (rate != mEngineSampleRate)
    {
        mEngineSampleRate = rate;
        mEngine->setSampleRate(rate);
    }
    return AudioEffect::setupProcessing(setup);
}

void CPlug::sendSampleRate()
{
    std::lock_guard<std::recursive_mutex> guard(mLinkLock);
    IMessage* message = allocateMessage();
    if (!message)
    {
        return;
    }
    message->setMessageID("setActive");
    if (IAttributeList* attributes = message->getAttributes())
    {
        attributes->setFloat("sampleRate", mSampleRate);
        sendMessage(message);
    }
    message->release();
}

tresult PLUGIN_API CPlug::setActive(TBool state)
{
    if (state)
    {
        sendSampleRate();
    }
    else
    {
        mEngine->reset();
    }
    return AudioEffect::setActive(state);
}

void CPlug::applyParameterChanges(IParameterChanges* changes) noexcept
{
    const int32 queueCount = changes->getParameterCount();
    for (int32 queueIndex = 0; queueIndex < queueCount; ++queueIndex)
    {
        IParamValueQueue* queue = changes->getParameterData(queueIndex);
        if (!queue)
        {
            continue;
        }
        const ParamID tag = queue->getParameterId();
        const int32 pointCount = queue->getPointCount();
        if (tag >= kTagTableSize || pointCount <= 0)
        {
            continue;
        }
        // Automation is applied at block rate: the last point of the block wins.
        int32 sampleOffset = 0;
        ParamValue value = 0.0;
        if (queue->getPoint(pointCount - 1, sampleOffset, value) != kResultOk ||
            !(value >= 0.0 && value <= 1.0))
        {
            continue;
        }
        setParameter(tag, static_cast<float>(value));
    }
}

void CPlug::processAudio(AudioBusBuffers& input, AudioBusBuffers& output, int32 sampleCount) noexcept
{
    const int32 inputChannels = input.channelBuffers32 ? std::clamp(input.numChannels, 0, kMaxChannels) : 0;
    const int32 outputChannels =
        output.channelBuffers32 ? std::clamp(output.numChannels, 0, kMaxChannels) : 0;
    // A mono input feeds both sides of the engine; a missing channel reads as silence, and an
    // output channel the host does not have is written to scratch. The engine reads a chunk's
    // inputs before it writes its outputs, so it works on the host's buffers, in place or not.
    static constexpr std::array<Sample32, kChunkLength> kSilence{};
    std::array<Sample32, kChunkLength> scratch;
    const Sample32* leftSource = inputChannels >= 1 ? input.channelBuffers32[0] : nullptr;
    const Sample32* rightSource = inputChannels >= 2 ? input.channelBuffers32[1] : leftSource;
    Sample32* leftTarget = outputChannels >= 1 ? output.channelBuffers32[0] : nullptr;
    Sample32* rightTarget = outputChannels >= 2 ? output.channelBuffers32[1] : nullptr;
    for (int32 chunkStart = 0; chunkStart < sampleCount; chunkStart += kChunkLength)
    {
        const int32 chunkLength = std::min(kChunkLength, sampleCount - chunkStart);
        // Channels beyond the second pass through; the output's own first two get the engine's.
        for (int32 channel = 2; channel < outputChannels; ++channel)
        {
            copyThrough(input, inputChannels, output.channelBuffers32[channel], channel, chunkStart,
                        chunkLength);
        }
        mEngine->updateBlock(chunkLength);
        mEngine->processChunk(leftSource ? leftSource + chunkStart : kSilence.data(),
                              rightSource ? rightSource + chunkStart : kSilence.data(),
                              leftTarget ? leftTarget + chunkStart : scratch.data(),
                              rightTarget ? rightTarget + chunkStart : scratch.data(), chunkLength);
    }
}

void CPlug::copyAnalyserFrame() noexcept
{
    const float* magnitudes = mEngine->analyserMagnitudes();
    if (!magnitudes || mEngine->analyserVersion() == mCopiedAnalyserVersion)
    {
        return;
    }
    mCopiedAnalyserVersion = mEngine->analyserVersion();
    mSpectrumFrame->sampleRate = mEngine->analyserSampleRate();
    mSpectrumFrame->transformSize = mEngine->analyserSize();
    std::memcpy(mSpectrumFrame->magnitudes, magnitudes, sizeof(float) * kAnalyserMagnitudeCount);
}

tresult PLUGIN_API CPlug::process(ProcessData& data)
{
    if (data.inputParameterChanges)
    {
        applyParameterChanges(data.inputParameterChanges);
    }
    // Read once, so that the analyser and the frame copy agree within the block.
    const bool analysing = analyserWanted();
    mEngine->setAnalyserOn(analysing);
    if (data.numInputs < 1 || data.numOutputs < 1 || !data.inputs || !data.outputs)
    {
        return kResultOk;
    }
    if (data.symbolicSampleSize != kSample32)
    {
        return kInvalidArgument;
    }
    // Without output channels there is nothing to produce, whatever sample count is claimed.
    if (!data.outputs[0].channelBuffers32 || data.outputs[0].numChannels <= 0)
    {
        return kResultOk;
    }
    processAudio(data.inputs[0], data.outputs[0], std::max(data.numSamples, 0));
    if (analysing)
    {
        copyAnalyserFrame();
    }
    data.outputs[0].silenceFlags = 0;
    return kResultOk;
}

tresult PLUGIN_API CPlug::setState(IBStream* state)
{
    StateValues read;
    if (!readState(state, read))
    {
        return kResultFalse;
    }
    const auto& tags = stateTags();
    for (int index = kRequiredStateValueCount; index < read.count; ++index)
    {
        setParameter(tags[index], read.values[index]);
    }
    // The required block ends with "EQ", so the switch is settled last.
    for (int index = 0; index < kRequiredStateValueCount; ++index)
    {
        if (tags[index] == kFftSlopeTag)
        {
            mValues[kFftSlopeTag] = read.values[index];
        }
        else
        {
            setParameter(tags[index], read.values[index]);
        }
    }
    return kResultOk;
}

tresult PLUGIN_API CPlug::getState(IBStream* state)
{
    return writeState(state, mValues.data());
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
