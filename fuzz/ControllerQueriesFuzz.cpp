// What a host asks of the controller with numbers it makes up: parameter, unit and program
// information at any index, texts for any value (NaN, infinities, values outside 0..1), values
// for any text, conversions both ways, and any value set on any tag. Nothing may throw or crash,
// and a registered parameter keeps a value in 0..1 with a text.

#include "AnyValue.h"
#include "FuzzHost.h"

#include <fuzzer/FuzzedDataProvider.h>

#include "pluginterfaces/base/ustring.h"
#include "pluginterfaces/vst/ivstmidicontrollers.h"
#include "pluginterfaces/vst/ivstunits.h"

#include <cmath>
#include <cstring>
#include <string>

using namespace velmoran::fuzz;

namespace
{

// A tag: mostly one of the plug-in's (0..99), sometimes any 32-bit number.
ParamID anyTag(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange<ParamID>(0, 99)
                               : input.ConsumeIntegral<ParamID>();
}

// An index: mostly near the valid range, sometimes any 32-bit number.
int32 anyIndex(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange<int32>(-2, 101)
                               : input.ConsumeIntegral<int32>();
}

void askOnce(FuzzedDataProvider& input, IEditController& controller, IUnitInfo& units, IMidiMapping& midi)
{
    String128 text{};
    switch (input.ConsumeIntegralInRange(0, 9))
    {
    case 0:
        controller.getParamStringByValue(anyTag(input), anyValue(input), text);
        break;
    case 1:
    {
        const std::string ascii = input.ConsumeRandomLengthString(200);
        Steinberg::UString(text, 128).fromAscii(ascii.c_str());
        ParamValue value = 0.5;
        if (controller.getParamValueByString(anyTag(input), text, value) == kResultOk)
        {
            require(std::isfinite(value), "a text reads as a finite value");
        }
        break;
    }
    case 2:
        controller.setParamNormalized(anyTag(input), anyValue(input));
        break;
    case 3:
    {
        ParameterInfo info{};
        controller.getParameterInfo(anyIndex(input), info);
        break;
    }
    case 4:
    {
        const ParamID tag = anyTag(input);
        controller.plainParamToNormalized(tag, controller.normalizedParamToPlain(tag, anyValue(input)));
        break;
    }
    case 5:
    {
        UnitInfo info{};
        units.getUnitInfo(anyIndex(input), info);
        ProgramListInfo listInfo{};
        units.getProgramListInfo(anyIndex(input), listInfo);
        break;
    }
    case 6:
        units.getProgramName(anyIndex(input), anyIndex(input), text);
        units.getProgramInfo(anyIndex(input), anyIndex(input), "name", text);
        break;
    case 7:
    {
        UnitID unit = 0;
        units.getUnitByBus(kAudio, kInput, anyIndex(input), anyIndex(input), unit);
        units.hasProgramPitchNames(anyIndex(input), anyIndex(input));
        units.getProgramPitchName(anyIndex(input), anyIndex(input), input.ConsumeIntegral<int16>(), text);
        units.setUnitProgramData(anyIndex(input), anyIndex(input), nullptr);
        break;
    }
    case 8:
    {
        ParamID tag = 0;
        midi.getMidiControllerAssignment(anyIndex(input), input.ConsumeIntegral<int16>(),
                                         input.ConsumeIntegral<CtrlNumber>(), tag);
        break;
    }
    default:
        controller.getParamNormalized(anyTag(input));
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static IPtr<IEditController> controller = makeController();
    require(controller != nullptr, "a controller can be made");
    FUnknownPtr<IUnitInfo> units(controller);
    FUnknownPtr<IMidiMapping> midi(controller);
    require(units && midi, "the controller gives unit information and a MIDI mapping");
    const int32 count = controller->getParameterCount();
    FuzzedDataProvider input(data, size);
    while (input.remaining_bytes() > 0)
    {
        askOnce(input, *controller, *units, *midi);
    }
    for (int32 index = 0; index < count; ++index)
    {
        ParameterInfo info{};
        require(controller->getParameterInfo(index, info) == kResultOk,
                "every parameter has its information");
        const ParamValue value = controller->getParamNormalized(info.id);
        require(value >= 0.0 && value <= 1.0, "a parameter keeps a value in 0..1");
        String128 text{};
        require(controller->getParamStringByValue(info.id, value, text) == kResultOk, "its value has a text");
    }
    return 0;
}
