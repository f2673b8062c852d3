// Calls a careless or hostile host may make, each found by fuzzing: the plug-in answers with a
// refusal instead of throwing, crashing or keeping a value that is no number. Messages without
// attributes or without a frame are the notify fuzz target's, which replays them on every run.

#include "PluginHost.h"

#include "plugin/PlugParameters.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

class PlugHostileInput : public WithInstance<>
{
protected:
    std::string textOf(ParamID tag, ParamValue value)
    {
        String128 text{};
        if (plugin.controller->getParamStringByValue(tag, value, text) != kResultOk)
            return "(refused)";
        return asciiOf(text);
    }
};

TEST_F(PlugHostileInput, IndicesOutOfRangeAreRefused)
{
    constexpr int32 kLowest = std::numeric_limits<int32>::min();
    constexpr int32 kHighest = std::numeric_limits<int32>::max();
    for (int32 index : {-1, 70, 98, kLowest, kHighest})
    {
        ParameterInfo info{};
        EXPECT_EQ(plugin.controller->getParameterInfo(index, info), kInvalidArgument) << index;
    }
    FUnknownPtr<IUnitInfo> units(plugin.controller);
    ASSERT_TRUE(units);
    for (int32 index : {-1, 1, kLowest, kHighest})
    {
        UnitInfo info{};
        EXPECT_EQ(units->getUnitInfo(index, info), kInvalidArgument) << index;
    }
}

TEST_F(PlugHostileInput, ValueThatIsNoNumberIsRefusedAndTheParameterKeepsItsValue)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (double value : {std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity})
    {
        for (ParamID tag : std::initializer_list<ParamID>{Plug::kEqTag, Plug::filterTypeTag(3),
                                                          Plug::kSoloTag, Plug::kPresetTag})
        {
            const ParamValue before = plugin.controller->getParamNormalized(tag);
            EXPECT_EQ(plugin.controller->setParamNormalized(tag, value), kInvalidArgument)
                << tag << " " << value;
            EXPECT_EQ(plugin.controller->getParamNormalized(tag), before) << tag << " " << value;
            EXPECT_EQ(textOf(tag, value), "(refused)") << tag << " " << value;
        }
    }
}

// The SDK would print a huge value with hundreds of digits past the end of the host's 128-character
// text; values beyond the range read as its ends.
TEST_F(PlugHostileInput, TextsOfValuesBeyondTheRangeAreThoseOfItsEnds)
{
    for (ParamID tag :
         std::initializer_list<ParamID>{Plug::filterTypeTag(1), Plug::kSoloTag, Plug::modeTag(2),
                                        Plug::kPresetTag, Plug::kFftSlopeTag, Plug::qTag(2)})
    {
        for (double beyond : {1e10, 3e9, 1e300})
        {
            EXPECT_EQ(textOf(tag, beyond), textOf(tag, 1.0)) << "tag " << tag << " value " << beyond;
            EXPECT_EQ(textOf(tag, -beyond), textOf(tag, 0.0)) << "tag " << tag << " value " << -beyond;
        }
    }
    EXPECT_EQ(textOf(Plug::frequencyTag(4), 1e300), "20000.00 Hz");
}

} // namespace
} // namespace velmoran::test
