#include "EditorHostArguments.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace velmoran::editorhost
{

using Steinberg::Vst::ParamID;

namespace
{

constexpr int kLastProgram = 5;

// The whole text as a decimal number.
bool readNumber(const std::string& text, double& number)
{
    char* end = nullptr;
    errno = 0;
    number = std::strtod(text.c_str(), &end);
    return !text.empty() && end == text.c_str() + text.size() && errno == 0;
}

// The whole text as a decimal integer from 0 to limit.
bool readCount(const std::string& text, unsigned long limit, unsigned long& count)
{
    char* end = nullptr;
    errno = 0;
    count = std::strtoul(text.c_str(), &end, 10);
    return !text.empty() && text[0] != '-' && end == text.c_str() + text.size() && errno == 0 &&
           count <= limit;
}

bool readPreset(const std::string& value, EditorHostArguments& parsed, std::string& error)
{
    unsigned long program = 0;
    if (!readCount(value, kLastProgram, program))
    {
        error = "--preset takes a program number from 0 to 5, not '" + value + "'";
        return false;
    }
    parsed.preset = static_cast<int>(program);
    return true;
}

bool readSeconds(const std::string& value, EditorHostArguments& parsed, std::string& error)
{
    if (!readNumber(value, parsed.seconds) || parsed.seconds < 0.0)
    {
        error = "--seconds takes a number of seconds, not '" + value + "'";
        return false;
    }
    return true;
}

bool readSignal(const std::string& value, EditorHostArguments& parsed, std::string& error)
{
    parsed.signal = InputSignal::parse(value, error);
    return parsed.signal.has_value();
}

bool readSetting(const std::string& value, EditorHostArguments& parsed, std::string& error)
{
    const std::size_t equals = value.find('=');
    unsigned long tag = 0;
    double normalised = 0.0;
    if (equals == std::string::npos || !readCount(value.substr(0, equals), 0xFFFFFFFFul, tag) ||
        !readNumber(value.substr(equals + 1), normalised) || normalised < 0.0 || normalised > 1.0)
    {
        error = "--set takes TAG=VALUE with a parameter tag and a value from 0 to 1, not '" + value + "'";
        return false;
    }
    parsed.settings.emplace_back(static_cast<ParamID>(tag), normalised);
    return true;
}

bool readGesture(const std::string& value, EditorHostArguments& parsed, std::string& error)
{
    const struct
    {
        const char* name;
        EditorGesture::Kind kind;
        std::size_t numberCount;
    } kinds[] = {{"move", EditorGesture::kMove, 2},
                 {"click", EditorGesture::kClick, 2},
                 {"ctrl-click", EditorGesture::kControlClick, 2},
                 {"right-click", EditorGesture::kRightClick, 2},
                 {"wheel", EditorGesture::kWheel, 3},
                 {"drag", EditorGesture::kDrag, 4}};
    const std::size_t colon = value.find(':');
    const std::string name = value.substr(0, colon);
    for (const auto& kind : kinds)
    {
        if (name != kind.name || colon == std::string::npos)
        {
            continue;
        }
        EditorGesture gesture{kind.kind, {}};
        std::istringstream numbers(value.substr(colon + 1));
        std::string number;
        while (std::getline(numbers, number, ','))
        {
            char* end = nullptr;
            const long parsedNumber = std::strtol(number.c_str(), &end, 10);
            if (number.empty() || *end != '\0')
            {
                break;
            }
            gesture.numbers.push_back(static_cast<int>(parsedNumber));
        }
        if (gesture.numbers.size() == kind.numberCount && numbers.eof())
        {
            parsed.gestures.push_back(gesture);
            return true;
        }
    }
    error = "--gesture takes move:X,Y, click:X,Y, ctrl-click:X,Y, right-click:X,Y, wheel:X,Y,NOTCHES or "
            "drag:X1,Y1,X2,Y2, not '" +
            value + "'";
    return false;
}

// Reads the option at arguments[index] and its value, moving index past both.
bool readScale(const std::string& value, EditorHostArguments& parsed, std::string& error)
{
    double scale = 0.0;
    if (!readNumber(value, scale) || scale < 0.5 || scale > 4.0)
    {
        error = "--scale takes a display scale from 0.5 to 4, not '" + value + "'";
        return false;
    }
    parsed.scale = static_cast<float>(scale);
    return true;
}

bool readOption(const std::vector<std::string>& arguments, std::size_t& index, EditorHostArguments& parsed,
                std::string& error)
{
    using Reader = bool (*)(const std::string&, EditorHostArguments&, std::string&);
    const struct
    {
        const char* name;
        Reader read;
    } options[] = {{"--preset", readPreset}, {"--seconds", readSeconds}, {"--signal", readSignal},
                   {"--set", readSetting},   {"--gesture", readGesture}, {"--scale", readScale}};
    const std::string& option = arguments[index];
    for (const auto& known : options)
    {
        if (option != known.name)
        {
            continue;
        }
        if (index + 1 >= arguments.size())
        {
            error = option + " needs a value";
            return false;
        }
        index += 2;
        return known.read(arguments[index - 1], parsed, error);
    }
    error = "unknown option " + option;
    return false;
}

} // namespace

std::optional<EditorHostArguments> parseArguments(const std::vector<std::string>& arguments,
                                                  std::string& error)
{
    EditorHostArguments parsed;
    std::vector<std::string> positional;
    for (std::size_t index = 0; index < arguments.size();)
    {
        if (arguments[index].compare(0, 2, "--") == 0)
        {
            if (!readOption(arguments, index, parsed, error))
            {
                return std::nullopt;
            }
        }
        else
        {
            positional.push_back(arguments[index++]);
        }
    }
    if (positional.size() != 2)
    {
        error = "give the module and the output file";
        return std::nullopt;
    }
    parsed.modulePath = positional[0];
    parsed.outputPath = positional[1];
    return parsed;
}

int editorHostMain(int argc, char** argv, bool (*showEditor)(const EditorHostArguments&, std::string&))
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    std::string error;
    const std::optional<EditorHostArguments> parsed = parseArguments(arguments, error);
    if (!parsed)
    {
        std::fprintf(stderr, "velmoran-editor-host: %s\n%s\n", error.c_str(), kEditorHostUsage);
        return 2;
    }
    if (!showEditor(*parsed, error))
    {
        std::fprintf(stderr, "velmoran-editor-host: %s\n", error.c_str());
        return 1;
    }
    return 0;
}

} // namespace velmoran::editorhost
