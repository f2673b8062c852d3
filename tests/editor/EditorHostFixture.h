#pragma once

// Test suites that drive the plug-in's editor under Wine through the editor test host. The test
// program's first argument is the module's path (see velmoran_add_editor_test in CMakeLists.txt).

#include "support/ModulePath.h"
#include "support/WaitFor.h"
#include "tools/editor_host/EditorSession.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace velmoran::test
{

// One session for a whole test suite: the built module started as a DAW starts it, processing
// active, and the editor opened in the host's frame. The suite's tests share it, in their order.
class EditorHostFixture : public ::testing::Test
{
public:
    static void SetUpTestSuite()
    {
        sStartError.clear();
        sEditorProblem.clear();
        sSession = editorhost::EditorSession::start(modulePath(), sStartError);
        if (sSession)
        {
            sSession->openEditor(sEditorProblem);
        }
    }

    static void TearDownTestSuite() { sSession.reset(); }

protected:
    void SetUp() override { ASSERT_NE(sSession, nullptr) << sStartError; }

    static editorhost::EditorSession& session() { return *sSession; }
    // Why the editor did not open; empty when it did.
    static const std::string& editorProblem() { return sEditorProblem; }

    // Runs the session's message loop and audio until done() holds, failing the test when a block
    // fails or done() never comes.
    template <typename Done> static void runUntil(Done done)
    {
        std::string error;
        bool played = true;
        const bool came =
            waitFor([&] { return !played || done(); }, [&] { played = sSession->run(0.02, error); });
        ASSERT_TRUE(played) << error;
        EXPECT_TRUE(came) << "it never came";
    }
    // Runs them until the processor has taken the given number of blocks more.
    static void runBlocks(std::int64_t blocks)
    {
        const std::int64_t until = sSession->processedBlocks() + blocks;
        runUntil([until] { return sSession->processedBlocks() >= until; });
    }

private:
    static inline std::unique_ptr<editorhost::EditorSession> sSession;
    static inline std::string sStartError;
    static inline std::string sEditorProblem;
};

// For suites that drive the editor itself: each test fails, with the reason, when the editor did
// not open.
class OpenEditorFixture : public EditorHostFixture
{
protected:
    void SetUp() override
    {
        EditorHostFixture::SetUp();
        ASSERT_EQ(editorProblem(), "") << "the editor did not open";
        ASSERT_NE(session().editorWindow(), nullptr) << "the view made no window inside the frame";
    }
};

} // namespace velmoran::test
