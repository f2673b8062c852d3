#pragma once

#include "ComponentHandler.h"

#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/base/smartpointer.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <memory>
#include <string>
#include <vector>

namespace Steinberg
{
namespace Vst
{

// A processor and its controller as a host holds them: the factory's first audio effect and the
// controller class it names, both initialised with a host application, the controller given a
// component handler, the two connected through their connection points. The destructor undoes it
// all in the host's order.
class PluginInstance
{
public:
    // Makes and initialises both halves from factory; valid() tells whether it worked and
    // failureReason() why not.
    explicit PluginInstance(IPluginFactory* factory, bool connectNow = true);
    ~PluginInstance();
    PluginInstance(const PluginInstance&) = delete;
    PluginInstance& operator=(const PluginInstance&) = delete;

    // True when both classes were made and initialised.
    bool valid() const { return component && processor && controller; }
    // Why the instance is not valid, empty when it is.
    const std::string& failureReason() const { return mFailureReason; }
    // Connects or disconnects the two connection points.
    void connect();
    void disconnect();

    // The SDK's host application is not reference counted: the instance owns it.
    std::unique_ptr<HostApplication> host;
    IPtr<IComponent> component;
    IPtr<IAudioProcessor> processor;
    IPtr<IEditController> controller;
    IPtr<ComponentHandler> handler;

private:
    bool makeComponent(IPluginFactory* factory);
    bool makeController(IPluginFactory* factory);

    std::string mFailureReason;
    bool mComponentInitialised = false;
    bool mControllerInitialised = false;
    bool mConnected = false;
};

// The component's or the controller's own state stream as bytes; empty when getState fails.
std::vector<char> stateBytes(IComponent* component);
std::vector<char> stateBytes(IEditController* controller);
// A stream over the given bytes, positioned at its start.
IPtr<IBStream> streamOf(const std::vector<char>& bytes);

} // namespace Vst
} // namespace Steinberg
