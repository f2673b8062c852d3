#include "PluginSettings.h"

#include "RenderError.h"
#include "StateFile.h"
#include "plugin/PlugProgram.h"

#include "pluginterfaces/base/ustring.h"
#include "pluginterfaces/vst/ivstunits.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>

namespace velmoran::render
{

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace
{

// Sampling points over 0..1 for finding the texts of a continuous parameter.
constexpr int kTextSamples = 2000;
// More distinct texts than this make a parameter a numeric range rather than a list of names.
constexpr size_t kMostNames = 24;
// Values are shown with two decimals: a typed number may stray this far beyond the ends.
constexpr double kRangeTolerance = 0.0051;
// The title of the listen band's parameter, and how the titles of the bands' filter types end.
constexpr const char* kSoloTitle = "Solo";
constexpr const char* kBandTypeTitleEnd = " filt type";

std::string asciiOf(const TChar* text)
{
    char8 ascii[256] = {};
    UString(const_cast<TChar*>(text), 128).toAscii(ascii, sizeof(ascii));
    return ascii;
}

std::string trimmed(const std::string& text)
{
    const auto isBlank = [](unsigned char character) { return std::isspace(character) != 0; };
    auto begin = std::find_if_not(text.begin(), text.end(), isBlank);
    auto end = std::find_if_not(text.rbegin(), text.rend(), isBlank).base();
    return begin < end ? std::string(begin, end) : std::string();
}

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

bool sameText(const std::string& a, const std::string& b)
{
    return lowered(trimmed(a)) == lowered(trimmed(b));
}

std::string quoted(const std::string& text)
{
    return "\"" + text + "\"";
}

// The number a text starts with, if it starts with one.
bool leadingNumber(const std::string& text, double& number)
{
    const std::string clean = trimmed(text);
    char* end = nullptr;
    number = std::strtod(clean.c_str(), &end);
    return end != clean.c_str() && std::isfinite(number);
}

bool isWholeNumber(const std::string& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(),
                                        [](unsigned char character) { return std::isdigit(character) != 0; });
}

} // namespace

std::string AllowedValues::describe() const
{
    if (names.empty())
    {
        return "from " + lowest + " to " + highest;
    }
    std::string list = "one of: ";
    for (size_t index = 0; index < names.size(); ++index)
    {
        list += (index ? ", " : "") + names[index];
    }
    return list;
}

ParameterCatalogue::ParameterCatalogue(IEditController& controller) : mController(controller)
{
    const int32 count = controller.getParameterCount();
    for (int32 index = 0; index < count; ++index)
    {
        ParameterInfo info = {};
        if (controller.getParameterInfo(index, info) == kResultOk)
        {
            mEntries.push_back({info.id, asciiOf(info.title), info.stepCount, info.flags});
        }
    }
}

const ParameterEntry& ParameterCatalogue::find(const std::string& title) const
{
    for (const ParameterEntry& entry : mEntries)
    {
        if (sameText(entry.title, title))
        {
            return entry;
        }
    }
    std::string titles;
    for (const ParameterEntry& entry : mEntries)
    {
        titles += (titles.empty() ? "" : ", ") + entry.title;
    }
    throw usageError("unknown parameter " + quoted(trimmed(title)) + "; the parameters are: " + titles);
}

std::string ParameterCatalogue::text(ParamID tag, ParamValue value) const
{
    String128 string = {};
    if (mController.getParamStringByValue(tag, value, string) != kResultOk)
    {
        return {};
    }
    return trimmed(asciiOf(string));
}

AllowedValues ParameterCatalogue::allowedValues(const ParameterEntry& entry) const
{
    const int samples = entry.stepCount > 0 ? entry.stepCount : kTextSamples;
    AllowedValues allowed;
    std::vector<std::string> distinct;
    for (int step = 0; step <= samples && distinct.size() <= kMostNames; ++step)
    {
        const std::string shown = text(entry.tag, static_cast<ParamValue>(step) / samples);
        if (std::find(distinct.begin(), distinct.end(), shown) == distinct.end())
        {
            distinct.push_back(shown);
        }
    }
    if (distinct.size() <= kMostNames)
    {
        for (const std::string& name : distinct)
        {
            if (isSettable(entry, name))
            {
                allowed.names.push_back(name);
            }
        }
    }
    allowed.lowest = text(entry.tag, 0.0);
    allowed.highest = text(entry.tag, 1.0);
    return allowed;
}

bool ParameterCatalogue::isSettable(const ParameterEntry& entry, const std::string& name) const
{
    String128 string = {};
    UString(string, 128).fromAscii(name.c_str());
    ParamValue value = 0.0;
    if (mController.getParamValueByString(entry.tag, string, value) != kResultOk ||
        text(entry.tag, value) != name)
    {
        return false;
    }
    // The listen band's texts go up to 12, but only the bands there are can be listened to.
    double band = 0.0;
    return !sameText(entry.title, kSoloTitle) || !leadingNumber(name, band) || band <= bandCount();
}

int ParameterCatalogue::bandCount() const
{
    return static_cast<int>(
        std::count_if(mEntries.begin(), mEntries.end(),
                      [](const ParameterEntry& entry)
                      { return lowered(entry.title).find(kBandTypeTitleEnd) != std::string::npos; }));
}

