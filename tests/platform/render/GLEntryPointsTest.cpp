#include "RenderTestWindow.h"

#include <gtest/gtest.h>

#include <functional>

using velmoran::platform::GLEntryPoints;

namespace
{

struct EntryPointCase
{
    const char* name;
    std::function<void(GLEntryPoints&)> clear;
    bool stopsTheRenderer;
};

// With a renderer open, so that the table is loaded.
class EntryPoints : public velmoran::test::RendererTest, public ::testing::WithParamInterface<EntryPointCase>
{
};

TEST_P(EntryPoints, OnlyTheTestedSetStopsTheRenderer)
{
    GLEntryPoints table = velmoran::platform::gGL;
    ASSERT_FALSE(velmoran::platform::requiredEntryPointsMissing(table));
    GetParam().clear(table);
    EXPECT_EQ(velmoran::platform::requiredEntryPointsMissing(table), GetParam().stopsTheRenderer);
}

INSTANTIATE_TEST_SUITE_P(
    Functions, EntryPoints,
    ::testing::Values(
        EntryPointCase{"glGenBuffers", [](GLEntryPoints& t) { t.glGenBuffers = nullptr; }, false},
        EntryPointCase{"glBindBuffer", [](GLEntryPoints& t) { t.glBindBuffer = nullptr; }, false},
        EntryPointCase{"glBufferData", [](GLEntryPoints& t) { t.glBufferData = nullptr; }, false},
        EntryPointCase{"glDeleteBuffers", [](GLEntryPoints& t) { t.glDeleteBuffers = nullptr; }, false},
        EntryPointCase{"glGenVertexArrays", [](GLEntryPoints& t) { t.glGenVertexArrays = nullptr; }, false},
        EntryPointCase{"glBindVertexArray", [](GLEntryPoints& t) { t.glBindVertexArray = nullptr; }, false},
        EntryPointCase{"glShaderSource", [](GLEntryPoints& t) { t.glShaderSource = nullptr; }, true},
        EntryPointCase{"glBindFragDataLocation", [](GLEntryPoints& t) { t.glBindFragDataLocation = nullptr; },
                       true},
        EntryPointCase{"glUniform4fv", [](GLEntryPoints& t) { t.glUniform4fv = nullptr; }, true},
        EntryPointCase{"glActiveTexture", [](GLEntryPoints& t) { t.glActiveTexture = nullptr; }, true},
        EntryPointCase{"glEnableVertexAttribArray",
                       [](GLEntryPoints& t) { t.glEnableVertexAttribArray = nullptr; }, true},
        EntryPointCase{"glVertexAttribPointer", [](GLEntryPoints& t) { t.glVertexAttribPointer = nullptr; },
                       true}),
    [](const ::testing::TestParamInfo<EntryPointCase>& info) { return std::string(info.param.name); });

} // namespace
