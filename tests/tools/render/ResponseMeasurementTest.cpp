#include "tools/render/ResponseMeasurement.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include <gtest/gtest.h>

#include <cstring>

namespace velmoran::render
{
namespace
{

using namespace Steinberg::Vst::Velmoran;

// A state stream of the default settings with some values by tag replaced.
std::vector<char> stateWith(const std::vector<std::pair<ParamID, float>>& changes)
{
    std::vector<char> state(kStateValueCount * sizeof(float));
    for (int index = 0; index < kStateValueCount; ++index)
    {
        const ParamID tag = stateTags()[static_cast<size_t>(index)];
        float value = defaultValue(tag);
        for (const auto& [changedTag, changedValue] : changes)
            value = changedTag == tag ? changedValue : value;
        std::memcpy(state.data() + index * sizeof(float), &value, sizeof(float));
    }
    return state;
}

constexpr float kPlus6Db = 24.0f / 36.0f;

TEST(ResponseMeasurement, FrequenciesSpanTheAudioBandLogarithmically)
{
    const std::vector<double> frequencies = responseFrequencies(48000.0);
    EXPECT_DOUBLE_EQ(frequencies.front(), 20.0);
    EXPECT_NEAR(frequencies.back(), 20000.0, 1e-6);
    EXPECT_NEAR(frequencies[1] / frequencies[0], frequencies[2] / frequencies[1], 1e-9);
    EXPECT_LT(responseFrequencies(32000.0).back(), 16000.0);
}

// The designed curves of whole bands are held against curves measured through the module in
// PluginSettingsTest.cpp, which also holds the measurement of an impulse response's gain.
TEST(ResponseMeasurement, DesignedCurveFollowsGainsChannelModesAndTheEffectSwitch)
{
    std::string note;
    const std::vector<double> frequencies = {1000.0};
    const auto leftOnly = designedResponseDb(stateWith({{gainTag(6), kPlus6Db}, {modeTag(6), 0.25f}}),
                                             48000.0, frequencies, note);
    EXPECT_NEAR(leftOnly[0][0], 6.0 - 0.12, 0.02);
    EXPECT_NEAR(leftOnly[1][0], -0.12, 0.02);
    const auto out =
        designedResponseDb(stateWith({{gainTag(6), kPlus6Db}, {kEqTag, 0.0f}}), 48000.0, frequencies, note);
    EXPECT_EQ(out[0][0], 0.0);
    const auto soloed = designedResponseDb(stateWith({{kSoloTag, 6.0f / 12.0f}}), 48000.0, frequencies, note);
    EXPECT_TRUE(soloed[0].empty());
    EXPECT_FALSE(note.empty());
}

} // namespace
} // namespace velmoran::render
