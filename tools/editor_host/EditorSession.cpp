#include "EditorSession.h"

#include "MessagePump.h"

#include "plugin/PlugParameters.h"

#include "pluginterfaces/gui/iplugview.h"
#include "pluginterfaces/gui/iplugviewcontentscalesupport.h"

#include <algorithm>

namespace velmoran::editorhost
{

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace
{

constexpr const char* kFrameTitle = "Velmoran editor host";
// The frame's client size when there is no view to ask.
constexpr int kEmptyFrameWidth = 640;
constexpr int kEmptyFrameHeight = 480;

} // namespace

std::unique_ptr<EditorSession> EditorSession::start(const std::string& modulePath, std::string& error)
{
    std::unique_ptr<EditorSession> session(new EditorSession());
    std::string reason;
    session->mModule = VST3::Hosting::Module::load(modulePath, reason);
    if (!session->mModule)
    {
        error = "cannot load the module '" + modulePath + "': " + reason;
        return nullptr;
    }
    session->mInstance = std::make_unique<PluginInstance>(session->mModule->factory());
    if (!session->mInstance->valid())
    {
        error = "cannot start the plug-in: " + session->mInstance->failureReason();
        return nullptr;
    }
    PluginInstance& plugin = *session->mInstance;
    // As a host does after making both halves: the controller takes the processor's state.
    plugin.controller->setComponentState(streamOf(stateBytes(plugin.component)));
    session->mAudio = std::make_unique<AudioPlayer>(plugin);
    if (!session->mAudio->activate(error))
    {
        return nullptr;
    }
    return session;
}

EditorSession::~EditorSession()
{
    mFrame.reset();
    mAudio.reset();
    mInstance.reset();
    mModule.reset();
}

bool EditorSession::openEditor(std::string& error)
{
    IPtr<IPlugView> view = owned(mInstance->controller->createView(ViewType::kEditor));
    ViewRect size(0, 0, kEmptyFrameWidth, kEmptyFrameHeight);
    if (view && view->getSize(&size) != kResultOk)
    {
        error = "the editor view does not tell its size (getSize failed)";
        return false;
    }
    mFrame = std::make_unique<EditorFrame>(kFrameTitle, size.getWidth(), size.getHeight());
    if (!view)
    {
        error = "createView(\"editor\") returned no view";
        return false;
    }
    return mFrame->attach(view, error);
}

bool EditorSession::reopenEditor(std::string& error)
{
    if (!mFrame)
    {
        error = "the editor was never opened";
        return false;
    }
    return mFrame->reopen(error);
}

bool EditorSession::setContentScale(float scale, std::string& error)
{
    IPlugView* shown = view();
    IPlugViewContentScaleSupport* scaling = nullptr;
    if (shown == nullptr ||
        shown->queryInterface(IPlugViewContentScaleSupport_iid, reinterpret_cast<void**>(&scaling)) !=
            kResultOk ||
        scaling == nullptr)
    {
        error = "the editor view offers no IPlugViewContentScaleSupport";
        return false;
    }
    const tresult result = scaling->setContentScaleFactor(scale);
    scaling->release();
    if (result != kResultOk)
    {
        error = "the editor view refused the display scale";
        return false;
    }
    return true;
}

bool EditorSession::run(double seconds, std::string& error)
{
    return mAudio->playFor(seconds, pumpMessagesUntil, error);
}

void EditorSession::setParameter(ParamID tag, ParamValue value)
{
    mInstance->controller->setParamNormalized(tag, value);
    int32 index = 0;
    if (IParamValueQueue* queue = mInstance->handler->pendingChanges().addParameterData(tag, index))
    {
        queue->addPoint(0, value, index);
    }
}

void EditorSession::selectProgram(int index)
{
    setParameter(Velmoran::kPresetTag, static_cast<ParamValue>(index) / Velmoran::kPresetStepCount);
}

Screenshot EditorSession::screenshot() const
{
    HWND editor = editorWindow();
    return captureWindow(editor != nullptr ? editor : frameWindow());
}

} // namespace velmoran::editorhost
