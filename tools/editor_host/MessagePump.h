#pragma once

#include <chrono>

namespace velmoran::editorhost
{

// Handles the thread's window messages until `until`, waiting for new ones in between. The time
// limit also ends the loop when a window never validates its area and WM_PAINT keeps coming.
void pumpMessagesUntil(std::chrono::steady_clock::time_point until);

} // namespace velmoran::editorhost
