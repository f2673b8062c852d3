// The editor library's side of the seam that the controller and the module entry call through.

#include "plugin/EditorLink.h"

#include "CEditorShared.h"
#include "CPlugEditorView.h"
#include "mbx/MBXWindow.h"
#include "platform/window/WindowKit.h"

#include <new>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

IPlugView* createEditorView(EditorControllerLink& controller)
{
    return new (std::nothrow) CPlugEditorView(&controller);
}

void startEditorModule(const char* productToken)
{
    velmoran::platform::initWindowKit(productToken);
    useBoxWindows(true);
    CEditorShared::acquire();
}

void stopEditorModule()
{
    CEditorShared::release();
    useBoxWindows(false);
    velmoran::platform::exitWindowKit();
}

void acquireEditorImages()
{
    CEditorShared::acquire();
}

void releaseEditorImages()
{
    CEditorShared::release();
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
