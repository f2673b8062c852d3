// The controller as a host sees it: parameter list, unit and programs, value texts, presets.

#include "PluginHost.h"

#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include "pluginterfaces/gui/iplugview.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

using PlugController = WithInstance<>;

struct ExpectedParameter
{
    int32 index;
    ParamID tag;
    const char* title;
    int32 stepCount;
    double defaultValue;
    int32 flags;
};

using PlugParameterInfo = WithInstance<testing::TestWithParam<ExpectedParameter>>;

TEST_P(PlugParameterInfo, RegisteredInHostOrder)
{
    const ExpectedParameter& expected = GetParam();
    ASSERT_EQ(plugin.controller->getParameterCount(), 70);
    ParameterInfo info;
    ASSERT_EQ(plugin.controller->getParameterInfo(expected.index, info), kResultOk);
    EXPECT_EQ(info.id, expected.tag);
    EXPECT_EQ(asciiOf(info.title), expected.title);
    EXPECT_EQ(info.stepCount, expected.stepCount);
    EXPECT_NEAR(info.defaultNormalizedValue, expected.defaultValue, 1e-6);
    EXPECT_EQ(info.flags, expected.flags);
    EXPECT_EQ(info.unitId, kRootUnitId);
}

// The first, the ones out of tag order, and the two a host treats apart (program change, bypass).
INSTANTIATE_TEST_SUITE_P(Table, PlugParameterInfo,
                         testing::Values(ExpectedParameter{0, 1, "Input Gain", 0, 0.495, 1},
                                         ExpectedParameter{12, 14, "FFT", 0, 0.0, 1},
                                         ExpectedParameter{15, 57, "Polarity", 0, 0.0, 1},
                                         ExpectedParameter{16, 17, "01 Freq", 0, 0.00056306, 1},
                                         ExpectedParameter{56, 58, "01 Mode", 0, 0.0, 1},
                                         ExpectedParameter{66, 68, "Solo", 0, 0.0, 1},
                                         ExpectedParameter{67, 0, "EQ", 0, 0.99, 1},
                                         ExpectedParameter{68, 69, "Preset", 6, 0.0, 0x8001},
                                         ExpectedParameter{69, 97, "Host Bypass", 1, 0.0, 0x10001}));

// The host's program menu: the root unit's list, of the six factory programs, is the one "Preset" steps
// through.
TEST_F(PlugController, OneRootUnitWithTheFactoryProgramList)
{
    FUnknownPtr<IUnitInfo> units(plugin.controller);
    ASSERT_TRUE(units);
    ASSERT_EQ(units->getUnitCount(), 1);
    UnitInfo unit;
    ASSERT_EQ(units->getUnitInfo(0, unit), kResultOk);
    EXPECT_EQ(unit.programListId, static_cast<ProgramListID>(Plug::kPresetTag));
    ASSERT_EQ(units->getProgramListCount(), 1);
    ProgramListInfo list;
    ASSERT_EQ(units->getProgramListInfo(0, list), kResultOk);
    EXPECT_EQ(list.id, unit.programListId);
    EXPECT_EQ(list.programCount, 6);
    String128 name = {};
    EXPECT_NE(units->getProgramName(70, 0, name), kResultOk);
    EXPECT_NE(units->getProgramName(69, 6, name), kResultOk);
}

struct TextCase
{
    ParamID tag;
    double value;
    const char* text;
};

// A fresh instance per case, so no case can lean on another's edits.
using PlugValueText = WithInstance<testing::TestWithParam<TextCase>>;

