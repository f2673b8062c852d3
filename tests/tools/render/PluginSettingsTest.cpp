#include "RenderTestSupport.h"

#include "tools/render/PluginSettings.h"
#include "tools/render/RenderError.h"
#include "tools/render/RenderHost.h"
#include "tools/render/ResponseMeasurement.h"

#include <gtest/gtest.h>

#include <memory>

namespace velmoran::render
{
namespace
{

class PluginSettingsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        mModule = loadModule(test::modulePath());
        mHost = std::make_unique<RenderHost>(*mModule, test::modulePath());
        mCatalogue = std::make_unique<ParameterCatalogue>(mHost->controller());
    }

    // The text the controller shows for a parameter's current value.
    std::string shown(const std::string& title)
    {
        const ParameterEntry& entry = mCatalogue->find(title);
        return mCatalogue->text(entry.tag, mHost->controller().getParamNormalized(entry.tag));
    }

    // The message of the usage error that a call throws, empty if it throws none.
    template <typename Call> std::string usageMessage(Call call)
    {
        const test::Thrown thrown = test::thrownBy(call);
        EXPECT_EQ(thrown.kind, RenderError::Kind::usage);
        return thrown.message;
    }

    std::unique_ptr<VST3::Hosting::Module> mModule;
    std::unique_ptr<RenderHost> mHost;
    std::unique_ptr<ParameterCatalogue> mCatalogue;
};

struct TypedValue
{
    const char* title;
    const char* typed;
    const char* shown; // or, when refused, a part of the message
    bool refused = false;
};

class PluginSettingsValues : public PluginSettingsTest, public testing::WithParamInterface<TypedValue>
{
};

// Titles are found whatever their case and spacing, values are read in the plug-in's own texts; one
// outside the range is refused naming the range (a name that is none of a list's, an unknown title
// and the texts of lists set through the tool in RenderToolTest.cpp).
TEST_P(PluginSettingsValues, ReadInThePluginsOwnTexts)
{
    const TypedValue& value = GetParam();
    const ParameterEntry& entry = mCatalogue->find(value.title);
    if (value.refused)
        EXPECT_TRUE(
            test::contains(usageMessage([&] { mCatalogue->valueOf(entry, value.typed); }), value.shown));
    else
        EXPECT_EQ(mCatalogue->text(entry.tag, mCatalogue->valueOf(entry, value.typed)), value.shown);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PluginSettingsValues,
    testing::Values(TypedValue{"  03 gain ", "+6 dB", "6.00 dB"}, TypedValue{"03 Gain", "-18", "-18.00 dB"},
                    TypedValue{"03 Filt Type", "Peak +3dB", "Peak +3dB"},
                    TypedValue{"03 Filt Type", "lf shelf", "LF Shelf"},
                    TypedValue{"03 Freq", "1000 Hz", "1000.00 Hz"}, TypedValue{"03 Q", "2", "2.00"},
                    TypedValue{"03 Freq", "25 kHz", "from 20.00 Hz to 20000.00 Hz", true}));

// --list-parameters offers exactly what --set accepts: every listed name is taken, and the texts
// that cannot be set back ("[ --- ]" of a mode) or name no band (a listen band of 11 or 12) are not
// listed.
TEST_F(PluginSettingsTest, ListedValuesAreExactlyThoseThatCanBeSet)
{
    for (const ParameterEntry& entry : mCatalogue->entries())
        for (const std::string& name : mCatalogue->allowedValues(entry).names)
            EXPECT_EQ(mCatalogue->text(entry.tag, mCatalogue->valueOf(entry, name)), name) << entry.title;
    EXPECT_FALSE(
        usageMessage([this] { mCatalogue->valueOf(mCatalogue->find("06 Mode"), "[ --- ]"); }).empty());
    EXPECT_FALSE(usageMessage([this] { mCatalogue->valueOf(mCatalogue->find("Solo"), "12"); }).empty());
}

TEST_F(PluginSettingsTest, ProgramsByNumberAndByEitherName)
{
    const std::vector<FactoryProgram> programs = factoryPrograms(mHost->controller());
    EXPECT_EQ(programIndexOf("3", programs), 3);
    EXPECT_EQ(programIndexOf("03 - british eq nv-3", programs), 3);
    EXPECT_EQ(programIndexOf("Factory Preset 03", programs), 3);
    EXPECT_TRUE(
        test::contains(usageMessage([&] { programIndexOf("6", programs); }), "5 \"05 - British EQ SL-2\""));
}

// A preset comes first, then the values in order; nothing is applied when one of them is wrong (a
// saved state loaded into another host is tried through the tool in RenderToolTest.cpp).
TEST_F(PluginSettingsTest, SettingsApplyInOrderOrNotAtAll)
{
    RenderRequest request;
    request.preset = "03 - British EQ NV-3";
    request.assignments = {{"02 Gain", "-3 dB"}, {"02 Gain", "loud"}};
    EXPECT_THROW(applySettings(*mHost, request), RenderError);
    EXPECT_EQ(shown("01 Gain") + " " + shown("02 Gain"), "0.00 dB 0.00 dB");
    request.assignments.pop_back();
    applySettings(*mHost, request);
    EXPECT_EQ(shown("01 Gain") + " " + shown("02 Gain"), "6.00 dB -3.00 dB");
}

struct BandSetting
{
    const char* type;
    const char* gain;
    const char* frequency;
};

class PluginResponse : public PluginSettingsTest, public testing::WithParamInterface<BandSetting>
{
};

TEST_P(PluginResponse, MeasuredThroughTheModuleMatchesTheDesign)
{
    RenderRequest request;
    request.assignments = {{"Input Gain", "0 dB"},
                           {"Output Gain", "0 dB"},
                           {"05 Filt Type", GetParam().type},
                           {"05 Gain", GetParam().gain},
                           {"05 Freq", GetParam().frequency}};
    applySettings(*mHost, request);
    mHost->start(48000.0, 2, 512);
    const std::vector<double> frequencies = logFrequencies(30.0, 18000.0, 12);
    const auto measured = measureResponseDb(*mHost, 48000.0, 512, frequencies);
    std::string note;
    const auto designed = designedResponseDb(mHost->saveState(), 48000.0, frequencies, note);
    EXPECT_TRUE(note.empty()) << note;
    for (size_t point = 0; point < frequencies.size(); ++point)
    {
        EXPECT_NEAR(measured[0][point], designed[0][point], 0.01) << frequencies[point] << " Hz";
        EXPECT_NEAR(measured[1][point], designed[1][point], 0.01) << frequencies[point] << " Hz";
    }
}

INSTANTIATE_TEST_SUITE_P(Bands, PluginResponse,
                         testing::Values(BandSetting{"Pk dB/2", "+9 dB", "800 Hz"},
                                         BandSetting{"LF Shelf", "-6 dB", "200 Hz"},
                                         BandSetting{"Band Pass", "0 dB", "2000 Hz"}));

} // namespace
} // namespace velmoran::render
