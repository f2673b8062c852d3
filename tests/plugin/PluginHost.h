#pragma once

// A small host for the tests: loads the built module through its entry points, makes processor
// and controller instances through the factory, and feeds them blocks and state streams.

#include "sdk/hosting/ComponentHandler.h"
#include "sdk/hosting/Module.h"
#include "sdk/hosting/ParameterChanges.h"
#include "sdk/hosting/PluginInstance.h"
#include "sdk/hosting/ProcessBlock.h"
#include "support/ModulePath.h"

#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "pluginterfaces/vst/ivstmessage.h"
#include "pluginterfaces/vst/ivstunits.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmoran::test
{

using namespace Steinberg;
using namespace Steinberg::Vst;

// The module, loaded and entered once for the whole test program; null if it cannot be loaded.
VST3::Hosting::Module* sharedModule();

// A processor and a controller of the shared module as a host holds them: the hosting library's
// instance, made from the shared module's factory.
class PluginInstance : public Steinberg::Vst::PluginInstance
{
public:
    explicit PluginInstance(bool connect = true);
};

// A test, or a table's case (Base a TestWithParam), with a fresh instance whose processor and
// controller stand unconnected.
template <typename Base = testing::Test> class WithInstance : public Base
{
protected:
    void SetUp() override { ASSERT_TRUE(plugin.valid()); }

    PluginInstance plugin{false};
};

using Steinberg::Vst::streamOf;

// The processor's state as floats (one per normalised value), and where a tag's value lies in it.
std::vector<float> stateValues(IComponent* component);
size_t stateIndexOf(ParamID tag);
// A stream holding the given floats.
IPtr<IBStream> streamOf(const std::vector<float>& values);

// A parameter-change list holding one point per (tag, value) pair, at offset 0.
IPtr<ParameterChanges> changesOf(const std::vector<std::pair<ParamID, ParamValue>>& points);
// Runs an empty stereo block carrying the given changes.
tresult applyChanges(IAudioProcessor* processor, IParameterChanges* changes);

// The text of a String128 as plain ASCII, and back.
std::string asciiOf(const TChar* text);
void copyAscii(const char* ascii, String128 text);

} // namespace velmoran::test
