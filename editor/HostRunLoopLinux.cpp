#include "HostRunLoop.h"

#include "platform/window/WindowKit.h"

#include "base/source/fobject.h"
#include "pluginterfaces/gui/iplugview.h"

namespace velmoran::editor
{

using Steinberg::FUnknown;
using Steinberg::IPtr;
using Steinberg::kResultOk;
using Steinberg::Linux::FileDescriptor;
using Steinberg::Linux::IEventHandler;
using Steinberg::Linux::IRunLoop;
using Steinberg::Linux::ITimerHandler;
using velmoran::platform::CPlatformWindows;

namespace
{

// What the host's run loop calls: the window's timer and the X connection's events, handed to the
// window kit. Reference-counted, since the host may hold it a moment after it is unregistered.
class RunLoopHandlers : public Steinberg::FObject, public ITimerHandler, public IEventHandler
{
public:
    explicit RunLoopHandlers(int windowSlot) : mWindowSlot(windowSlot) {}

    void PLUGIN_API onTimer() override
    {
        if (CPlatformWindows* windows = CPlatformWindows::instance(false))
            windows->fireTimer(mWindowSlot);
    }

    void PLUGIN_API onFDIsSet(FileDescriptor) override
    {
        if (CPlatformWindows* windows = CPlatformWindows::instance(false))
            windows->dispatchEvents();
    }

    OBJ_METHODS(RunLoopHandlers, FObject)
    DEFINE_INTERFACES
    DEF_INTERFACE(ITimerHandler)
    DEF_INTERFACE(IEventHandler)
    END_DEFINE_INTERFACES(FObject)
    REFCOUNT_METHODS(FObject)

private:
    int mWindowSlot;
};

// Editors whose windows the host's run loop drives now.
int gRunningEditors = 0;

IPtr<IRunLoop> runLoopOf(FUnknown* object)
{
    return IPtr<IRunLoop>(Steinberg::FUnknownPtr<IRunLoop>(object).getInterface());
}

} // namespace

struct HostRunLoop::Link
{
    IPtr<IRunLoop> runLoop;
    IPtr<RunLoopHandlers> handlers;
};

HostRunLoop::HostRunLoop() : mLink(new Link) {}

HostRunLoop::~HostRunLoop()
{
    stop();
    delete mLink;
}

bool HostRunLoop::find(FUnknown* frame, FUnknown* hostContext)
{
    if (mLink->runLoop)
        return true;
    mLink->runLoop = runLoopOf(frame);
    if (!mLink->runLoop)
        mLink->runLoop = runLoopOf(hostContext);
    return static_cast<bool>(mLink->runLoop);
}

void HostRunLoop::start(int windowSlot, uint32_t periodMs)
{
    CPlatformWindows* windows = CPlatformWindows::instance(false);
    if (!mLink->runLoop || mLink->handlers || windows == nullptr)
        return;
    mLink->handlers = Steinberg::owned(new RunLoopHandlers(windowSlot));
    ++gRunningEditors;
    mLink->runLoop->registerTimer(mLink->handlers, periodMs);
    mLink->runLoop->registerEventHandler(mLink->handlers, windows->connectionDescriptor());
    // Events that arrived while the window was made are read now: the descriptor is only
    // reported for data not yet taken from it.
    windows->dispatchEvents();
}

void HostRunLoop::stop()
{
    if (mLink->handlers && mLink->runLoop)
    {
        mLink->runLoop->unregisterTimer(mLink->handlers);
        mLink->runLoop->unregisterEventHandler(mLink->handlers);
    }
    if (mLink->handlers && --gRunningEditors == 0)
    {
        // Nothing would deliver an open message box's events any more: it goes with the last editor.
        if (CPlatformWindows* windows = CPlatformWindows::instance(false))
            windows->destroyBoxWindows();
    }
    mLink->handlers = nullptr;
    mLink->runLoop = nullptr;
}

bool HostRunLoop::running() const
{
    return static_cast<bool>(mLink->handlers);
}

} // namespace velmoran::editor
