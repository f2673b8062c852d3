#include "SpectrumSender.h"

#include "pluginterfaces/vst/ivsthostapplication.h"
#include "pluginterfaces/vst/ivstmessage.h"

#include <chrono>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

SpectrumSender::SpectrumSender(ComponentBase& component, const SpectrumFrame& frame,
                               std::recursive_mutex& linkLock)
    : mComponent(component), mFrame(frame), mLinkLock(linkLock)
{
}

SpectrumSender::~SpectrumSender()
{
    stop();
}

void SpectrumSender::start()
{
    if (mThread.joinable())
    {
        return;
    }
    mStopRequested = false;
    mThread = std::thread([this] { run(); });
}

void SpectrumSender::stop()
{
    if (!mThread.joinable())
    {
        return;
    }
    {
        std::lock_guard<std::mutex> guard(mWakeLock);
        mStopRequested = true;
    }
    mWake.notify_one();
    mThread.join();
}

void SpectrumSender::run()
{
    // The thread clears the flag itself as it ends: that is the other half of the stop handshake.
    std::unique_lock<std::mutex> lock(mWakeLock);
    while (!mWake.wait_for(lock, std::chrono::milliseconds(kPeriodMs), [this] { return mStopRequested.load(); }))
    {
        lock.unlock();
        sendFrame();
        lock.lock();
    }
    mStopRequested = false;
}

void SpectrumSender::sendFrame()
{
    // The lock is held only while the host application and the peer are taken, each with a
    // reference of its own. A host may pass the message to its main thread and wait there, and
    // that thread may be inside disconnect or terminate waiting for the lock: sending under it
    // could deadlock.
    IPtr<IHostApplication> application;
    IPtr<IConnectionPoint> peer;
    {
        std::lock_guard<std::recursive_mutex> guard(mLinkLock);
        application = FUnknownPtr<IHostApplication>(mComponent.getHostContext());
        peer = mComponent.getPeer();
    }
    postFrame(application, peer);
    // The SDK's reference count on Linux reads the count back without atomicity, so two threads
    // must not release one object at once: the references go under the lock that disconnect and
    // terminate release theirs under.
    std::lock_guard<std::recursive_mutex> guard(mLinkLock);
    application = nullptr;
    peer = nullptr;
}

void SpectrumSender::postFrame(IHostApplication* application, IConnectionPoint* peer)
{
    // Without a host context no message can be made; the frame is simply not sent.
    if (!application || !peer)
    {
        return;
    }
    IPtr<IMessage> message = owned(allocateMessage(application));
    if (!message)
    {
        return;
    }
    message->setMessageID("BinaryMessage");
    if (IAttributeList* attributes = message->getAttributes())
    {
        attributes->setBinary("FFTData", &mFrame, kSpectrumFrameBytes);
        peer->notify(message);
    }
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