ParamValue ParameterCatalogue::valueOf(const ParameterEntry& entry, const std::string& valueText) const
{
    const AllowedValues allowed = allowedValues(entry);
    const std::string wanted = trimmed(valueText);
    String128 string = {};
    UString(string, 128).fromAscii(wanted.c_str());
    ParamValue value = 0.0;
    if (mController.getParamValueByString(entry.tag, string, value) != kResultOk ||
        (!allowed.names.empty() && std::find(allowed.names.begin(), allowed.names.end(),
                                             text(entry.tag, value)) == allowed.names.end()))
    {
        throw usageError(quoted(wanted) + " is not a value of " + quoted(entry.title) + ": give " +
                         (allowed.names.empty() ? "a value " : "") + allowed.describe());
    }
    double number = 0.0;
    double lowest = 0.0;
    double highest = 0.0;
    // The controller limits a number to the range; a number beyond it is a mistake to report.
    if (allowed.names.empty() && leadingNumber(wanted, number) && leadingNumber(allowed.lowest, lowest) &&
        leadingNumber(allowed.highest, highest) &&
        (number < std::min(lowest, highest) - kRangeTolerance ||
         number > std::max(lowest, highest) + kRangeTolerance))
    {
        throw usageError(quoted(wanted) + " is outside the range of " + quoted(entry.title) +
                         ": give a value " + allowed.describe());
    }
    return value;
}

const ParameterEntry* ParameterCatalogue::programParameter() const
{
    for (const ParameterEntry& entry : mEntries)
    {
        if ((entry.flags & ParameterInfo::kIsProgramChange) != 0)
        {
            return &entry;
        }
    }
    return nullptr;
}

std::vector<FactoryProgram> factoryPrograms(IEditController& controller)
{
    std::vector<FactoryProgram> programs;
    FUnknownPtr<IUnitInfo> units(&controller);
    ProgramListInfo list = {};
    if (!units || units->getProgramListCount() < 1 || units->getProgramListInfo(0, list) != kResultOk)
    {
        return programs;
    }
    // Hosts list the programs by their list names; the editor shows the names they were voiced with.
    const auto voiced = Velmoran::makeFactoryPrograms();
    for (int32 index = 0; index < list.programCount; ++index)
    {
        String128 name = {};
        units->getProgramName(list.id, index, name);
        FactoryProgram program;
        program.index = index;
        program.hostName = asciiOf(name);
        program.name = index < static_cast<int32>(voiced.size()) ? voiced[static_cast<size_t>(index)].name
                                                                 : program.hostName;
        programs.push_back(program);
    }
    return programs;
}

int programIndexOf(const std::string& rawText, const std::vector<FactoryProgram>& programs)
{
    const std::string text = trimmed(rawText);
    if (isWholeNumber(text))
    {
        const long number = std::strtol(text.c_str(), nullptr, 10);
        if (number >= 0 && number < static_cast<long>(programs.size()))
        {
            return static_cast<int>(number);
        }
    }
    else
    {
        for (const FactoryProgram& program : programs)
        {
            if (sameText(program.name, text) || sameText(program.hostName, text))
            {
                return program.index;
            }
        }
    }
    std::string list;
    for (const FactoryProgram& program : programs)
    {
        list += (list.empty() ? "" : ", ") + std::to_string(program.index) + " " + quoted(program.name);
    }
    throw usageError("unknown preset " + quoted(text) + "; the factory programs are " + list);
}

void applySettings(RenderHost& host, const RenderRequest& request)
{
    ParameterCatalogue catalogue(host.controller());
    std::vector<char> state;
    if (!request.loadStatePath.empty())
    {
        state = readStateFile(request.loadStatePath);
    }
    int program = -1;
    const ParameterEntry* programEntry = catalogue.programParameter();
    if (request.preset)
    {
        if (!programEntry || programEntry->stepCount < 1)
        {
            throw usageError("the plug-in offers no factory programs");
        }
        program = programIndexOf(*request.preset, factoryPrograms(host.controller()));
    }
    std::vector<std::pair<ParamID, ParamValue>> values;
    for (const ParameterAssignment& assignment : request.assignments)
    {
        const ParameterEntry& entry = catalogue.find(assignment.title);
        values.emplace_back(entry.tag, catalogue.valueOf(entry, assignment.value));
    }

    if (!request.loadStatePath.empty())
    {
        host.loadState(state, request.loadStatePath);
    }
    if (program >= 0)
    {
        host.setParameter(programEntry->tag, static_cast<ParamValue>(program) / programEntry->stepCount);
    }
    for (const auto& [tag, value] : values)
    {
        host.setParameter(tag, value);
    }
}

std::string parameterListing(RenderHost& host)
{
    ParameterCatalogue catalogue(host.controller());
    std::string listing;
    for (const ParameterEntry& entry : catalogue.entries())
    {
        const std::string now = catalogue.text(entry.tag, host.controller().getParamNormalized(entry.tag));
        std::string line = "  " + quoted(entry.title);
        line.resize(std::max<size_t>(line.size() + 1, 20), ' ');
        listing += line + quoted(now) + "  (" + catalogue.allowedValues(entry).describe() + ")\n";
    }
    return listing;
}

std::string programListing(RenderHost& host)
{
    std::string listing;
    for (const FactoryProgram& program : factoryPrograms(host.controller()))
    {
        listing += "  " + std::to_string(program.index) + "  " + quoted(program.name) +
                   "  (hosts list it as " + quoted(program.hostName) + ")\n";
    }
    return listing;
}

} // namespace velmoran::render
