#pragma once

#include "HostPlugFrame.h"

#include "pluginterfaces/base/smartpointer.h"
#include "pluginterfaces/gui/iplugview.h"

#include <windows.h>

#include <string>

namespace velmoran::editorhost
{

// The host's window around a plug-in view: a top-level window whose client area the view fills,
// the view attached to it as "HWND" with an IPlugFrame for its resize requests, and the view's own
// window found inside it.
class EditorFrame
{
public:
    // Opens the window with a client area of width x height pixels; isOpen() tells whether it worked.
    EditorFrame(const std::string& title, int width, int height);
    // Detaches the view and destroys the window.
    ~EditorFrame();
    EditorFrame(const EditorFrame&) = delete;
    EditorFrame& operator=(const EditorFrame&) = delete;

    bool isOpen() const { return mWindow != nullptr; }
    // Takes view, gives it the frame and attaches it to the window (isPlatformTypeSupported,
    // setFrame, then attached); false, with the reason in error, when the view refuses the window.
    bool attach(Steinberg::IPtr<Steinberg::IPlugView> view, std::string& error);
    // Closes and opens the view again in the same window: removed(), then attached(); false, with
    // the reason in error, when there is no view or it refuses the window.
    bool reopen(std::string& error);
    // removed(), setFrame(nullptr) and the view released, as a host closing the editor does.
    void detach();

    // The frame's top-level window.
    HWND window() const { return mWindow; }
    // The view's own window inside the frame (its first child); null when there is none.
    HWND viewWindow() const;
    // The attached view; null when there is none.
    Steinberg::IPlugView* view() const { return mView; }

private:
    bool attachView(std::string& error);
    void removeView();

    HWND mWindow = nullptr;
    Steinberg::IPtr<HostPlugFrame> mPlugFrame;
    Steinberg::IPtr<Steinberg::IPlugView> mView;
    bool mAttached = false;
};

} // namespace velmoran::editorhost
