#include "EditorFrame.h"

#include "FrameWindow.h"

namespace velmoran::editorhost
{

using namespace Steinberg;

EditorFrame::EditorFrame(const std::string& title, int width, int height)
    : mWindow(openFrameWindow(title, width, height))
{
    if (mWindow != nullptr)
    {
        mPlugFrame = owned(new HostPlugFrame(mWindow));
    }
}

EditorFrame::~EditorFrame()
{
    detach();
    if (mWindow != nullptr)
    {
        DestroyWindow(mWindow);
    }
}

bool EditorFrame::attach(IPtr<IPlugView> view, std::string& error)
{
    detach();
    if (!isOpen())
    {
        error = "the host's frame window could not be made";
        return false;
    }
    if (view->isPlatformTypeSupported(kPlatformTypeHWND) != kResultTrue)
    {
        error = "the view does not support the platform type \"HWND\"";
        return false;
    }
    mView = view;
    mView->setFrame(mPlugFrame);
    return attachView(error);
}

bool EditorFrame::reopen(std::string& error)
{
    if (!mView)
    {
        error = "there is no view to open again";
        return false;
    }
    removeView();
    return attachView(error);
}

void EditorFrame::detach()
{
    if (!mView)
    {
        return;
    }
    removeView();
    mView->setFrame(nullptr);
    mView = nullptr;
}

HWND EditorFrame::viewWindow() const
{
    return mWindow != nullptr ? GetWindow(mWindow, GW_CHILD) : nullptr;
}

bool EditorFrame::attachView(std::string& error)
{
    if (mView->attached(mWindow, kPlatformTypeHWND) != kResultOk)
    {
        error = "attached(HWND, \"HWND\") failed";
        return false;
    }
    mAttached = true;
    return true;
}

void EditorFrame::removeView()
{
    if (mAttached)
    {
        mView->removed();
        mAttached = false;
    }
}

} // namespace velmoran::editorhost
