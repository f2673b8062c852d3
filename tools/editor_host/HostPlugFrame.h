#pragma once

#include "pluginterfaces/gui/iplugview.h"

#include <windows.h>

#include <atomic>

namespace velmoran::editorhost
{

// The host's answer to a view that asks for another size: the frame window's client area takes the
// new size and the view is told with onSize.
class HostPlugFrame : public Steinberg::IPlugFrame
{
public:
    explicit HostPlugFrame(HWND frameWindow) : mFrameWindow(frameWindow) {}
    virtual ~HostPlugFrame() = default;

    Steinberg::tresult PLUGIN_API resizeView(Steinberg::IPlugView* view,
                                             Steinberg::ViewRect* newSize) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** object) override;
    Steinberg::uint32 PLUGIN_API addRef() override;
    Steinberg::uint32 PLUGIN_API release() override;

private:
    HWND mFrameWindow;
    std::atomic<Steinberg::uint32> mReferences{1};
};

} // namespace velmoran::editorhost
