#include "editor/mbx/MBXManager.h"

#include "editor/mbx/MBXMessage.h"

#include <algorithm>

namespace Steinberg::Vst::Velmoran
{

namespace
{

// Where no window can be opened, a box answers as if Enter had been pressed.
int presentWithoutWindow(const MBXObject& box)
{
    return box.defaultButton();
}

} // namespace

MBXManager& MBXManager::instance()
{
    static MBXManager manager;
    return manager;
}

void MBXManager::editorOpened(MBXEditorListener* editor)
{
    if (editor == nullptr || std::find(mEditors.begin(), mEditors.end(), editor) != mEditors.end())
        return;
    mEditors.push_back(editor);
    if (mBoxesShown > 0)
        editor->messageBoxShown(true);
}

float MBXManager::boxScale() const
{
    float scale = 1.0f;
    for (const MBXEditorListener* editor : mEditors)
        scale = std::max(scale, editor->displayScale());
    return scale;
}

void MBXManager::editorClosed(MBXEditorListener* editor)
{
    mEditors.erase(std::remove(mEditors.begin(), mEditors.end(), editor), mEditors.end());
}

int MBXManager::show(MBXObject& box)
{
    MBXPresenter present = mPresenter != nullptr         ? mPresenter
                           : mWindowPresenter != nullptr ? mWindowPresenter
                                                         : presentWithoutWindow;
    boxOpened();
    const int chosen = present(box);
    boxClosed();
    return chosen;
}

void MBXManager::boxOpened()
{
    if (mBoxesShown++ == 0)
        tellEditors(true);
}

void MBXManager::boxClosed()
{
    if (mBoxesShown > 0 && --mBoxesShown == 0)
        tellEditors(false);
}

MBXPresenter MBXManager::setPresenter(MBXPresenter presenter)
{
    const MBXPresenter previous = mPresenter;
    mPresenter = presenter;
    return previous;
}

void MBXManager::tellEditors(bool shown)
{
    // A copy, since an editor may close (and unregister) while it is being told.
    const std::vector<MBXEditorListener*> editors = mEditors;
    for (MBXEditorListener* editor : editors)
        if (std::find(mEditors.begin(), mEditors.end(), editor) != mEditors.end())
            editor->messageBoxShown(shown);
}

void showEditorError(const char* caption, const char* text)
{
    MBXErrorMessage box(caption != nullptr ? caption : "", text != nullptr ? text : "");
    MBXManager::instance().show(box);
}

} // namespace Steinberg::Vst::Velmoran
