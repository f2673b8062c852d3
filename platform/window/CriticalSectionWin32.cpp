#include "CriticalSection.h"

#include <windows.h>

namespace velmoran::platform
{

struct CriticalSection::Native
{
    CRITICAL_SECTION section;
};

CriticalSection::CriticalSection() : mNative(std::make_unique<Native>())
{
    InitializeCriticalSection(&mNative->section);
}

CriticalSection::~CriticalSection()
{
    DeleteCriticalSection(&mNative->section);
}

void CriticalSection::enter()
{
    EnterCriticalSection(&mNative->section);
}

void CriticalSection::leave()
{
    LeaveCriticalSection(&mNative->section);
}

} // namespace velmoran::platform
