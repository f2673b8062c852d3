#include "CriticalSection.h"

#include <mutex>

namespace velmoran::platform
{

struct CriticalSection::Native
{
    std::mutex mutex;
};

CriticalSection::CriticalSection() : mNative(std::make_unique<Native>()) {}

CriticalSection::~CriticalSection() = default;

void CriticalSection::enter()
{
    mNative->mutex.lock();
}

void CriticalSection::leave()
{
    mNative->mutex.unlock();
}

} // namespace velmoran::platform
