#pragma once

#include "ParameterChanges.h"

#include "pluginterfaces/vst/ivsteditcontroller.h"

#include <vector>

namespace Steinberg
{
namespace Vst
{

// One call of the controller's edit protocol as the host received it.
struct EditCall
{
    enum Kind
    {
        kBegin,
        kPerform,
        kEnd
    };

    Kind kind;
    ParamID tag;
    ParamValue value; // normalised 0..1 for kPerform, 0 for kBegin and kEnd

    bool operator==(const EditCall& other) const
    {
        return kind == other.kind && tag == other.tag && value == other.value;
    }
};

// A host's component handler: collects the controller's edits as parameter changes for the next
// block, at sample offset 0, and counts and logs the edit calls so that their pairing and order
// can be checked.
class ComponentHandler : public IComponentHandler
{
public:
    ComponentHandler();
    virtual ~ComponentHandler() = default;

    // The edits collected since the last clearQueue, for the processor's next block.
    ParameterChanges& pendingChanges() { return mChanges; }
    // Number of beginEdit calls not yet closed by endEdit (0 when every edit is closed).
    int32 openEdits() const { return mOpenEdits; }
    // Number of performEdit calls received so far.
    int32 performedEdits() const { return mPerformedEdits; }
    // Every beginEdit, performEdit and endEdit since the last clearEditLog, in the order received.
    const std::vector<EditCall>& editLog() const { return mEditLog; }
    void clearEditLog() { mEditLog.clear(); }

    tresult PLUGIN_API beginEdit(ParamID id) SMTG_OVERRIDE;
    tresult PLUGIN_API performEdit(ParamID id, ParamValue valueNormalized) SMTG_OVERRIDE;
    tresult PLUGIN_API endEdit(ParamID id) SMTG_OVERRIDE;
    tresult PLUGIN_API restartComponent(int32 flags) SMTG_OVERRIDE;

    DECLARE_FUNKNOWN_METHODS

private:
    ParameterChanges mChanges;
    std::vector<EditCall> mEditLog;
    int32 mOpenEdits = 0;
    int32 mPerformedEdits = 0;
};

} // namespace Vst
} // namespace Steinberg
