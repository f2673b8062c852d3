#pragma once

#include "InputSignal.h"

#include "pluginterfaces/vst/vsttypes.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmoran::editorhost
{

constexpr const char* kEditorHostUsage =
    "usage: velmoran-editor-host MODULE OUTPUT.png [--preset N] [--seconds S] [--signal demo|sine:HZ|noise]\n"
    "                            [--set TAG=VALUE ...] [--gesture KIND:X,Y[,...] ...] [--scale F]\n"
    "  Opens the plug-in's editor as a host does, plays the signal through the processor for S seconds\n"
    "  (default 2), saves what the editor shows as OUTPUT.png, closes and opens the editor again and\n"
    "  shuts down. --preset selects factory program N (0..5); --set sets a parameter by tag to a\n"
    "  normalised value (0..1), after the program. --gesture acts on the editor after the S seconds,\n"
    "  at editor pixels, before the screenshot: move:X,Y  click:X,Y  right-click:X,Y  wheel:X,Y,NOTCHES\n"
    "  drag:X1,Y1,X2,Y2. --scale gives the open view the display scale F (0.5 to 4), as a host does\n"
    "  when its window moves to a denser screen.";

// One mouse action on the editor: its kind and its numbers (positions in editor pixels, notches).
struct EditorGesture
{
    enum Kind
    {
        kMove,
        kClick,
        kControlClick,
        kRightClick,
        kWheel,
        kDrag
    };
    Kind kind = kMove;
    std::vector<int> numbers;
};

// What the command line asks for.
struct EditorHostArguments
{
    std::string modulePath;
    std::string outputPath;
    std::optional<int> preset;
    double seconds = 2.0;
    std::optional<InputSignal> signal; // the demo mix when not given
    std::vector<std::pair<Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue>> settings;
    std::vector<EditorGesture> gestures;
    std::optional<float> scale;
};

// The arguments after the program's name; nothing, with the reason in error, when they are wrong.
std::optional<EditorHostArguments> parseArguments(const std::vector<std::string>& arguments,
                                                  std::string& error);

// The program's main on either platform: reads the arguments and runs `showEditor` with them. Gives
// 0 on success, 1 when the run failed and 2 for wrong arguments, each failure told on standard error.
int editorHostMain(int argc, char** argv, bool (*showEditor)(const EditorHostArguments&, std::string&));

} // namespace velmoran::editorhost
