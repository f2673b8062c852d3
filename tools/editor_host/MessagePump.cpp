#include "MessagePump.h"

#include <windows.h>

#include <algorithm>
#include <cmath>

namespace velmoran::editorhost
{

namespace
{

using Clock = std::chrono::steady_clock;

// Milliseconds from now until `until`, rounded up, 0 when it has passed.
DWORD millisecondsUntil(Clock::time_point until)
{
    const std::chrono::duration<double, std::milli> left = until - Clock::now();
    return static_cast<DWORD>(std::max(0.0, std::ceil(left.count())));
}

} // namespace

void pumpMessagesUntil(Clock::time_point until)
{
    do
    {
        MSG message;
        while (Clock::now() < until && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        MsgWaitForMultipleObjectsEx(0, nullptr, millisecondsUntil(until), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    } while (Clock::now() < until);
}

} // namespace velmoran::editorhost
