// The editor library's side of the seam that the controller and the module entry call through.

#include "plugin/EditorLink.h"

#include "CEditorShared.h"
#include "CPlugEditorView.h"
#include "mbx/MBXManager.h"
#include "platform/window/WindowKit.h"

#include <new>

#if defined(_WIN32)
#include "mbx/MBXWindow.h"
#endif

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
#if defined(_WIN32)
    MBXManager::instance().setWindowPresenter(presentInWindow);
#endif
    CEditorShared::acquire();
}

void stopEditorModule()
{
    CEditorShared::release();
    MBXManager::instance().setWindowPresenter(nullptr);
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
