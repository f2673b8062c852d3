#pragma once

#include <vector>

namespace Steinberg::Vst::Velmoran
{

class MBXObject;

// An open editor, told when a message box goes up and comes down so that it can grey its surface.
struct MBXEditorListener
{
    // Called with true when a box is shown (or when the editor opens while one is up) and with
    // false once the last box is gone.
    virtual void messageBoxShown(bool shown) = 0;
    // The display scale the editor draws at; boxes follow the largest of the open editors'.
    virtual float displayScale() const { return 1.0f; }

protected:
    ~MBXEditorListener() = default;
};

// Puts a box in front of the user until a button is chosen; gives that button's index.
using MBXPresenter = int (*)(const MBXObject& box);

// The process-wide keeper of the message boxes: it shows them one at a time on top of each other,
// and keeps the open editors informed while any is up. UI thread only.
class MBXManager
{
public:
    // The one manager of the process.
    static MBXManager& instance();

    // Registers an open editor; an editor opened while a box is up is told so at once.
    void editorOpened(MBXEditorListener* editor);
    // Forgets an editor; it is told nothing more.
    void editorClosed(MBXEditorListener* editor);
    // The number of registered editors.
    int openEditorCount() const { return static_cast<int>(mEditors.size()); }
    // The scale boxes are shown at: the largest display scale of the open editors, 1 without any.
    float boxScale() const;

    // Shows a box modally through the current presenter and gives the index of the chosen button.
    // Editors are told that a box is shown before it appears and that none is after the last one
    // closes; a box shown from inside another one tells them nothing new.
    int show(MBXObject& box);

    // A box that stays up after its presenter has returned (a window driven by the host's run loop)
    // counts as shown from its opening to its closing: the editors stay greyed meanwhile.
    void boxOpened();
    void boxClosed();

    // Replaces how boxes are presented (tests); null goes back to the window presenter. Gives the
    // previous replacement (null when there was none).
    MBXPresenter setPresenter(MBXPresenter presenter);
    // Names the presenter that opens boxes as windows of their own, set once by the platform's
    // window code; without one, a box is not shown and gives its default button.
    void setWindowPresenter(MBXPresenter presenter) { mWindowPresenter = presenter; }

private:
    MBXManager() = default;

    void tellEditors(bool shown);

    std::vector<MBXEditorListener*> mEditors;
    MBXPresenter mPresenter = nullptr;
    MBXPresenter mWindowPresenter = nullptr;
    int mBoxesShown = 0;
};

// Shows an error box with this title and text through the manager: the editor's way of reporting
// that it could not open.
void showEditorError(const char* caption, const char* text);

} // namespace Steinberg::Vst::Velmoran
