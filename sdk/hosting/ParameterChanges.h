#pragma once

#include "base/source/fobject.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"

#include <vector>

namespace Steinberg
{
namespace Vst
{

// The points of one parameter within one block, kept in order of sample offset.
class ParameterValueQueue : public IParamValueQueue
{
public:
    explicit ParameterValueQueue(ParamID paramID);
    virtual ~ParameterValueQueue() = default;

    // Starts the queue again for another parameter, without points.
    void clear(ParamID paramID);

    ParamID PLUGIN_API getParameterId() SMTG_OVERRIDE { return mParamID; }
    int32 PLUGIN_API getPointCount() SMTG_OVERRIDE;
    tresult PLUGIN_API getPoint(int32 index, int32& sampleOffset, ParamValue& value) SMTG_OVERRIDE;
    tresult PLUGIN_API addPoint(int32 sampleOffset, ParamValue value, int32& index) SMTG_OVERRIDE;

    DECLARE_FUNKNOWN_METHODS

private:
    struct Point
    {
        int32 sampleOffset;
        ParamValue value;
    };

    ParamID mParamID;
    std::vector<Point> mPoints;
};

// The parameter changes of one block: one queue per parameter, in order of first change.
class ParameterChanges : public IParameterChanges
{
public:
    ParameterChanges();
    virtual ~ParameterChanges();

    // Drops every queue, ready for the next block.
    void clearQueue();

    int32 PLUGIN_API getParameterCount() SMTG_OVERRIDE;
    IParamValueQueue* PLUGIN_API getParameterData(int32 index) SMTG_OVERRIDE;
    IParamValueQueue* PLUGIN_API addParameterData(const ParamID& id, int32& index) SMTG_OVERRIDE;

    DECLARE_FUNKNOWN_METHODS

private:
    std::vector<ParameterValueQueue*> mQueues;
};

} // namespace Vst
} // namespace Steinberg
