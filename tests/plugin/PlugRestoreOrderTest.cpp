// A saved project reopened in the orders hosts restore it: the user's values always win over the
// program choice the host replays, and a program chosen live still loads in full.

#include "PluginHost.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

constexpr double kBritishNv2 = 2.0 / 7.0;
constexpr double kRaisedGain = 0.9;

// What a host saved of a project in which the user chose "Factory Preset 02" and then raised
// "05 Gain".
struct SavedProject
{
    std::vector<char> processorState;
    std::vector<char> controllerState;
    double preset = 0.0;
};

// A user's edit as a host passes it on: to the controller and, in the next block, to the processor.
void userEdit(PluginInstance& plugin, ParamID tag, ParamValue value)
{
    ASSERT_EQ(plugin.controller->setParamNormalized(tag, value), kResultOk);
    plugin.handler->pendingChanges().clearQueue();
    ASSERT_EQ(applyChanges(plugin.processor, changesOf({{tag, value}})), kResultOk);
}

SavedProject userProject()
{
    PluginInstance plugin;
    EXPECT_TRUE(plugin.valid());
    plugin.controller->setParamNormalized(Plug::kPresetTag, kBritishNv2);
    applyChanges(plugin.processor, &plugin.handler->pendingChanges());
    plugin.handler->pendingChanges().clearQueue();
    userEdit(plugin, Plug::gainTag(5), kRaisedGain);
    return {stateBytes(plugin.component), stateBytes(plugin.controller),
            plugin.controller->getParamNormalized(Plug::kPresetTag)};
}

using RestoreStep = std::function<void(PluginInstance&, const SavedProject&)>;

void replayPreset(PluginInstance& plugin, const SavedProject& saved)
{
    plugin.controller->setParamNormalized(Plug::kPresetTag, saved.preset);
}
void processorState(PluginInstance& plugin, const SavedProject& saved)
{
    ASSERT_EQ(plugin.component->setState(streamOf(saved.processorState)), kResultOk);
}
void controllerComponentState(PluginInstance& plugin, const SavedProject& saved)
{
    ASSERT_EQ(plugin.controller->setComponentState(streamOf(saved.processorState)), kResultOk);
}
void controllerOwnState(PluginInstance& plugin, const SavedProject& saved)
{
    ASSERT_EQ(plugin.controller->setState(streamOf(saved.controllerState)), kResultOk);
}

struct HostOrder
{
    const char* name;
    std::vector<RestoreStep> steps;
};

// A fresh instance reopening the user's project in the host's order; the host then passes what the
// controller reported on to the processor's first block.
class PlugRestoreOrder : public testing::TestWithParam<HostOrder>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(plugin.valid());
        for (const RestoreStep& step : GetParam().steps)
            step(plugin, saved);
        ASSERT_EQ(applyChanges(plugin.processor, &plugin.handler->pendingChanges()), kResultOk);
        plugin.handler->pendingChanges().clearQueue();
    }

    const SavedProject saved = userProject();
    PluginInstance plugin;
};

TEST_P(PlugRestoreOrder, SavedValuesWinOverTheReplayedProgram)
{
    EXPECT_EQ(plugin.handler->openEdits(), 0);
    EXPECT_EQ(stateBytes(plugin.component), saved.processorState);
    EXPECT_NEAR(plugin.controller->getParamNormalized(Plug::gainTag(5)), kRaisedGain, 1e-7);
    const std::vector<float> restored = stateValues(plugin.component);
    const auto& tags = Plug::stateTags();
    for (size_t index = 0; index < tags.size(); ++index)
        EXPECT_FLOAT_EQ(static_cast<float>(plugin.controller->getParamNormalized(tags[index])),
                        restored[index])
            << "tag " << tags[index];

    // Once the user works on, choosing the saved program again loads it whole: one edit per
    // parameter (which the next block takes into the processor, as the program test shows).
    userEdit(plugin, Plug::gainTag(6), 0.75);
    const int32 editsBefore = plugin.handler->performedEdits();
    ASSERT_EQ(plugin.controller->setParamNormalized(Plug::kPresetTag, kBritishNv2), kResultOk);
    EXPECT_EQ(plugin.handler->performedEdits() - editsBefore, 68); // tags 0..68 without the unused 13
    EXPECT_DOUBLE_EQ(plugin.controller->getParamNormalized(Plug::gainTag(5)), 0.5); // the program's 0 dB
}

// Right after a reopened project, choosing another program loads it whole.
TEST_P(PlugRestoreOrder, AnotherProgramChosenRightAfterLoadsWhole)
{
    const int32 editsBefore = plugin.handler->performedEdits();
    ASSERT_EQ(plugin.controller->setParamNormalized(Plug::kPresetTag, 3.0 / 7.0), kResultOk); // NV-3
    EXPECT_EQ(plugin.handler->performedEdits() - editsBefore, 68);
    EXPECT_DOUBLE_EQ(plugin.controller->getParamNormalized(Plug::enableTag(2)), 0.0); // NV-3 has band 2 off
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, PlugRestoreOrder,
    testing::Values(
        // Ardour 7: the saved "Preset" first, then the states.
        HostOrder{"ParametersBeforeState",
                  {replayPreset, processorState, controllerComponentState, controllerOwnState}},
        HostOrder{"ParametersBeforeStateWithoutControllerState",
                  {replayPreset, processorState, controllerComponentState}},
        HostOrder{"StateBeforeParameters",
                  {processorState, controllerComponentState, controllerOwnState, replayPreset}},
        HostOrder{"ControllerStateBeforeProcessorState",
                  {controllerOwnState, controllerComponentState, processorState, replayPreset}},
        HostOrder{"StateOnly", {processorState, controllerComponentState, controllerOwnState}}),
    [](const testing::TestParamInfo<HostOrder>& info) { return std::string(info.param.name); });

// A damaged controller state is refused and changes nothing; an older project without one loads.
TEST(PlugControllerState, DamagedStreamsAreRefused)
{
    PluginInstance plugin;
    ASSERT_TRUE(plugin.valid());
    for (const std::vector<char>& bytes : {std::vector<char>{}, std::vector<char>{1, 2},
                                           std::vector<char>{0, 0, static_cast<char>(0xc0), 0x7f}})
        EXPECT_EQ(plugin.controller->setState(streamOf(bytes)), kResultFalse);
    EXPECT_EQ(plugin.controller->getParamNormalized(Plug::kPresetTag), 0.0);
    EXPECT_EQ(plugin.handler->performedEdits(), 0);
}

} // namespace
} // namespace velmoran::test
