#include "RunningInstance.h"

#include "plugin/PlugController.h"

namespace velmoran::test
{

RunningInstance::RunningInstance(int32 maxBlockLength)
{
    if (!plugin.valid())
    {
        return;
    }
    for (size_t channel = 0; channel < 2; ++channel)
    {
        inputs[channel].assign(static_cast<size_t>(maxBlockLength), 0.0f);
        outputs[channel].assign(static_cast<size_t>(maxBlockLength), 0.0f);
        mInputChannels[channel] = inputs[channel].data();
        mOutputChannels[channel] = outputs[channel].data();
    }
    mInputBus.numChannels = 2;
    mInputBus.channelBuffers32 = mInputChannels.data();
    mOutputBus.numChannels = 2;
    mOutputBus.channelBuffers32 = mOutputChannels.data();
    mData.processMode = kRealtime;
    mData.symbolicSampleSize = kSample32;
    mData.numInputs = 1;
    mData.numOutputs = 1;
    mData.inputs = &mInputBus;
    mData.outputs = &mOutputBus;
    ProcessSetup setup{kRealtime, kSample32, maxBlockLength, 48000.0};
    mActive = plugin.processor->setupProcessing(setup) == kResultOk &&
              plugin.component->setActive(true) == kResultOk;
}

RunningInstance::~RunningInstance()
{
    if (mActive)
    {
        plugin.component->setActive(false);
    }
}

tresult RunningInstance::process(int32 sampleCount, IParameterChanges* changes)
{
    mData.numSamples = sampleCount;
    mData.inputParameterChanges = changes;
    return plugin.processor->process(mData);
}

const Vst::Velmoran::SpectrumFrame* RunningInstance::controllerFrame() const
{
    // The module is built from the same sources as this program, so the class is the same.
    auto* controller = static_cast<Vst::Velmoran::CPlugController*>(plugin.controller.get());
    return controller ? controller->spectrumFrame() : nullptr;
}

} // namespace velmoran::test
