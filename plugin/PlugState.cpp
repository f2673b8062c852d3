#include "PlugState.h"

#include "PlugParameters.h"

#include <algorithm>
#include <cmath>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

std::array<ParamID, kStateValueCount> makeStateTags()
{
    std::array<ParamID, kStateValueCount> tags{};
    int index = 0;
    tags[index++] = kInputGainTag;
    for (int band = 1; band <= kBandCount; ++band)
    {
        tags[index++] = filterTypeTag(band);
    }
    tags[index++] = kOutputGainTag;
    tags[index++] = kFftTag;
    tags[index++] = kFftSourceTag;
    tags[index++] = kFftSlopeTag;
    tags[index++] = kPolarityTag;
    for (auto tagOf : {frequencyTag, gainTag, qTag, enableTag})
    {
        for (int band = 1; band <= kBandCount; ++band)
        {
            tags[index++] = tagOf(band);
        }
    }
    tags[index++] = kEqTag;
    tags[index++] = kHostBypassTag;
    for (int band = 1; band <= kBandCount; ++band)
    {
        tags[index++] = modeTag(band);
    }
    tags[index++] = kSoloTag;
    return tags;
}

// One float from the stream; false unless all four bytes were read and form a number.
bool readValue(IBStream* stream, float& value)
{
    float read = 0.0f;
    int32 bytesRead = 0;
    if (stream->read(&read, sizeof(read), &bytesRead) != kResultOk || bytesRead != sizeof(read) ||
        !std::isfinite(read))
    {
        return false;
    }
    value = std::clamp(read, 0.0f, 1.0f);
    return true;
}

} // namespace

const std::array<ParamID, kStateValueCount>& stateTags()
{
    static const std::array<ParamID, kStateValueCount> tags = makeStateTags();
    return tags;
}

bool readState(IBStream* stream, StateValues& state)
{
    state.count = 0;
    if (!stream)
    {
        return false;
    }
    for (float& value : state.values)
    {
        if (!readValue(stream, value))
        {
            break;
        }
        ++state.count;
    }
    return state.count >= kRequiredStateValueCount;
}

tresult writeState(IBStream* stream, const float* valuesByTag)
{
    if (!stream || !valuesByTag)
    {
        return kInvalidArgument;
    }
    for (ParamID tag : stateTags())
    {
        float value = valuesByTag[tag];
        int32 bytesWritten = 0;
        if (stream->write(&value, sizeof(value), &bytesWritten) != kResultOk || bytesWritten != sizeof(value))
        {
            return kResultFalse;
        }
    }
    return kResultOk;
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
