#pragma once

// Reference counting for the tests' host-side objects that the processor's sender thread holds
// and releases while the main thread does too. The SDK's own counting reads the count back
// without atomicity on Linux, which ThreadSanitizer rightly reports; a host counts atomically.

#include "pluginterfaces/base/funknown.h"

#include <atomic>

// Inside a class implementing exactly one interface: addRef, release and queryInterface for it.
#define VELMORAN_ATOMIC_REFERENCES(Interface)                                                                \
public:                                                                                                      \
    Steinberg::uint32 PLUGIN_API addRef() SMTG_OVERRIDE                                                      \
    {                                                                                                        \
        return ++mAtomicReferences;                                                                          \
    }                                                                                                        \
    Steinberg::uint32 PLUGIN_API release() SMTG_OVERRIDE                                                     \
    {                                                                                                        \
        const Steinberg::uint32 left = --mAtomicReferences;                                                  \
        if (left == 0)                                                                                       \
        {                                                                                                    \
            delete this;                                                                                     \
        }                                                                                                    \
        return left;                                                                                         \
    }                                                                                                        \
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** object) SMTG_OVERRIDE     \
    {                                                                                                        \
        QUERY_INTERFACE(iid, object, Steinberg::FUnknown::iid, Interface)                                    \
        QUERY_INTERFACE(iid, object, Interface::iid, Interface)                                              \
        *object = nullptr;                                                                                   \
        return Steinberg::kNoInterface;                                                                      \
    }                                                                                                        \
                                                                                                             \
private:                                                                                                     \
    std::atomic<Steinberg::uint32> mAtomicReferences{1};
