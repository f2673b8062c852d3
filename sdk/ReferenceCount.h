#pragma once

#include "base/source/fobject.h"

namespace Steinberg
{

// Drops one reference of `object`, deletes it when none is left, and gives the references left.
// FObject::release reads the count again after its decrement, which touches freed memory when
// another thread (the spectrum sender, the host's main thread) dropped the last one in between;
// this gives what the decrement itself gave.
inline uint32 releaseReference(FObject* object, int32& referenceCount)
{
    const int32 left = FUnknownPrivate::atomicAdd(referenceCount, -1);
    if (left == 0)
    {
        delete object;
        return 0;
    }
    return static_cast<uint32>(left);
}

} // namespace Steinberg

// addRef and release of a class derived from FObject, for objects released from several threads.
#define VELMORAN_REFCOUNT_METHODS(BaseClass)                                                                 \
    Steinberg::uint32 PLUGIN_API addRef() SMTG_OVERRIDE                                                      \
    {                                                                                                        \
        return BaseClass::addRef();                                                                          \
    }                                                                                                        \
    Steinberg::uint32 PLUGIN_API release() SMTG_OVERRIDE                                                     \
    {                                                                                                        \
        return Steinberg::releaseReference(this, refCount);                                                  \
    }
