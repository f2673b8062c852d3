#pragma once

#include "SpectrumFrame.h"

#include "pluginterfaces/vst/ivsthostapplication.h"
#include "public.sdk/source/vst/vstcomponentbase.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// The processor's spectrum sender: a thread of its own that posts the frame buffer to the
// component's peer as "BinaryMessage" / "FFTData" every 20 ms, from start until stop.
class SpectrumSender
{
public:
    // The component sends through its connection; linkLock guards its host context and peer.
    SpectrumSender(ComponentBase& component, const SpectrumFrame& frame, std::recursive_mutex& linkLock);
    ~SpectrumSender();
    SpectrumSender(const SpectrumSender&) = delete;
    SpectrumSender& operator=(const SpectrumSender&) = delete;

    // Starts the thread (UI thread); throws std::system_error if the system cannot make one.
    void start();
    // Asks the thread to end and waits for it: at once, or after the frame it is sending (UI thread).
    void stop();
    // Interval between two frames in milliseconds.
    static constexpr int kPeriodMs = 20;

private:
    void run();
    void sendFrame();
    void postFrame(IHostApplication* application, IConnectionPoint* peer);

    ComponentBase& mComponent;
    const SpectrumFrame& mFrame;
    std::recursive_mutex& mLinkLock;
    std::atomic<bool> mStopRequested{false};
    // Wakes the thread from its wait between frames when a stop is asked for, so that a host
    // making and dropping instances (a plug-in scan) never waits out a period.
    std::mutex mWakeLock;
    std::condition_variable mWake;
    std::thread mThread;
};

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
