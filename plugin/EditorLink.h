#pragma once

#include "SpectrumFrame.h"

#include "pluginterfaces/gui/iplugview.h"
#include "pluginterfaces/vst/vsttypes.h"

#include <cstdint>

namespace Steinberg
{
namespace Vst
{

class EditController;

namespace Velmoran
{

struct CPlugProgram;

// The seam between the controller and its editor. The controller sees an open editor only as a
// listener to parameter changes, and the editor reads the controller only through
// EditorControllerLink; the functions at the end are the editor library's side of the seam.

// An open editor as its controller sees it.
class EditorListener
{
public:
    // A parameter changed in the controller (UI thread).
    virtual void parameterChanged(ParamID tag, ParamValue value) = 0;

protected:
    ~EditorListener() = default;
};

// What the editor reads of its controller beyond the parameters.
class EditorControllerLink
{
public:
    // The controller whose parameters the editor reads and edits.
    virtual EditController* editController() = 0;
    // The processor's sample rate in Hz as last reported.
    virtual double sampleRate() const = 0;
    // The editor's size at scale 1 in pixels.
    virtual float editorWidth() const = 0;
    virtual float editorHeight() const = 0;
    // Copies the last spectrum frame into `frame` if it is newer than `sequence`; false when not.
    virtual bool copySpectrumFrame(SpectrumFrame& frame, uint64_t& sequence) = 0;
    // The factory program at index (0..5), null when there is none.
    virtual const CPlugProgram* program(int index) const = 0;
    // An editor opened or closed: open editors follow every parameter change.
    virtual void editorOpened(EditorListener* editor) = 0;
    virtual void editorClosed(EditorListener* editor) = 0;
    // Tells the processor again that an editor is open, for one that missed the news.
    virtual void setEditorOpen(bool open) = 0;

protected:
    ~EditorControllerLink() = default;
};

// A new editor view on the controller; null when it cannot be made.
IPlugView* createEditorView(EditorControllerLink& controller);
// Module load and unload: the window kit, the message boxes and the images all editors share.
void startEditorModule(const char* productToken);
void stopEditorModule();
// A controller's reference on the images that all editors of the module share, held from
// initialize to terminate.
void acquireEditorImages();
void releaseEditorImages();

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
