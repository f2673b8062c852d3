#include "HostPlugFrame.h"

#include "FrameWindow.h"

namespace velmoran::editorhost
{

using namespace Steinberg;

tresult PLUGIN_API HostPlugFrame::resizeView(IPlugView* view, ViewRect* newSize)
{
    if (view == nullptr || newSize == nullptr)
    {
        return kInvalidArgument;
    }
    setClientSize(mFrameWindow, newSize->getWidth(), newSize->getHeight());
    return view->onSize(newSize);
}

// The interface identifiers are compared by their values: the SDK copy declares the IPlugFrame
// identifier object without defining it.
tresult PLUGIN_API HostPlugFrame::queryInterface(const TUID iid, void** object)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown_iid) || FUnknownPrivate::iidEqual(iid, IPlugFrame_iid))
    {
        addRef();
        *object = static_cast<IPlugFrame*>(this);
        return kResultOk;
    }
    *object = nullptr;
    return kNoInterface;
}

uint32 PLUGIN_API HostPlugFrame::addRef()
{
    return ++mReferences;
}

uint32 PLUGIN_API HostPlugFrame::release()
{
    const uint32 left = --mReferences;
    if (left == 0)
    {
        delete this;
    }
    return left;
}

} // namespace velmoran::editorhost
