#pragma once

#include "AudioPlayer.h"
#include "EditorFrame.h"
#include "EditorInput.h"
#include "InputSignal.h"
#include "WindowCapture.h"

#include "sdk/hosting/Module.h"
#include "sdk/hosting/PluginInstance.h"

#include <memory>
#include <string>

namespace velmoran::editorhost
{

// The plug-in as a DAW runs it with its editor open, on one thread: the module loaded through its
// entry points, processor and controller made, connected and synchronised, the processor active at
// 48 kHz stereo, the editor view in a window of the host's own, and a message loop that plays
// audio blocks in step with real time between the window messages, so that the editor's edits
// reach the processor and spectrum frames reach the editor.
class EditorSession
{
public:
    // Loads the module at modulePath (a Unix path is taken on drive Z:) and starts the plug-in
    // with processing active; null, with the reason in error, when that fails.
    static std::unique_ptr<EditorSession> start(const std::string& modulePath, std::string& error);
    // Shuts down in the host's order: the view removed and released, its window closed, processing
    // deactivated, both halves disconnected and terminated, the module's exit function called.
    ~EditorSession();
    EditorSession(const EditorSession&) = delete;
    EditorSession& operator=(const EditorSession&) = delete;

    // Asks the controller for createView("editor") and opens a frame window the view's size
    // (getSize) to attach it to; false, with the reason in error, when there is no view or it
    // refuses the window. The frame stays open, empty, when there is no view.
    bool openEditor(std::string& error);
    // The editor closed and opened again in its frame: removed(), then attached().
    bool reopenEditor(std::string& error);
    // Gives the open view a display scale through IPlugViewContentScaleSupport; the view asks the
    // frame for its new size. False, with the reason in error, when the view refuses it.
    bool setContentScale(float scale, std::string& error);

    // Runs the message loop for seconds of real time, processing every audio block that falls due;
    // false, with the reason in error, when the processor fails a block.
    bool run(double seconds, std::string& error);

    // Sets a parameter (normalised 0..1) as a host's automation does: in the controller with
    // setParamNormalized, and in the processor's next block.
    void setParameter(Steinberg::Vst::ParamID tag, Steinberg::Vst::ParamValue value);
    // Selects factory program index (0..5) through the "Preset" parameter; the controller reports
    // the program's values as edits, which reach the processor in the next block.
    void selectProgram(int index);
    // The signal played from the next block on (the demo mix until set).
    void setSignal(InputSignal signal) { mAudio->setSignal(std::move(signal)); }

    // The peak of the last block played, in dBFS.
    double lastPeakDb() const { return mAudio->lastPeakDb(); }
    // Blocks processed since the session started.
    std::int64_t processedBlocks() const { return mAudio->processedBlocks(); }

    // Processor, controller and the component handler with its edit log.
    Steinberg::Vst::PluginInstance& plugin() { return *mInstance; }
    Steinberg::Vst::ComponentHandler& handler() { return *mInstance->handler; }
    // The editor view; null until openEditor succeeds.
    Steinberg::IPlugView* view() const { return mFrame ? mFrame->view() : nullptr; }
    // The host's frame window; null until openEditor.
    HWND frameWindow() const { return mFrame ? mFrame->window() : nullptr; }
    // The editor's own window inside the frame; null when the editor has none.
    HWND editorWindow() const { return mFrame ? mFrame->viewWindow() : nullptr; }
    // Mouse and keyboard input for the editor's window.
    EditorInput input() const { return EditorInput(editorWindow()); }
    // What the editor's window shows, or the frame's client area when the editor has no window.
    Screenshot screenshot() const;

private:
    EditorSession() = default;

    std::unique_ptr<VST3::Hosting::Module> mModule;
    std::unique_ptr<Steinberg::Vst::PluginInstance> mInstance;
    std::unique_ptr<AudioPlayer> mAudio;
    std::unique_ptr<EditorFrame> mFrame;
};

} // namespace velmoran::editorhost
