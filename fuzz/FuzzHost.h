#pragma once

// The plug-in linked into a fuzz target and made the way a host makes it: the module entry, the
// factory, instances initialised with a host application. A processor is kept for the whole run
// (making one starts a sender thread, ending it waits up to one 20 ms period) and brought back to
// a known state before each input.

#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmoran::fuzz
{

using namespace Steinberg;
using namespace Steinberg::Vst;

// Stops the run with a message when a property of the plug-in does not hold.
void require(bool condition, const char* what);

// The host application every instance is initialised with.
HostApplication& hostApplication();

// A new processor component from the factory, initialised; null if it cannot be made.
IPtr<IComponent> makeProcessor();
// A new controller from the factory, initialised; null if it cannot be made.
IPtr<IEditController> makeController();

// The processor state a freshly made processor writes (276 bytes).
const std::vector<char>& defaultState();
// A stream reading the given bytes in place.
IPtr<IBStream> streamOver(const uint8_t* data, size_t size);
// The processor's state written to a stream, as floats.
std::vector<float> stateOf(IComponent* component);

// One processor kept for the whole run, stereo, active.
class SharedProcessor
{
public:
    // The processor of this run, made on first use.
    static SharedProcessor& instance();

    // Back to stereo buses, default parameters and cleared filters, active at the sample rate in Hz
    // (48 kHz unless given), no editor open.
    void restart(double sampleRate = 48000.0);
    // Tells the processor that an editor opened or closed, as the controller does.
    void setEditorOpen(bool open);
    // Processes one block of the given channels (equal lengths), with optional changes.
    tresult process(std::vector<std::vector<float>>& inputs, std::vector<std::vector<float>>& outputs,
                    int32 sampleCount, IParameterChanges* changes = nullptr);

    IComponent* component() const { return mComponent; }
    IAudioProcessor* processor() const { return mProcessor; }

private:
    SharedProcessor();

    IPtr<IComponent> mComponent;
    IPtr<IAudioProcessor> mProcessor;
};

// True when every sample of every channel is a finite number.
bool allFinite(const std::vector<std::vector<float>>& channels);

} // namespace velmoran::fuzz
