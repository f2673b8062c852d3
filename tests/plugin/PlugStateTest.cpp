// The saved state: its bytes, older and cut streams, and short ones refused on both sides. A whole
// state's round trip is the restore order test's; random, NaN and out-of-range streams are the
// processor and controller state fuzz targets' (their corpus holds each kind).

#include "PluginHost.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

// A state of 69 distinct values, each a valid normalised value.
std::vector<float> distinctState()
{
    std::vector<float> values(Plug::kStateValueCount);
    for (size_t index = 0; index < values.size(); ++index)
        values[index] = static_cast<float>(index + 1) / 128.0f;
    return values;
}

using PlugState = WithInstance<>;

// Saved projects depend on the order: the defaults below mark where the groups of values lie.
TEST_F(PlugState, DefaultStateIs276BytesInDocumentedOrder)
{
    ASSERT_EQ(stateBytes(plugin.component).size(), 276u);
    const std::vector<float> values = stateValues(plugin.component);
    EXPECT_FLOAT_EQ(values[0], 0.495f);          // Input Gain
    EXPECT_FLOAT_EQ(values[1], 0.35f);           // 01 Filt Type: LF Shelf
    EXPECT_FLOAT_EQ(values[10], 0.4f);           // 10 Filt Type: HF Shelf
    EXPECT_FLOAT_EQ(values[11], 0.495f);         // Output Gain
    EXPECT_FLOAT_EQ(values[14], 0.99f);          // FFT Slope
    EXPECT_NEAR(values[16], 0.00056306f, 1e-8f); // 01 Freq: 31.25 Hz
    EXPECT_NEAR(values[25], 0.79979980f, 1e-7f); // 10 Freq: 16 kHz
    EXPECT_FLOAT_EQ(values[26], 0.5f);           // 01 Gain
    EXPECT_NEAR(values[36], 0.42794f, 1e-5f);    // 01 Q: 1.0
    EXPECT_FLOAT_EQ(values[46], 0.99f);          // 01 Enable
    EXPECT_FLOAT_EQ(values[56], 0.99f);          // EQ
}

// An earlier version's shorter state loads and keeps bypass, modes and solo as they were; a cut
// extension loads the values that are whole.
TEST_F(PlugState, EarlierAndPartialStatesKeepWhatTheyDoNotHold)
{
    // Bypass, two modes and solo away from their defaults.
    ASSERT_EQ(applyChanges(plugin.processor, changesOf({{Plug::kHostBypassTag, 1.0},
                                                        {Plug::modeTag(3), 0.5},
                                                        {Plug::modeTag(10), 0.25},
                                                        {Plug::kSoloTag, 7.0 / 12.0}})),
              kResultOk);
    const std::vector<float> before = stateValues(plugin.component);
    const std::vector<float> values = distinctState();
    const std::vector<float> older(values.begin(), values.begin() + Plug::kRequiredStateValueCount);
    ASSERT_EQ(plugin.component->setState(streamOf(older)), kResultOk);
    std::vector<float> after = stateValues(plugin.component);
    for (size_t index = 0; index < after.size(); ++index)
        EXPECT_FLOAT_EQ(after[index], index < older.size() ? older[index] : before[index])
            << "index " << index;
    EXPECT_FLOAT_EQ(after[57], 1.0f);
    EXPECT_FLOAT_EQ(after[68], 7.0f / 12.0f);

    std::vector<char> bytes(values.size() * sizeof(float));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    bytes.resize(58 * sizeof(float) + 2); // bypass whole, first mode cut
    ASSERT_EQ(plugin.component->setState(streamOf(bytes)), kResultOk);
    after = stateValues(plugin.component);
    EXPECT_FLOAT_EQ(after[57], values[57]);
    EXPECT_FLOAT_EQ(after[60], 0.5f); // 03 Mode kept
}

using PlugDamagedState = WithInstance<testing::TestWithParam<size_t>>;

// A stream short of the oldest state is refused by the processor and by the controller alike, and
// changes nothing on either side.
TEST_P(PlugDamagedState, ShortStreamIsRefusedAndChangesNothing)
{
    const std::vector<char> before = stateBytes(plugin.component);
    std::vector<char> bytes(GetParam());
    for (size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<char>(0x3E + (index % 3 == 0 ? 1 : 0));
    EXPECT_EQ(plugin.component->setState(streamOf(bytes)), kResultFalse);
    EXPECT_EQ(stateBytes(plugin.component), before);
    EXPECT_EQ(plugin.controller->setComponentState(streamOf(bytes)), kResultFalse);
    EXPECT_DOUBLE_EQ(plugin.controller->getParamNormalized(Plug::kInputGainTag), 0.495f);
}

TEST_F(PlugState, NoStreamIsRefusedOnBothSides)
{
    EXPECT_EQ(plugin.component->setState(nullptr), kResultFalse);
    EXPECT_EQ(plugin.controller->setComponentState(nullptr), kResultFalse);
}

// 224 bytes are 56 floats, one short of the oldest state; 227 leaves the last float incomplete.
INSTANTIATE_TEST_SUITE_P(Lengths, PlugDamagedState, testing::Values(0u, 224u, 227u));

} // namespace
} // namespace velmoran::test
