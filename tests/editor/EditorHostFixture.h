#pragma once

// Test suites that drive the plug-in's editor under Wine through the editor test host. The test
// program's first argument is the module's path (see velmoran_add_editor_test in CMakeLists.txt).

#include "tools/editor_host/EditorSession.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

namespace Steinberg::Vst
{

// An edit call as a failed expectation shows it, for example "perform 27 0.5".
inline void PrintTo(const EditCall& call, std::ostream* out)
{
    static const char* const kNames[] = {"begin", "perform", "end"};
    *out << kNames[call.kind] << ' ' << call.tag;
    if (call.kind == EditCall::kPerform)
    {
        *out << ' ' << call.value;
    }
}

} // namespace Steinberg::Vst

namespace velmoran::test
{

// The module path given on the command line.
void setEditorModulePath(const std::string& path);
const std::string& editorModulePath();

// One session for a whole test suite: the built module started as a DAW starts it, processing
// active, and the editor opened in the host's frame. The suite's tests share it, in their order.
class EditorHostFixture : public ::testing::Test
{
public:
    static void SetUpTestSuite()
    {
        sStartError.clear();
        sEditorProblem.clear();
        sSession = editorhost::EditorSession::start(editorModulePath(), sStartError);
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

    // Runs the session's message loop and audio for seconds, failing the test when a block fails.
    static void run(double seconds)
    {
        std::string error;
        ASSERT_TRUE(sSession->run(seconds, error)) << error;
    }

private:
    static inline std::unique_ptr<editorhost::EditorSession> sSession;
    static inline std::string sStartError;
    static inline std::string sEditorProblem;
};

// For suites that drive the editor itself: each test is skipped, with the reason, while the
// editor does not open.
class OpenEditorFixture : public EditorHostFixture
{
protected:
    void SetUp() override
    {
        EditorHostFixture::SetUp();
        if (!HasFatalFailure() && !editorProblem().empty())
        {
            GTEST_SKIP() << "the editor did not open: " << editorProblem();
        }
    }
};

} // namespace velmoran::test
