#pragma once

#include "EditorContext.h"
#include "HostRunLoop.h"
#include "mbx/MBXManager.h"

#include "platform/window/CriticalSection.h"
#include "platform/window/NativeWindow.h"
#include "plugin/EditorLink.h"
#include "pluginterfaces/gui/iplugviewcontentscalesupport.h"
#include "public.sdk/source/vst/vsteditcontroller.h"

#include <array>
#include <cstdint>
#include <memory>

namespace velmoran::platform
{
class CGLRenderer;
class CPlatformWindows;
} // namespace velmoran::platform

namespace velmoran::editor
{
class EditorScreen;
class GLPainter;
} // namespace velmoran::editor

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// The plug-in's editor in the host's window: a child window of the window kit with an OpenGL
// renderer, the equaliser screen, a copy of the latest spectrum frame and a 40 ms repaint timer.
// The host's UI thread makes every call.
class CPlugEditorView : public EditorView,
                        public IPlugViewContentScaleSupport,
                        public velmoran::editor::EditorContext,
                        public MBXEditorListener,
                        public EditorListener
{
public:
    // How the renderer is started on the editor's window: the renderer's own initialise unless
    // replaced (the tests replace it to see a failing driver). Gives the renderer's result code.
    using RendererStart = int (*)(velmoran::platform::CGLRenderer& renderer,
                                  velmoran::platform::NativeWindow window, double logicalWidth,
                                  double logicalHeight, double viewportWidth, double viewportHeight);
    static RendererStart setRendererStart(RendererStart start);

    // An editor for `controller`, as large as the host's rectangle or, without one, the design
    // size times the display scale.
    CPlugEditorView(EditorControllerLink* controller, ViewRect* size = nullptr);
    ~CPlugEditorView() override;

    tresult PLUGIN_API isPlatformTypeSupported(FIDString type) SMTG_OVERRIDE;
    // Opens the editor in the host's window (the platform's own window type only). Where the
    // platform's windows are driven by the host's run loop, a host without one is refused.
    tresult PLUGIN_API attached(void* parent, FIDString type) SMTG_OVERRIDE;
    // Closes the editor; the renderer is kept for the next attach.
    tresult PLUGIN_API removed() SMTG_OVERRIDE;
    // The host's display scale for this view, before or after attached (0.5 to 4): the editor takes
    // the size of its design times the scale, asks the host's frame for it and draws at that
    // density.
    tresult PLUGIN_API setContentScaleFactor(ScaleFactor factor) SMTG_OVERRIDE;

    // Keys that the host passes on (VST 3 key codes): kResultTrue for those the editor used, which
    // it uses only while its window has the focus; kResultFalse leaves the key to the host.
    tresult PLUGIN_API onKeyDown(char16 key, int16 keyCode, int16 modifiers) SMTG_OVERRIDE;
    tresult PLUGIN_API onKeyUp(char16 key, int16 keyCode, int16 modifiers) SMTG_OVERRIDE;
    // Losing the frame also lets go of its run loop.
    tresult PLUGIN_API setFrame(IPlugFrame* frame) SMTG_OVERRIDE;

    // A parameter changed in the controller: the widgets follow and the status line says so.
    void parameterChanged(ParamID tag, ParamValue value) override;

    // State for the tests and the controller.
    bool isOpen() const { return mIsOpen; }
    int windowSlot() const { return mWindowSlot; }
    // The scale the editor draws at; message boxes follow it.
    float displayScale() const override { return mDisplayScale; }
    int editorWidth() const { return mEditorWidthPixels; }
    int editorHeight() const { return mEditorHeightPixels; }
    float scaleX() const { return mScaleX; }
    float scaleY() const { return mScaleY; }
    velmoran::editor::EditorScreen* screen() const { return mScreen.get(); }
    const velmoran::platform::CGLRenderer* renderer() const { return mRenderer.get(); }
    // One timer tick, as the window's 40 ms timer gives it.
    void tick();
    // Draws one frame now.
    void paint();

    // EditorContext: what the screen asks of the controller and the window.
    double parameter(unsigned tag) const override;
    void beginEdit(unsigned tag) override;
    void performEdit(unsigned tag, double value) override;
    void endEdit(unsigned tag) override;
    std::string programName(int index) const override;
    void showAbout() override;
    void focusWindow() override;

    // A message box opened or closed: the editor greys out meanwhile.
    void messageBoxShown(bool shown) override;

    OBJ_METHODS(CPlugEditorView, EditorView)
    tresult PLUGIN_API queryInterface(const TUID iid, void** object) SMTG_OVERRIDE;
    uint32 PLUGIN_API addRef() SMTG_OVERRIDE { return EditorView::addRef(); }
    uint32 PLUGIN_API release() SMTG_OVERRIDE { return EditorView::release(); }

private:
    void open(velmoran::platform::NativeWindow parent);
    // Takes the editor's size for the display scale.
    void sizeForScale(float scale);
    // The open editor's window, renderer and painter follow the editor's size and scale.
    void followSize();
    // scaleX and scaleY from the renderer's drawable size and the window's client size.
    void measureScale(velmoran::platform::NativeWindow window);
    // Device pixels per design pixel.
    float density() const;
    void close();
    // Tells the user why the renderer did not start (its result code), unless it was not even made.
    void failToOpen(int started);
    // The renderer's result code for the window.
    int startRenderer(velmoran::platform::NativeWindow window);
    void registerCallbacks();
    void copySpectrumFrame();
    void remindProcessor(EditorControllerLink& controller, bool frameArrived);
    void followSampleRate();
    EditorControllerLink* plugController() const { return mController; }
    bool hasFocus() const;
    float designX(int x) const { return static_cast<float>(x) * mScaleX; }
    float designY(int y) const { return static_cast<float>(y) * mScaleY; }

    static void onPaint(int left, int top, int width, int height, int slot, void* user);
    static void onMouseDown(int x, int y, int button, int slot, void* user);
    static void onMouseUp(int x, int y, int button, int slot, void* user);
    static void onMouseMove(int x, int y, int button, int slot, void* user);
    static void onDoubleClick(int x, int y, int button, int slot, void* user);
    static void onMouseWheel(int x, int y, int delta, int slot, void* user);
    static bool onWindowKey(int key, int down, int slot, void* user);
    static void onDestroyed(int slot, void* user);
    static void onPointerLost(int slot, void* user);
    static bool onTimer(void* user);

    EditorControllerLink* mController = nullptr;
    velmoran::platform::CPlatformWindows* mWindows = nullptr;
    int mWindowSlot = -1;
    bool mIsOpen = false;
    std::unique_ptr<velmoran::platform::CGLRenderer> mRenderer;
    std::unique_ptr<velmoran::editor::GLPainter> mPainter;
    std::unique_ptr<velmoran::editor::EditorScreen> mScreen;
    float mDisplayScale = 1.0f;
    float mScaleX = 1.0f;
    float mScaleY = 1.0f;
    float mEditorWidth = 0.0f;
    float mEditorHeight = 0.0f;
    int mEditorWidthPixels = 0;
    int mEditorHeightPixels = 0;
    float mSampleRate = 44100.0f;
    std::unique_ptr<SpectrumFrame> mSpectrumFrame;
    uint64_t mSpectrumSequence = 0;
    int mPaintsWithoutFrame = 0;
    velmoran::platform::CriticalSection mFrameSection;
    velmoran::editor::HostRunLoop mRunLoop;
    bool mImagesOpen = false;
    // Set while the editor lets go of the mouse itself at a release, which is no loss.
    bool mReleasingCapture = false;
};

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
