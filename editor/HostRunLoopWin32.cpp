#include "HostRunLoop.h"

namespace velmoran::editor
{

// The Windows kit's window timers and the host's message loop drive the editor: there is nothing to
// find or register.
struct HostRunLoop::Link
{
    bool running = false;
};

HostRunLoop::HostRunLoop() : mLink(new Link) {}

HostRunLoop::~HostRunLoop()
{
    delete mLink;
}

bool HostRunLoop::find(Steinberg::FUnknown*, Steinberg::FUnknown*)
{
    return true;
}

void HostRunLoop::start(int, uint32_t)
{
    mLink->running = true;
}

void HostRunLoop::stop()
{
    mLink->running = false;
}

bool HostRunLoop::running() const
{
    return mLink->running;
}

} // namespace velmoran::editor
