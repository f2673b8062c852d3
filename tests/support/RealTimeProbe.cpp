#include "RealTimeProbe.h"

#include <pthread.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

// The C library's own entry points, which the replacements below pass every call on to. The
// lock functions are bound by version: their plain names are the ones replaced here.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* pointer, size_t size);
extern "C" void* __libc_memalign(size_t alignment, size_t size);
extern "C" void __libc_free(void* pointer);
extern "C" int velmoranMutexLock(pthread_mutex_t* mutex);
extern "C" int velmoranMutexTrylock(pthread_mutex_t* mutex);
extern "C" int velmoranRwlockRdlock(pthread_rwlock_t* lock);
extern "C" int velmoranRwlockWrlock(pthread_rwlock_t* lock);
__asm__(".symver velmoranMutexLock, __pthread_mutex_lock@GLIBC_2.2.5");
__asm__(".symver velmoranMutexTrylock, __pthread_mutex_trylock@GLIBC_2.2.5");
__asm__(".symver velmoranRwlockRdlock, __pthread_rwlock_rdlock@GLIBC_2.2.5");
__asm__(".symver velmoranRwlockWrlock, __pthread_rwlock_wrlock@GLIBC_2.2.5");

namespace
{

// Initial-exec thread-local data of the program itself: reading it never allocates.
thread_local bool tArmed = false;
thread_local velmoran::test::RealTimeCounts tCounts;

void countAllocation()
{
    if (tArmed)
        ++tCounts.allocations;
}

void countFree(void* pointer)
{
    if (tArmed && pointer)
        ++tCounts.frees;
}

void countLock()
{
    if (tArmed)
        ++tCounts.locks;
}

} // namespace

namespace velmoran::test
{

void armRealTimeProbe()
{
    tCounts = RealTimeCounts{};
    tArmed = true;
}

RealTimeCounts disarmRealTimeProbe()
{
    tArmed = false;
    return tCounts;
}

} // namespace velmoran::test

extern "C"
{

    void* malloc(size_t size)
    {
        countAllocation();
        return __libc_malloc(size);
    }

    void* calloc(size_t count, size_t size)
    {
        countAllocation();
        return __libc_calloc(count, size);
    }

    void* realloc(void* pointer, size_t size)
    {
        countAllocation();
        return __libc_realloc(pointer, size);
    }

    void* memalign(size_t alignment, size_t size)
    {
        countAllocation();
        return __libc_memalign(alignment, size);
    }

    void* aligned_alloc(size_t alignment, size_t size)
    {
        countAllocation();
        return __libc_memalign(alignment, size);
    }

    int posix_memalign(void** result, size_t alignment, size_t size)
    {
        countAllocation();
        void* pointer = __libc_memalign(alignment, size);
        if (!pointer)
            return ENOMEM;
        *result = pointer;
        return 0;
    }

    void free(void* pointer)
    {
        countFree(pointer);
        __libc_free(pointer);
    }

    int pthread_mutex_lock(pthread_mutex_t* mutex)
    {
        countLock();
        return velmoranMutexLock(mutex);
    }

    int pthread_mutex_trylock(pthread_mutex_t* mutex)
    {
        countLock();
        return velmoranMutexTrylock(mutex);
    }

    int pthread_rwlock_rdlock(pthread_rwlock_t* lock)
    {
        countLock();
        return velmoranRwlockRdlock(lock);
    }

    int pthread_rwlock_wrlock(pthread_rwlock_t* lock)
    {
        countLock();
        return velmoranRwlockWrlock(lock);
    }

} // extern "C"
