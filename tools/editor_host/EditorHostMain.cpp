// velmoran-editor-host MODULE OUTPUT.png [--preset N] [--seconds S] [--signal demo|sine:HZ|noise]
//                      [--set TAG=VALUE ...]
// Opens the plug-in's editor under Windows (or Wine) as a DAW does, plays a signal through the
// processor so that spectrum frames flow, saves what the editor shows as a PNG, then closes and
// opens the editor again and shuts down. Any failure is printed and gives a non-zero exit code.
#include "EditorHostArguments.h"
#include "EditorSession.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

using velmoran::editorhost::EditorGesture;
using velmoran::editorhost::EditorHostArguments;
using velmoran::editorhost::EditorSession;

namespace
{

// Time the editor runs after it was opened again, seconds: a few of its 40 ms timer ticks.
constexpr double kReopenSeconds = 0.2;

bool openEditor(EditorSession& session, std::string& error)
{
    if (!session.openEditor(error))
    {
        return false;
    }
    if (session.editorWindow() == nullptr)
    {
        error = "the editor view made no window inside the host's frame";
        return false;
    }
    return true;
}

void applySettings(EditorSession& session, const EditorHostArguments& arguments)
{
    if (arguments.signal)
    {
        session.setSignal(*arguments.signal);
    }
    if (arguments.preset)
    {
        session.selectProgram(*arguments.preset);
    }
    for (const auto& [tag, value] : arguments.settings)
    {
        session.setParameter(tag, value);
    }
}

// Time the editor runs after the gestures, seconds: enough ticks for it to show their effect.
constexpr double kGestureSeconds = 0.3;

void performGestures(EditorSession& session, const EditorHostArguments& arguments)
{
    for (const EditorGesture& gesture : arguments.gestures)
    {
        const std::vector<int>& n = gesture.numbers;
        switch (gesture.kind)
        {
        case EditorGesture::kMove:
            session.input().moveTo(n[0], n[1]);
            break;
        case EditorGesture::kClick:
            session.input().leftClick(n[0], n[1]);
            break;
        case EditorGesture::kControlClick:
            session.input().keyDown(VK_CONTROL);
            session.input().leftClick(n[0], n[1]);
            session.input().keyUp(VK_CONTROL);
            break;
        case EditorGesture::kRightClick:
            session.input().rightDown(n[0], n[1]);
            session.input().rightUp(n[0], n[1]);
            break;
        case EditorGesture::kWheel:
            session.input().wheel(n[0], n[1], n[2]);
            break;
        case EditorGesture::kDrag:
            session.input().drag(n[0], n[1], n[2], n[3], 8);
            break;
        }
    }
}

bool reopenEditor(EditorSession& session, std::string& error)
{
    if (!session.reopenEditor(error) || !session.run(kReopenSeconds, error))
    {
        return false;
    }
    if (session.editorWindow() == nullptr)
    {
        error = "the editor has no window after it was closed and opened again";
        return false;
    }
    return true;
}

bool showEditor(const EditorHostArguments& arguments, std::string& error)
{
    std::unique_ptr<EditorSession> session = EditorSession::start(arguments.modulePath, error);
    if (!session || !openEditor(*session, error))
    {
        return false;
    }
    if (arguments.scale && !session->setContentScale(*arguments.scale, error))
    {
        return false;
    }
    applySettings(*session, arguments);
    if (!session->run(arguments.seconds, error))
    {
        return false;
    }
    if (!arguments.gestures.empty())
    {
        performGestures(*session, arguments);
        if (!session->run(kGestureSeconds, error))
        {
            return false;
        }
    }
    std::printf("Played %lld blocks; last block peak %.1f dBFS\n",
                static_cast<long long>(session->processedBlocks()), session->lastPeakDb());
    if (!saveScreenshot(session->screenshot(), arguments.outputPath))
    {
        error = "cannot write the screenshot to '" + arguments.outputPath + "'";
        return false;
    }
    std::printf("Screenshot written to %s\n", arguments.outputPath.c_str());
    return reopenEditor(*session, error);
}

} // namespace

int main(int argc, char** argv)
{
    return velmoran::editorhost::editorHostMain(argc, argv, showEditor);
}
