#include "StateFile.h"

#include "AtomicFile.h"
#include "RenderError.h"
#include "plugin/PlugState.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace velmoran::render
{

namespace
{

constexpr size_t kStateBytes = Steinberg::Vst::Velmoran::kStateValueCount * sizeof(float);

// The value at index of a state, read as little-endian whatever the machine's byte order.
float stateValue(const std::vector<char>& bytes, size_t index)
{
    uint32_t word = 0;
    for (size_t byte = 0; byte < sizeof(word); ++byte)
    {
        word |= uint32_t{static_cast<unsigned char>(bytes[index * sizeof(word) + byte])} << (8 * byte);
    }
    float value = 0.0f;
    std::memcpy(&value, &word, sizeof(value));
    return value;
}

} // namespace

std::vector<char> readStateFile(const std::string& path)
{
    const std::vector<char> bytes = readFileStart(path, kStateBytes + 1);
    const std::string refused = "cannot load the state '" + path + "': ";
    if (bytes.size() != kStateBytes)
    {
        throw RenderError(refused + "it holds " +
                          (bytes.size() > kStateBytes ? "more than " + std::to_string(kStateBytes)
                                                      : std::to_string(bytes.size())) +
                          " bytes; a saved state holds exactly " + std::to_string(kStateBytes) + " (" +
                          std::to_string(Steinberg::Vst::Velmoran::kStateValueCount) + " values)");
    }
    for (size_t index = 0; index < static_cast<size_t>(Steinberg::Vst::Velmoran::kStateValueCount); ++index)
    {
        const float value = stateValue(bytes, index);
        if (!(value >= 0.0f && value <= 1.0f))
        {
            throw RenderError(refused + "value " + std::to_string(index + 1) + " is " +
                              (std::isnan(value) ? std::string("not a number") : std::to_string(value)) +
                              "; every value of a saved state lies in 0..1");
        }
    }
    return bytes;
}

} // namespace velmoran::render
