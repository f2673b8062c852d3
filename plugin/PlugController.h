#pragma once

#include "EditorLink.h"
#include "PlugProgram.h"
#include "PlugState.h"
#include "SpectrumFrame.h"

#include "pluginterfaces/vst/ivstmidicontrollers.h"
#include "public.sdk/source/vst/vsteditcontroller.h"
#include "sdk/ReferenceCount.h"

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// The edit controller: registers the parameters, the unit "Root" with the program list "Factory
// Presets", turns a "Preset" change into a full program load reported to the host, shows values
// as text and keeps the last spectrum frame the processor sent.
class CPlugController : public EditControllerEx1, public IMidiMapping, public EditorControllerLink
{
public:
    CPlugController() = default;

    // Factory function: a new controller as its IEditController, null if it cannot be made.
    static FUnknown* createInstance(void* context);

    // Registers parameters, unit, program list and the frame buffer (UI thread).
    tresult PLUGIN_API initialize(FUnknown* context) SMTG_OVERRIDE;
    tresult PLUGIN_API terminate() SMTG_OVERRIDE;
    // Keeps spectrum frames and the sample rate sent by the processor.
    tresult PLUGIN_API notify(IMessage* message) SMTG_OVERRIDE;
    // Connects as the SDK does, then tells the processor at the other end whether an editor is
    // open: a processor connected after the first editor opened learns it here.
    tresult PLUGIN_API connect(IConnectionPoint* other) SMTG_OVERRIDE;

    // Reads the processor's state stream into the parameters (UI thread).
    tresult PLUGIN_API setComponentState(IBStream* state) SMTG_OVERRIDE;
    // The controller's own state: the "Preset" value, one float, so that a host replaying the saved
    // program choice after restoring can be told from a user choosing a program (UI thread).
    tresult PLUGIN_API setState(IBStream* state) SMTG_OVERRIDE;
    tresult PLUGIN_API getState(IBStream* state) SMTG_OVERRIDE;
    // A change of "Preset" loads a factory program and reports every value as an edit.
    tresult PLUGIN_API setParamNormalized(ParamID tag, ParamValue value) SMTG_OVERRIDE;
    // Value texts as the host shows them, and their inverse.
    tresult PLUGIN_API getParamStringByValue(ParamID tag, ParamValue valueNormalized,
                                             String128 string) SMTG_OVERRIDE;
    tresult PLUGIN_API getParamValueByString(ParamID tag, TChar* string,
                                             ParamValue& valueNormalized) SMTG_OVERRIDE;

    // Parameter and unit information by index; an index out of range is refused (UI thread).
    tresult PLUGIN_API getParameterInfo(int32 paramIndex, ParameterInfo& info) SMTG_OVERRIDE;
    tresult PLUGIN_API getUnitInfo(int32 unitIndex, UnitInfo& info) SMTG_OVERRIDE;

    tresult PLUGIN_API getMidiControllerAssignment(int32 busIndex, int16 channel,
                                                   CtrlNumber midiControllerNumber,
                                                   ParamID& id) SMTG_OVERRIDE;

    // The editor for "editor", null for any other name or where there is no editor.
    IPlugView* PLUGIN_API createView(FIDString name) SMTG_OVERRIDE;

    // Copies the last spectrum frame received into `frame` if it is newer than `sequence`, the
    // number of the frame the caller saw last, and updates that number. False when there is
    // nothing new or no frame buffer (UI thread).
    bool copySpectrumFrame(SpectrumFrame& frame, uint64_t& sequence) override;
    // The processor's sample rate in Hz as last reported, 44100 until then.
    double sampleRate() const override { return mSampleRate; }
    // The factory program at index (0..5), null outside initialize..destruction.
    const CPlugProgram* program(int index) const override;
    // The editor's size at scale 1 in pixels, and the display scale read at initialize.
    float editorWidth() const override { return mEditorWidth; }
    float editorHeight() const override { return mEditorHeight; }
    float displayScale() const { return mDisplayScale; }

    // An editor opened or closed in the host's window: open editors follow every parameter change.
    void editorOpened(EditorListener* editor) override;
    void editorClosed(EditorListener* editor) override;
    EditController* editController() override { return this; }
    // Tells the processor that the first editor opened (true) or the last one closed (false): it
    // analyses the spectrum only while there is an editor to show it (UI thread).
    void setEditorOpen(bool open) override;

    OBJ_METHODS(CPlugController, EditControllerEx1)
    DEFINE_INTERFACES
    DEF_INTERFACE(IMidiMapping)
    END_DEFINE_INTERFACES(EditControllerEx1)
    VELMORAN_REFCOUNT_METHODS(EditControllerEx1)

private:
    void registerParameters();
    void addFactoryProgramList();
    void loadProgram(int index);
    // Reports the restored values that differ from the last loaded program's as edits.
    void reportRestoredValues(const StateValues& restored);
    // Sets a parameter's value and tells every open editor.
    tresult setValueAndShow(ParamID tag, ParamValue value);
    // Tells every open editor the parameter's current value.
    void showToEditors(ParamID tag);

    std::unique_ptr<std::array<CPlugProgram, kFactoryProgramCount>> mPrograms;
    std::unique_ptr<SpectrumFrame> mSpectrumFrame;
    // Held while a frame is copied in and while the buffer is freed: the processor's sender may
    // still be delivering a frame when the host terminates the controller after disconnecting.
    std::mutex mFrameLock;
    uint64_t mFrameSequence = 0;
    double mSampleRate = 44100.0;
    float mEditorWidth = 998.0f;
    float mEditorHeight = 634.0f;
    float mDisplayScale = 1.0f;
    std::vector<EditorListener*> mOpenViews;
    // The program whose values went to the host as edits since the last restored state, -1 if none.
    int mReportedProgram = -1;
    // The program a host is expected to replay as "Preset" after restoring this controller's
    // state, -1 if none: that replay must not load it over the restored values.
    int mExpectedPresetReplay = -1;
    // The reference on the images that all editors of the module share, from initialize to terminate.
    bool mHoldsEditorShared = false;
};

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
