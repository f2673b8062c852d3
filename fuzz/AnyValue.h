#pragma once

#include "pluginterfaces/vst/vsttypes.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace velmoran::fuzz
{

// A normalised parameter value as a careless host might send it: in range, any finite double,
// one of the values that trip conversions (NaN, infinities, a denormal, just outside 0..1), a
// raw bit pattern, or an ordinary step so that the audio stays meaningful.
inline Steinberg::Vst::ParamValue anyValue(FuzzedDataProvider& input)
{
    switch (input.ConsumeIntegralInRange(0, 4))
    {
    case 0:
        return input.ConsumeProbability<double>();
    case 1:
        return input.ConsumeFloatingPoint<double>();
    case 2:
        return input.PickValueInArray<double>(
            {std::nan(""), INFINITY, -INFINITY, -0.0, 1e-310, 1.0000001, -1e-9, -1.0, 2.0, 1e300});
    case 3:
    {
        double value = 0.0;
        const std::vector<uint8_t> bytes = input.ConsumeBytes<uint8_t>(sizeof(value));
        if (bytes.size() == sizeof(value))
            std::memcpy(&value, bytes.data(), sizeof(value));
        return value;
    }
    default:
        return input.PickValueInArray<double>({0.0, 0.05, 0.1, 0.25, 0.5, 0.75, 1.0});
    }
}

} // namespace velmoran::fuzz
