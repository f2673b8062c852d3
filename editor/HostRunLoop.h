#pragma once

#include "pluginterfaces/base/funknown.h"

#include <cstdint>

namespace velmoran::editor
{

// How an open editor's window gets its timer ticks and window-system events. On Linux the host's
// run loop (Steinberg::Linux::IRunLoop) drives them: one timer handler for the repaint tick and
// one event handler for the X connection. On Windows the window kit's own timers and the host's
// message loop do, and the host is asked for nothing. UI thread only.
class HostRunLoop
{
public:
    HostRunLoop();
    ~HostRunLoop();
    HostRunLoop(const HostRunLoop&) = delete;
    HostRunLoop& operator=(const HostRunLoop&) = delete;

    // Takes the run loop from the view's frame or, failing that, from the host context that the
    // plug-in was initialised with; false when the platform needs one and the host offers none.
    bool find(Steinberg::FUnknown* frame, Steinberg::FUnknown* hostContext);
    // Registers the window's timer at that period and the window system's events.
    void start(int windowSlot, uint32_t periodMs);
    // Unregisters both and lets the run loop go; nothing happens when nothing is registered.
    void stop();
    // True between start and stop.
    bool running() const;

private:
    struct Link;
    Link* mLink = nullptr;
};

} // namespace velmoran::editor
