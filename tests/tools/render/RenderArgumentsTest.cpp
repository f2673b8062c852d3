#include "RenderTestSupport.h"

#include "tools/render/RenderArguments.h"

#include <gtest/gtest.h>

namespace velmoran::render
{
namespace
{

using test::contains;

// What the tool's own runs in RenderToolTest.cpp do not show: values after an equals sign, the
// order of the settings, quiet, and a container named (in any case) for an output whose extension names none.
TEST(RenderArguments, TakesSettingsInOrderAndTheContainerByName)
{
    const RenderRequest request = parseArguments({"--set", "03 Gain=+6 dB", "--set=03 Filt Type=Peak +3dB",
                                                  "-q", "--format", "FLAC", "in.wav", "out.take2"});
    ASSERT_EQ(request.assignments.size(), 2u);
    EXPECT_EQ(request.assignments[0].title + "|" + request.assignments[0].value, "03 Gain|+6 dB");
    EXPECT_EQ(request.assignments[1].title + "|" + request.assignments[1].value, "03 Filt Type|Peak +3dB");
    EXPECT_TRUE(request.quiet);
    EXPECT_EQ(request.container, Container::flac);
}

// Help and the demo signal alone are run by the tool's own test.
TEST(RenderArguments, ResponseOrStateAloneNeedNoFiles)
{
    EXPECT_NO_THROW(parseArguments({"--preset", "1", "--response", "nv1.png"}));
    EXPECT_NO_THROW(parseArguments({"--preset", "1", "--save-state", "nv1.state"}));
}

// A bad command line is a usage error whose message names the culprit (more cases, run through
// the tool, in RenderToolTest.cpp).
TEST(RenderArguments, RefusesBadCommandLines)
{
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--block-size", "0", "a.wav", "b.wav"}, "1 to 8192"},
        {{"--block-size", "64k", "a.wav", "b.wav"}, "64k"},
        {{"--sample-format", "12", "a.wav", "b.wav"}, "16, 24, 32 or float"},
        {{"--set", "03 Gain", "a.wav", "b.wav"}, "TITLE=VALUE"},
        {{"a.wav"}, "no output file"},
        {{"a.wav", "b.wav", "c.wav"}, "c.wav"},
        {{"--response", "", "a.wav", "b.wav"}, "--response needs a value, not an empty one"},
        {{"--block-size", "64", "--block-size", "64", "a.wav", "b.wav"}, "--block-size is given twice"},
        {{"--dither", "rect", "a.wav", "b.wav"}, "--dither takes tpdf or none"},
        {{}, "--help"},
        {{"a.wav", "b.wav", "--preset"}, "--preset needs a value"},
    };
    for (const auto& [arguments, named] : cases)
    {
        SCOPED_TRACE(named);
        const test::Thrown thrown = test::thrownBy([&] { parseArguments(arguments); });
        EXPECT_EQ(thrown.kind, RenderError::Kind::usage);
        EXPECT_TRUE(contains(thrown.message, named));
    }
}

} // namespace
} // namespace velmoran::render
