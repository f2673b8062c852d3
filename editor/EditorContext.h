#pragma once

#include <string>

namespace velmoran::editor
{

// What the editor's screen needs from the plug-in around it: parameter values and the host's
// four-call edit sequence, the factory programs' names and a few window services. The editor view
// implements it over the edit controller; the native tests implement it with a recorder.
class EditorContext
{
public:
    virtual ~EditorContext() = default;

    // The parameter's normalised value, 0..1.
    virtual double parameter(unsigned tag) const = 0;
    // The host's edit sequence: begin, then any number of value changes, then end.
    virtual void beginEdit(unsigned tag) = 0;
    // Sets the controller's value and reports it to the host.
    virtual void performEdit(unsigned tag, double value) = 0;
    virtual void endEdit(unsigned tag) = 0;
    // The name the editor shows for factory program `index`, empty if there is none.
    virtual std::string programName(int index) const = 0;
    // Opens the about box. Its modal loop keeps the host live, and the host may close the editor
    // meanwhile, screen included: the screen calls it last and touches nothing after it.
    virtual void showAbout() = 0;
    // Gives the keyboard focus back to the editor's window.
    virtual void focusWindow() = 0;
};

} // namespace velmoran::editor
