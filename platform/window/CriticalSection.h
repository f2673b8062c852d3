#pragma once

#include <memory>

namespace velmoran::platform
{

// A lock between threads of the plug-in, the platform's cheapest (a Win32 critical section on
// Windows).
class CriticalSection
{
public:
    CriticalSection();
    ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void enter();
    void leave();

private:
    struct Native;
    std::unique_ptr<Native> mNative;
};

} // namespace velmoran::platform