TEST_P(PlugValueText, ShownAsTheHostDisplaysIt)
{
    String128 text = {};
    ASSERT_EQ(plugin.controller->getParamStringByValue(GetParam().tag, GetParam().value, text), kResultOk);
    EXPECT_EQ(asciiOf(text), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PlugValueText,
    testing::Values(TextCase{0, 0.99, "In "}, TextCase{0, 0.49, "Out"}, TextCase{1, 0.495, "-0.06 dB"},
                    TextCase{12, 0.495, "-0.06 dB"}, TextCase{12, 1.0, "6.00 dB"},
                    TextCase{2, 0.35, "LF Shelf"}, TextCase{3, 0.025, "No Filter"},
                    TextCase{3, 0.0249, "[ --- ]"}, TextCase{4, 0.1, "Pk dB/2"},
                    TextCase{5, 0.55, "Band Pass"}, TextCase{6, 0.6, "[ --- ]"}, TextCase{13, 1.0, "On "},
                    TextCase{14, 0.0, "Off"}, TextCase{17, 0.0, "20.00 Hz"}, TextCase{26, 1.0, "20000.00 Hz"},
                    TextCase{27, 0.5, "0.00 dB"}, TextCase{36, 0.0, "-18.00 dB"}, TextCase{37, 0.0, "0.30"},
                    TextCase{46, 1.0, "5.00"}, TextCase{47, 0.99, "On "}, TextCase{97, 0.0, "Off"},
                    TextCase{57, 0.0, "Normal "}, TextCase{57, 0.5, "Inverted"}, TextCase{58, 0.0, "Stereo"},
                    TextCase{60, 0.25, "Left"}, TextCase{67, 0.5, "Right"}, TextCase{67, 0.75, "[ --- ]"},
                    TextCase{68, 0.0, "None"}, TextCase{68, 1.0 / 12.0, "01\n"},
                    TextCase{68, 10.0 / 12.0, "10\n"}));

using PlugValueParse = PlugValueText;

TEST_P(PlugValueParse, TextReadsBackAsItsValue)
{
    String128 buffer = {};
    copyAscii(GetParam().text, buffer);
    ParamValue value = -1.0;
    ASSERT_EQ(plugin.controller->getParamValueByString(GetParam().tag, buffer, value), kResultOk);
    EXPECT_NEAR(value, GetParam().value, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PlugValueParse,
    testing::Values(TextCase{0, 1.0, "In"}, TextCase{0, 0.0, "Out"}, TextCase{1, 0.5, "0.00 dB"},
                    TextCase{12, 0.75, "3 dB"}, TextCase{12, 1.0, "+9 dB"}, TextCase{2, 0.35, "LF Shelf"},
                    TextCase{4, 0.5, "high pass"}, TextCase{17, 0.0490490, "1000.00 Hz"},
                    TextCase{27, 0.8333333, "12 dB"}, TextCase{37, 0.4279403, "1.00"}, TextCase{37, 1.0, "5"},
                    TextCase{47, 1.0, "On "}, TextCase{57, 1.0, "Inverted"}, TextCase{60, 0.5, "Right"},
                    TextCase{68, 0.0, "None"}, TextCase{68, 0.25, "03\n"}, TextCase{69, 1.0, "1e10"}));

// Words, and numbers that are no numbers, read as no value and leave the value given alone.
TEST_F(PlugController, TextsThatAreNoValuesAreRefused)
{
    const std::pair<ParamID, const char*> cases[] = {
        {1, "loud"},  {2, "Peak"}, {17, "12 dB"}, {60, "Centre"},   {68, "13"},
        {0, "Maybe"}, {68, "nan"}, {17, "-inf"},  {41, "infinity"}, {69, "NAN"}};
    for (auto [tag, text] : cases)
    {
        String128 buffer = {};
        copyAscii(text, buffer);
        ParamValue value = 0.25;
        EXPECT_EQ(plugin.controller->getParamValueByString(tag, buffer, value), kResultFalse) << tag << text;
        EXPECT_EQ(value, 0.25) << tag << text;
    }
    ParamValue value = 0.0;
    EXPECT_EQ(plugin.controller->getParamValueByString(1, nullptr, value), kInvalidArgument);
    EXPECT_EQ(plugin.controller->getParamStringByValue(1, 0.5, nullptr), kInvalidArgument);
}

struct ProgramCase
{
    const char* name;
    double preset; // normalised "Preset"
    ParamID tag;   // and a value the program sets
    double value;
};

using PlugProgram = testing::TestWithParam<ProgramCase>;

// Chosen after another program, a program loads whole: one closed edit per parameter, which the
// next block takes into the processor.
TEST_P(PlugProgram, LoadsWholeIntoControllerAndProcessor)
{
    PluginInstance plugin;
    ASSERT_TRUE(plugin.valid());
    ASSERT_EQ(plugin.controller->setParamNormalized(Plug::kPresetTag, 0.5), kResultOk); // NV-3
    const int32 editsBefore = plugin.handler->performedEdits();
    ASSERT_EQ(plugin.controller->setParamNormalized(Plug::kPresetTag, GetParam().preset), kResultOk);
    EXPECT_EQ(plugin.handler->openEdits(), 0);
    EXPECT_EQ(plugin.handler->performedEdits() - editsBefore, 68); // tags 0..68 without the unused 13
    EXPECT_NEAR(plugin.controller->getParamNormalized(GetParam().tag), GetParam().value, 1e-6);

    ASSERT_EQ(applyChanges(plugin.processor, &plugin.handler->pendingChanges()), kResultOk);
    const std::vector<float> state = stateValues(plugin.component);
    const auto& tags = Plug::stateTags();
    for (size_t index = 0; index < tags.size(); ++index)
        EXPECT_FLOAT_EQ(state[index], static_cast<float>(plugin.controller->getParamNormalized(tags[index])))
            << "tag " << tags[index];
}

INSTANTIATE_TEST_SUITE_P(
    Programs, PlugProgram,
    testing::Values(ProgramCase{"SeventhStepIsSl2", 5.0 / 7.0, Plug::frequencyTag(4), 0.0629206},
                    ProgramCase{"LastStepIsSl2", 1.0, Plug::frequencyTag(4), 0.0629206},
                    ProgramCase{"DefaultsTurnBandTwoBackOn", 0.0, Plug::enableTag(2), 0.99}),
    [](const testing::TestParamInfo<ProgramCase>& info) { return std::string(info.param.name); });

// Only "editor" names a view, on Windows and on Linux alike.
TEST_F(PlugController, OnlyTheEditorNameGivesAViewAndNoMidiControllerIsMapped)
{
    for (const char* name : {"editor", "other", "Editor", "editor ", ""})
    {
        IPtr<IPlugView> view = owned(plugin.controller->createView(name));
        EXPECT_EQ(view != nullptr, std::strcmp(name, "editor") == 0) << '"' << name << '"';
    }
    EXPECT_EQ(plugin.controller->createView(nullptr), nullptr);
    FUnknownPtr<IMidiMapping> mapping(plugin.controller);
    ASSERT_TRUE(mapping);
    ParamID tag = 0;
    EXPECT_EQ(mapping->getMidiControllerAssignment(0, 0, 7, tag), kResultFalse);
}

// Tags 98 and 99 are the editor's own: a host that sends them changes nothing.
TEST_F(PlugController, ReservedEditorTagsChangeNothing)
{
    for (ParamID reserved : {98u, 99u})
    {
        EXPECT_EQ(plugin.controller->setParamNormalized(reserved, 0.7), kResultFalse);
        EXPECT_EQ(plugin.controller->getParamNormalized(reserved), 0.0);
    }
}

} // namespace
} // namespace velmoran::test
