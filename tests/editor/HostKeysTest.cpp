// The keys a VST 3 host passes to the view, in the editor's numbering.

#include "editor/HostKeys.h"

#include <gtest/gtest.h>

namespace velmoran::editor
{
namespace
{

TEST(HostKeys, TheEditorsKeysAndNoOthers)
{
    constexpr int kHostSpace = 7;
    constexpr int kHostTab = 2;
    const struct
    {
        int host;
        int editor;
    } cases[] = {{hostkeys::kBack, keys::kBackspace},
                 {hostkeys::kReturn, keys::kReturn},
                 {hostkeys::kEnter, keys::kReturn},
                 {hostkeys::kEscape, keys::kEscape},
                 {hostkeys::kLeft, keys::kLeft},
                 {hostkeys::kUp, keys::kUp},
                 {hostkeys::kRight, keys::kRight},
                 {hostkeys::kDown, keys::kDown},
                 {hostkeys::kDelete, keys::kDelete},
                 {kHostSpace, 0},
                 {kHostTab, 0},
                 {0, 0}};
    for (const auto& key : cases)
        EXPECT_EQ(editorKeyFromHost(key.host), key.editor) << "host key " << key.host;
}

TEST(HostKeys, ShiftMakesFineSteps)
{
    EXPECT_TRUE(editorModifiersFromHost(hostkeys::kShiftModifier).fine);
    EXPECT_FALSE(editorModifiersFromHost(1 << 3).fine);
    EXPECT_FALSE(editorModifiersFromHost(0).fine);
}

} // namespace
} // namespace velmoran::editor
