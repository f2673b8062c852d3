#pragma once

// A Linux host's run loop, as the editor test host and the editor tests offer it to the view: the
// descriptors and timers that the plug-in registers, polled on the host's UI thread, with counts of
// what is registered. It is also the view's IPlugFrame, through which the view finds it.

#include "base/source/fobject.h"
#include "pluginterfaces/gui/iplugview.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace velmoran::editorhost
{

class PollRunLoop : public Steinberg::FObject, public Steinberg::Linux::IRunLoop, public Steinberg::IPlugFrame
{
public:
    using Clock = std::chrono::steady_clock;

    Steinberg::tresult PLUGIN_API registerEventHandler(Steinberg::Linux::IEventHandler* handler,
                                                       Steinberg::Linux::FileDescriptor fd) override
    {
        if (handler == nullptr || fd < 0)
            return Steinberg::kInvalidArgument;
        handler->addRef();
        mEventHandlers.push_back({handler, fd});
        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API unregisterEventHandler(Steinberg::Linux::IEventHandler* handler) override
    {
        return remove(mEventHandlers, handler);
    }

    Steinberg::tresult PLUGIN_API registerTimer(Steinberg::Linux::ITimerHandler* handler,
                                                Steinberg::Linux::TimerInterval milliseconds) override
    {
        if (handler == nullptr || milliseconds == 0)
            return Steinberg::kInvalidArgument;
        handler->addRef();
        mTimers.push_back({handler, std::chrono::milliseconds(milliseconds),
                           Clock::now() + std::chrono::milliseconds(milliseconds)});
        ++mTimersRegistered;
        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API unregisterTimer(Steinberg::Linux::ITimerHandler* handler) override
    {
        return remove(mTimers, handler);
    }

    Steinberg::tresult PLUGIN_API resizeView(Steinberg::IPlugView*, Steinberg::ViewRect*) override
    {
        return Steinberg::kResultFalse;
    }

    // Runs the loop until `done` holds or `seconds` have passed; gives `done`'s last answer.
    bool runUntil(const std::function<bool()>& done, double seconds = 10.0)
    {
        const Clock::time_point deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                              std::chrono::duration<double>(seconds));
        while (!done())
        {
            if (Clock::now() > deadline)
                return false;
            runOnce();
        }
        return true;
    }

    // Runs the loop until the time point.
    void runUntilTime(Clock::time_point until)
    {
        while (Clock::now() < until)
            runOnce(until);
    }

    // One round: waits for a descriptor until the next timer is due (at most 10 ms, and not past
    // `until`), then calls what is ready.
    void runOnce(Clock::time_point until = Clock::time_point::max())
    {
        std::vector<pollfd> descriptors;
        for (const EventEntry& entry : mEventHandlers)
            descriptors.push_back({entry.fd, POLLIN, 0});
        Clock::time_point next = Clock::now() + std::chrono::milliseconds(10);
        next = std::min(next, until);
        for (const TimerEntry& timer : mTimers)
            next = std::min(next, timer.due);
        const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count();
        poll(descriptors.data(), descriptors.size(), static_cast<int>(std::max<long long>(0, wait)));
        for (const pollfd& descriptor : descriptors)
            if ((descriptor.revents & POLLIN) != 0)
                for (const EventEntry& entry : std::vector<EventEntry>(mEventHandlers))
                    if (entry.fd == descriptor.fd && registered(mEventHandlers, entry.handler))
                        entry.handler->onFDIsSet(entry.fd);
        for (const TimerEntry& timer : std::vector<TimerEntry>(mTimers))
        {
            if (timer.due > Clock::now() || !registered(mTimers, timer.handler))
                continue;
            for (TimerEntry& live : mTimers)
                if (live.handler == timer.handler)
                    live.due = Clock::now() + live.period;
            timer.handler->onTimer();
            ++mTicks;
        }
    }

    // Calls every registered timer once, as if all were due now.
    void fireTimers()
    {
        for (const TimerEntry& timer : std::vector<TimerEntry>(mTimers))
            if (registered(mTimers, timer.handler))
                timer.handler->onTimer();
    }

    // Tells every event handler that its descriptor is ready, whether or not it is.
    void signalDescriptors()
    {
        for (const EventEntry& entry : std::vector<EventEntry>(mEventHandlers))
            if (registered(mEventHandlers, entry.handler))
                entry.handler->onFDIsSet(entry.fd);
    }

    int eventHandlerCount() const { return static_cast<int>(mEventHandlers.size()); }
    int timerCount() const { return static_cast<int>(mTimers.size()); }
    int timersRegistered() const { return mTimersRegistered; }
    int ticks() const { return mTicks; }
    std::chrono::milliseconds timerPeriod(int index) const { return mTimers[index].period; }

    OBJ_METHODS(PollRunLoop, FObject)
    DEFINE_INTERFACES
    DEF_INTERFACE(Steinberg::Linux::IRunLoop)
    DEF_INTERFACE(Steinberg::IPlugFrame)
    END_DEFINE_INTERFACES(FObject)
    REFCOUNT_METHODS(FObject)

private:
    struct EventEntry
    {
        Steinberg::Linux::IEventHandler* handler;
        int fd;
    };
    struct TimerEntry
    {
        Steinberg::Linux::ITimerHandler* handler;
        std::chrono::milliseconds period;
        Clock::time_point due;
    };

    template <typename Entry, typename Handler>
    static bool registered(const std::vector<Entry>& entries, Handler* handler)
    {
        return std::any_of(entries.begin(), entries.end(),
                           [handler](const Entry& entry) { return entry.handler == handler; });
    }

    template <typename Entry, typename Handler>
    static Steinberg::tresult remove(std::vector<Entry>& entries, Handler* handler)
    {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [handler](const Entry& entry) { return entry.handler == handler; });
        if (found == entries.end())
            return Steinberg::kInvalidArgument;
        Handler* removed = found->handler;
        entries.erase(found);
        removed->release();
        return Steinberg::kResultOk;
    }

    std::vector<EventEntry> mEventHandlers;
    std::vector<TimerEntry> mTimers;
    int mTimersRegistered = 0;
    int mTicks = 0;
};

} // namespace velmoran::editorhost
