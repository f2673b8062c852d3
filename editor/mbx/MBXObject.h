#pragma once

#include <string>
#include <vector>

namespace Steinberg::Vst::Velmoran
{

// The sign left of a box's text, drawn from the alert-sign and info-sign images.
enum class MBXIcon
{
    kNone,
    kWarning,
    kError,
    kInformation,
    kQuestion
};

// The product line an about box shows above its text in large type; empty in every other box.
struct MBXHeading
{
    std::string name;
    std::string detail;
};

// A modal message box: a title, a text (which may carry a link marked <a>..</a>), a sign and a row
// of buttons. It is shown through MBXManager, which gives back the index of the chosen button.
// UI thread only.
class MBXObject
{
public:
    // The text of the box's title bar.
    const std::string& title() const { return mTitle; }
    // The message, with '\n' where a new paragraph starts.
    const std::string& text() const { return mText; }
    // The button labels, left to right.
    const std::vector<std::string>& buttons() const { return mButtons; }
    MBXIcon icon() const { return mIcon; }
    const MBXHeading& heading() const { return mHeading; }
    // The button that Enter chooses: the first.
    int defaultButton() const { return 0; }
    // The button that Escape and closing the window choose: the last.
    int cancelButton() const { return static_cast<int>(mButtons.size()) - 1; }

    // Shows the box through the manager until a button is chosen; gives that button's index.
    int run();

protected:
    MBXObject(std::string title, std::string text, MBXIcon icon, std::vector<std::string> buttons,
              MBXHeading heading = {});

private:
    std::string mTitle;
    std::string mText;
    MBXIcon mIcon;
    std::vector<std::string> mButtons;
    MBXHeading mHeading;
};

} // namespace Steinberg::Vst::Velmoran
