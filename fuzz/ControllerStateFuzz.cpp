// The controller's setComponentState with any stream: a stream that the processor would refuse
// leaves every parameter at its default; any other sets the parameters it holds, limited to
// 0..1. Every parameter keeps a value in 0..1 and a text.

#include "FuzzHost.h"

#include <cmath>

using namespace velmoran::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    IPtr<IEditController> controller = makeController();
    require(controller != nullptr, "a controller can be made");
    const int32 count = controller->getParameterCount();
    std::vector<ParamValue> defaults;
    for (int32 index = 0; index < count; ++index)
    {
        ParameterInfo info{};
        require(controller->getParameterInfo(index, info) == kResultOk,
                "every parameter has its information");
        defaults.push_back(controller->getParamNormalized(info.id));
    }
    const tresult result = controller->setComponentState(streamOver(data, size));
    require(result == kResultOk || result == kResultFalse, "a state is either taken or refused");
    for (int32 index = 0; index < count; ++index)
    {
        ParameterInfo info{};
        controller->getParameterInfo(index, info);
        const ParamValue value = controller->getParamNormalized(info.id);
        require(value >= 0.0 && value <= 1.0, "every parameter keeps a value in 0..1");
        if (result != kResultOk)
        {
            require(value == defaults[static_cast<size_t>(index)], "a refused state changes nothing");
        }
        String128 text{};
        require(controller->getParamStringByValue(info.id, value, text) == kResultOk,
                "every value has a text");
    }
    controller->terminate();
    return 0;
}
