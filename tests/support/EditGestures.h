#pragma once

#include "sdk/hosting/ComponentHandler.h"

#include <string>
#include <vector>

namespace velmoran::test
{

// The edit calls for one parameter in a host's log, as "begin perform... end": each run of
// performs is folded into one "perform...".
inline std::string gestureOf(const std::vector<Steinberg::Vst::EditCall>& log, Steinberg::Vst::ParamID tag)
{
    using Steinberg::Vst::EditCall;
    static const char* const kNames[] = {"begin", "perform...", "end"};
    std::string calls;
    EditCall::Kind previous = EditCall::kEnd;
    for (const EditCall& call : log)
    {
        if (call.tag != tag || (call.kind == EditCall::kPerform && previous == EditCall::kPerform))
            continue;
        calls += (calls.empty() ? "" : " ") + std::string(kNames[call.kind]);
        previous = call.kind;
    }
    return calls;
}

} // namespace velmoran::test
