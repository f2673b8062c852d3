#pragma once

// Counts what real-time code must never do, on the calling thread only: heap allocations, frees
// and mutex or read-write lock acquisitions. The program that links RealTimeProbe.cpp takes over
// malloc, free and the pthread lock calls for the whole process, including any module it loads,
// so it cannot be combined with a sanitizer.

namespace velmoran::test
{

struct RealTimeCounts
{
    long allocations = 0;
    long frees = 0;
    long locks = 0;
};

// Starts counting on the calling thread from zero.
void armRealTimeProbe();
// Stops counting on the calling thread and gives what was counted since arming.
RealTimeCounts disarmRealTimeProbe();

} // namespace velmoran::test
