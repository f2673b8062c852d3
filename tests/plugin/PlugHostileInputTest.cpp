// Calls a careless or hostile host may make, each found by fuzzing: the plug-in answers with a
// refusal instead of throwing, crashing or keeping a value that is no number.

#include "PluginHost.h"

#include "plugin/PlugParameters.h"

#include "pluginterfaces/base/ustring.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace velmoran::test
{
namespace
{

namespace Plug = Vst::Velmoran;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A message as a broken host might pass it: an identifier but no attribute list.
class MessageWithoutAttributes : public IMessage
{
public:
    explicit MessageWithoutAttributes(const char* id) : mId(id) { FUNKNOWN_CTOR }
    virtual ~MessageWithoutAttributes(){FUNKNOWN_DTOR}

    FIDString PLUGIN_API getMessageID() SMTG_OVERRIDE
    {
        return mId.c_str();
    }
    void PLUGIN_API setMessageID(FIDString id) SMTG_OVERRIDE { mId = id ? id : ""; }
    IAttributeList* PLUGIN_API getAttributes() SMTG_OVERRIDE { return nullptr; }

    DECLARE_FUNKNOWN_METHODS

private:
    std::string mId;
};

IMPLEMENT_FUNKNOWN_METHODS(MessageWithoutAttributes, IMessage, IMessage::iid)

class PlugHostileInput : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(plugin.valid()); }

    std::string textOf(ParamID tag, ParamValue value)
    {
        String128 text{};
        if (plugin.controller->getParamStringByValue(tag, value, text) != kResultOk)
        {
            return "(refused)";
        }
        return asciiOf(text);
    }

    PluginInstance plugin{false};
};

class PlugParameterIndexOutOfRange : public PlugHostileInput, public testing::WithParamInterface<int32>
{
};

TEST_P(PlugParameterIndexOutOfRange, IsRefusedWithoutThrowing)
{
    ParameterInfo info{};
    EXPECT_EQ(plugin.controller->getParameterInfo(GetParam(), info), kInvalidArgument);
}

INSTANTIATE_TEST_SUITE_P(Indices, PlugParameterIndexOutOfRange,
                         testing::Values(-1, 70, 98, std::numeric_limits<int32>::min(),
                                         std::numeric_limits<int32>::max()));

class PlugUnitIndexOutOfRange : public PlugHostileInput, public testing::WithParamInterface<int32>
{
};

TEST_P(PlugUnitIndexOutOfRange, IsRefusedWithoutThrowing)
{
    FUnknownPtr<IUnitInfo> units(plugin.controller);
    ASSERT_TRUE(units);
    UnitInfo info{};
    EXPECT_EQ(units->getUnitInfo(GetParam(), info), kInvalidArgument);
}

INSTANTIATE_TEST_SUITE_P(Indices, PlugUnitIndexOutOfRange,
                         testing::Values(-1, 1, std::numeric_limits<int32>::min(),
                                         std::numeric_limits<int32>::max()));

TEST_F(PlugHostileInput, LastParameterAndRootUnitAreStillGiven)
{
    ParameterInfo info{};
    EXPECT_EQ(plugin.controller->getParameterInfo(69, info), kResultOk);
    FUnknownPtr<IUnitInfo> units(plugin.controller);
    UnitInfo unit{};
    EXPECT_EQ(units->getUnitInfo(0, unit), kResultTrue);
    EXPECT_EQ(asciiOf(unit.name), "Root");
}

class PlugValueThatIsNoNumber : public PlugHostileInput, public testing::WithParamInterface<double>
{
};

TEST_P(PlugValueThatIsNoNumber, IsRefusedAndTheParameterKeepsItsValue)
{
    for (ParamID tag : std::initializer_list<ParamID>{Plug::kEqTag, Plug::filterTypeTag(3), Plug::kSoloTag,
                                                      Plug::kPresetTag})
    {
        const ParamValue before = plugin.controller->getParamNormalized(tag);
        EXPECT_EQ(plugin.controller->setParamNormalized(tag, GetParam()), kInvalidArgument) << "tag " << tag;
        EXPECT_EQ(plugin.controller->getParamNormalized(tag), before) << "tag " << tag;
        EXPECT_EQ(textOf(tag, GetParam()), "(refused)") << "tag " << tag;
    }
}

INSTANTIATE_TEST_SUITE_P(Values, PlugValueThatIsNoNumber, testing::Values(kNaN, kInfinity, -kInfinity));

TEST_F(PlugHostileInput, TextsOfValuesBeyondTheRangeAreThoseOfItsEnds)
{
    const ParamID type = Plug::filterTypeTag(1);
    EXPECT_EQ(textOf(type, 1e10), textOf(type, 1.0));
    EXPECT_EQ(textOf(type, -1e10), textOf(type, 0.0));
    EXPECT_EQ(textOf(Plug::kSoloTag, 3e9), textOf(Plug::kSoloTag, 1.0));
    EXPECT_EQ(textOf(Plug::modeTag(2), 5e9), textOf(Plug::modeTag(2), 1.0));
    EXPECT_EQ(textOf(Plug::frequencyTag(4), 1e300), "20000.00 Hz");
}

TEST_F(PlugHostileInput, TextOfAHugeValueFitsTheHostsBuffer)
{
    // The SDK prints such values with hundreds of digits past the end of the 128-character text.
    for (ParamID tag : std::initializer_list<ParamID>{Plug::kPresetTag, Plug::kFftSlopeTag, Plug::qTag(2)})
    {
        EXPECT_EQ(textOf(tag, 1e300), textOf(tag, 1.0)) << "tag " << tag;
        EXPECT_EQ(textOf(tag, -1e300), textOf(tag, 0.0)) << "tag " << tag;
    }
}

class PlugTextThatIsNoNumber : public PlugHostileInput, public testing::WithParamInterface<const char*>
{
};

TEST_P(PlugTextThatIsNoNumber, ReadsAsNoValue)
{
    for (ParamID tag : std::initializer_list<ParamID>{Plug::kPresetTag, Plug::frequencyTag(1), Plug::qTag(5),
                                                      Plug::kSoloTag})
    {
        String128 text{};
        Steinberg::UString(text, 128).fromAscii(GetParam());
        ParamValue value = 0.25;
        EXPECT_EQ(plugin.controller->getParamValueByString(tag, text, value), kResultFalse) << "tag " << tag;
        EXPECT_EQ(value, 0.25) << "tag " << tag;
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, PlugTextThatIsNoNumber,
                         testing::Values("nan", "inf", "-inf", "infinity", "NAN"));

TEST_F(PlugHostileInput, NumbersForAParameterWithoutTextsOfItsOwnAreLimitedToTheRange)
{
    String128 text{};
    Steinberg::UString(text, 128).fromAscii("1e10");
    ParamValue value = 0.25;
    ASSERT_EQ(plugin.controller->getParamValueByString(Plug::kPresetTag, text, value), kResultOk);
    EXPECT_EQ(value, 1.0);
}

TEST_F(PlugHostileInput, MessageWithoutAttributesIsRefusedOnBothSides)
{
    FUnknownPtr<IConnectionPoint> processorPoint(plugin.component);
    FUnknownPtr<IConnectionPoint> controllerPoint(plugin.controller);
    for (const char* id : {"TextMessage", "BinaryMessage", "setActive", "other"})
    {
        auto message = owned(new MessageWithoutAttributes(id));
        EXPECT_NE(processorPoint->notify(message), kResultOk) << id;
        EXPECT_NE(controllerPoint->notify(message), kResultOk) << id;
    }
}

} // namespace
} // namespace velmoran::test
