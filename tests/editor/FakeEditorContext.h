#pragma once

#include "editor/EditorContext.h"
#include "plugin/PlugParameters.h"

#include <map>
#include <string>
#include <vector>

namespace velmoran::test
{

// The controller as the editor's screen sees it: parameter values starting at their defaults and
// a log of the edit calls in their order ("begin 27", "perform 27", "end 27").
class FakeEditorContext : public editor::EditorContext
{
public:
    FakeEditorContext()
    {
        for (const auto& parameter : Steinberg::Vst::Velmoran::parameterTable())
            values[parameter.tag] = parameter.defaultValue;
    }

    double parameter(unsigned tag) const override
    {
        const auto found = values.find(tag);
        return found != values.end() ? found->second : 0.0;
    }
    void beginEdit(unsigned tag) override { log.push_back("begin " + std::to_string(tag)); }
    void performEdit(unsigned tag, double value) override
    {
        values[tag] = value;
        log.push_back("perform " + std::to_string(tag));
    }
    void endEdit(unsigned tag) override { log.push_back("end " + std::to_string(tag)); }
    std::string programName(int index) const override { return "Program " + std::to_string(index); }
    void showAbout() override { ++aboutBoxes; }
    void focusWindow() override {}

    // How often a call appears in the log, e.g. count("begin 27").
    int count(const std::string& call) const
    {
        int found = 0;
        for (const std::string& entry : log)
            found += entry == call ? 1 : 0;
        return found;
    }

    std::map<unsigned, double> values;
    std::vector<std::string> log;
    int aboutBoxes = 0;
};

} // namespace velmoran::test
