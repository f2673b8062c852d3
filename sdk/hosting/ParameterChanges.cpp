#include "ParameterChanges.h"

namespace Steinberg
{
namespace Vst
{

ParameterValueQueue::ParameterValueQueue(ParamID paramID) : mParamID(paramID)
{
    FUNKNOWN_CTOR;
}

IMPLEMENT_FUNKNOWN_METHODS(ParameterValueQueue, IParamValueQueue, IParamValueQueue::iid)

void ParameterValueQueue::clear(ParamID paramID)
{
    mParamID = paramID;
    mPoints.clear();
}

int32 PLUGIN_API ParameterValueQueue::getPointCount()
{
    return static_cast<int32>(mPoints.size());
}

tresult PLUGIN_API ParameterValueQueue::getPoint(int32 index, int32& sampleOffset, ParamValue& value)
{
    if (index < 0 || index >= getPointCount())
    {
        return kResultFalse;
    }
    const Point& point = mPoints[static_cast<size_t>(index)];
    sampleOffset = point.sampleOffset;
    value = point.value;
    return kResultTrue;
}

tresult PLUGIN_API ParameterValueQueue::addPoint(int32 sampleOffset, ParamValue value, int32& index)
{
    // A second point at the same offset replaces the first; otherwise points stay sorted.
    size_t position = 0;
    while (position < mPoints.size() && mPoints[position].sampleOffset < sampleOffset)
    {
        ++position;
    }
    if (position < mPoints.size() && mPoints[position].sampleOffset == sampleOffset)
    {
        mPoints[position].value = value;
    }
    else
    {
        mPoints.insert(mPoints.begin() + static_cast<std::ptrdiff_t>(position), Point{sampleOffset, value});
    }
    index = static_cast<int32>(position);
    return kResultTrue;
}

ParameterChanges::ParameterChanges()
{
    FUNKNOWN_CTOR;
}

ParameterChanges::~ParameterChanges()
{
    clearQueue();
}

IMPLEMENT_FUNKNOWN_METHODS(ParameterChanges, IParameterChanges, IParameterChanges::iid)

void ParameterChanges::clearQueue()
{
    for (ParameterValueQueue* queue : mQueues)
    {
        queue->release();
    }
    mQueues.clear();
}

int32 PLUGIN_API ParameterChanges::getParameterCount()
{
    return static_cast<int32>(mQueues.size());
}

IParamValueQueue* PLUGIN_API ParameterChanges::getParameterData(int32 index)
{
    if (index < 0 || index >= getParameterCount())
    {
        return nullptr;
    }
    return mQueues[static_cast<size_t>(index)];
}

IParamValueQueue* PLUGIN_API ParameterChanges::addParameterData(const ParamID& id, int32& index)
{
    for (size_t position = 0; position < mQueues.size(); ++position)
    {
        if (mQueues[position]->getParameterId() == id)
        {
            index = static_cast<int32>(position);
            return mQueues[position];
        }
    }
    mQueues.push_back(new ParameterValueQueue(id));
    index = static_cast<int32>(mQueues.size() - 1);
    return mQueues.back();
}

} // namespace Vst
} // namespace Steinberg
