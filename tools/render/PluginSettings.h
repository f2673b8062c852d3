#pragma once

#include "RenderArguments.h"
#include "RenderHost.h"

#include "pluginterfaces/vst/ivsteditcontroller.h"

#include <string>
#include <vector>

namespace velmoran::render
{

// One parameter as the controller registers it.
struct ParameterEntry
{
    ParamID tag = 0;
    std::string title;
    Steinberg::int32 stepCount = 0;
    Steinberg::int32 flags = 0;
};

// The values a parameter takes, in the plug-in's own texts: either a list of names ("No Filter",
// "Pk dB/2", ...) or a numeric range between the texts of its two ends.
struct AllowedValues
{
    std::vector<std::string> names;
    std::string lowest;
    std::string highest;

    // "one of: A, B, C" or "from -18.00 dB to 18.00 dB".
    std::string describe() const;
};

// The controller's parameters by title, with their texts: turns "03 Gain" and "+6 dB" into tag
// and normalised value through the controller's own conversions.
class ParameterCatalogue
{
public:
    explicit ParameterCatalogue(Steinberg::Vst::IEditController& controller);

    // Every parameter in the host's index order.
    const std::vector<ParameterEntry>& entries() const { return mEntries; }
    // The parameter of a title (case and surrounding blanks do not matter); throws a usage
    // RenderError listing the titles when there is none.
    const ParameterEntry& find(const std::string& title) const;
    // The text the plug-in shows for a normalised value, without padding blanks or line breaks.
    std::string text(ParamID tag, ParamValue value) const;
    // The values a parameter takes: exactly the texts valueOf accepts.
    AllowedValues allowedValues(const ParameterEntry& entry) const;
    // The normalised value of a text for a parameter; throws a usage RenderError naming the
    // allowed values when the text is none of them or lies outside the range.
    ParamValue valueOf(const ParameterEntry& entry, const std::string& valueText) const;
    // The program-change parameter ("Preset"), null if the plug-in has none.
    const ParameterEntry* programParameter() const;

private:
    // Whether a text the plug-in shows can be set: it reads back as itself and means something.
    bool isSettable(const ParameterEntry& entry, const std::string& name) const;
    // The number of bands, from the titles of their filter types.
    int bandCount() const;

    Steinberg::Vst::IEditController& mController;
    std::vector<ParameterEntry> mEntries;
};

// One factory program: its index, the name a host lists and the name the editor shows.
struct FactoryProgram
{
    int index = 0;
    std::string hostName;
    std::string name;
};

// The factory programs the controller offers, with the names the editor shows.
std::vector<FactoryProgram> factoryPrograms(Steinberg::Vst::IEditController& controller);
// The program a --preset argument names: its number, either of its names, or a name's start
// when that is unique; throws a usage RenderError listing the programs otherwise.
int programIndexOf(const std::string& text, const std::vector<FactoryProgram>& programs);

// Applies the request's settings to a host in order: state file, factory program, single
// parameters. Every name and value is checked before the first is applied; throws RenderError.
void applySettings(RenderHost& host, const RenderRequest& request);

// The parameter list --list-parameters prints: title, value now, allowed values.
std::string parameterListing(RenderHost& host);
// The program list --list-presets prints.
std::string programListing(RenderHost& host);

} // namespace velmoran::render
