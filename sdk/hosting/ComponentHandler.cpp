#include "ComponentHandler.h"

namespace Steinberg
{
namespace Vst
{

ComponentHandler::ComponentHandler()
{
    FUNKNOWN_CTOR;
}

IMPLEMENT_FUNKNOWN_METHODS(ComponentHandler, IComponentHandler, IComponentHandler::iid)

tresult PLUGIN_API ComponentHandler::beginEdit(ParamID id)
{
    ++mOpenEdits;
    mEditLog.push_back({EditCall::kBegin, id, 0.0});
    return kResultOk;
}

tresult PLUGIN_API ComponentHandler::performEdit(ParamID id, ParamValue valueNormalized)
{
    ++mPerformedEdits;
    mEditLog.push_back({EditCall::kPerform, id, valueNormalized});
    int32 index = 0;
    if (IParamValueQueue* queue = mChanges.addParameterData(id, index))
    {
        queue->addPoint(0, valueNormalized, index);
    }
    return kResultOk;
}

tresult PLUGIN_API ComponentHandler::endEdit(ParamID id)
{
    --mOpenEdits;
    mEditLog.push_back({EditCall::kEnd, id, 0.0});
    return kResultOk;
}

tresult PLUGIN_API ComponentHandler::restartComponent(int32 /*flags*/)
{
    return kResultOk;
}

} // namespace Vst
} // namespace Steinberg
