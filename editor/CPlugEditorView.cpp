#include "CPlugEditorView.h"

#include "CEditorShared.h"
#include "EditorLayout.h"
#include "EditorScreen.h"
#include "EditorSize.h"
#include "GLPainter.h"
#include "HostKeys.h"
#include "mbx/MBXAboutMessage.h"
#include "platform/render/CGLRenderer.h"
#include "platform/window/WindowKit.h"
#include "plugin/PlugParameters.h"
#include "plugin/PlugProgram.h"
#include "plugin/SpectrumFrame.h"
#include "resources/ResourceIds.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

using velmoran::editor::Modifiers;
using velmoran::editor::MouseButton;
using velmoran::platform::CGLRenderer;
using velmoran::platform::CPlatformWindows;

constexpr uint32_t kTimerPeriodMs = 40;
// The wheel delta of one step (a Windows notch; the X11 kit reports its steps the same way).
constexpr float kWheelNotch = 120.0f;
// Not a renderer's result: the renderer could not even be made, which opens no box.
constexpr int kRendererNotMade = -1;
// Paints (40 ms apart) without a spectrum frame before the processor is reminded of the editor.
constexpr int kPaintsBeforeReminder = 25;
// Display scales a host may ask for.
constexpr float kMinimumScale = 0.5f;
constexpr float kMaximumScale = 4.0f;

int startWithRenderer(CGLRenderer& renderer, velmoran::platform::NativeWindow window, double logicalWidth,
                      double logicalHeight, double viewportWidth, double viewportHeight)
{
    return renderer.initialise(window, logicalWidth, logicalHeight, viewportWidth, viewportHeight);
}

CPlugEditorView::RendererStart gRendererStart = startWithRenderer;

const char* failureText(int result)
{
    switch (result)
    {
    case CGLRenderer::kMissingEntryPoints:
        return "Missing required OpenGL extensions.";
    case CGLRenderer::kShaderFailure:
        return "Failed to compile OpenGL shaders.";
    case CGLRenderer::kNoContext:
        return "Failed to create compatible OpenGL context.";
    default:
        return "Failed to initialise OpenGL renderer.";
    }
}

Modifiers heldModifiers()
{
    Modifiers held;
    held.fine = velmoran::platform::shiftKeyHeld();
    held.toggle = velmoran::platform::controlKeyHeld();
    return held;
}

CPlugEditorView* viewOf(void* user)
{
    return static_cast<CPlugEditorView*>(user);
}

} // namespace

CPlugEditorView::RendererStart CPlugEditorView::setRendererStart(RendererStart start)
{
    const RendererStart previous = gRendererStart;
    gRendererStart = start != nullptr ? start : startWithRenderer;
    return previous;
}

CPlugEditorView::CPlugEditorView(EditorControllerLink* controller, ViewRect* size)
    : EditorView(controller != nullptr ? controller->editController() : nullptr, size),
      mController(controller)
{
    mWindows = CPlatformWindows::instance(false);
    mSpectrumFrame = makeSpectrumFrame();
    mSampleRate = static_cast<float>(controller != nullptr ? controller->sampleRate() : 44100.0);
    mDisplayScale = mWindows != nullptr ? mWindows->displayScale() : 1.0f;
    mScaleX = mScaleY = mDisplayScale;
    const float defaultWidth =
        controller != nullptr ? controller->editorWidth() : velmoran::editor::kDesignWidth;
    const float defaultHeight =
        controller != nullptr ? controller->editorHeight() : velmoran::editor::kDesignHeight;
    const velmoran::editor::EditorSize editor = velmoran::editor::editorSize(
        defaultWidth, defaultHeight, mDisplayScale, size != nullptr, size != nullptr ? size->getWidth() : 0,
        size != nullptr ? size->getHeight() : 0);
    mEditorWidth = editor.width;
    mEditorHeight = editor.height;
    mEditorWidthPixels = editor.widthPixels;
    mEditorHeightPixels = editor.heightPixels;
    rect = ViewRect(0, 0, mEditorWidthPixels, mEditorHeightPixels);
}

CPlugEditorView::~CPlugEditorView()
{
    close();
    mSpectrumFrame.reset();
}

tresult PLUGIN_API CPlugEditorView::isPlatformTypeSupported(FIDString type)
{
    return type != nullptr && std::strcmp(type, velmoran::platform::kNativeWindowType) == 0 ? kResultTrue
                                                                                            : kResultFalse;
}

tresult PLUGIN_API CPlugEditorView::attached(void* parent, FIDString type)
{
    if (isPlatformTypeSupported(type) != kResultTrue || parent == nullptr)
        return kResultFalse;
    if (!mRunLoop.find(plugFrame, getController() != nullptr ? getController()->getHostContext() : nullptr))
        return kResultFalse;
    const tresult result = EditorView::attached(parent, type);
    if (!mIsOpen)
    {
        try
        {
            open(velmoran::platform::nativeWindowFrom(parent));
        }
        catch (...)
        {
            // Out of memory while opening: the view stays closed, ready for a later attach.
            close();
        }
    }
    return result;
}

tresult PLUGIN_API CPlugEditorView::queryInterface(const TUID iid, void** object)
{
    // Compared by value: the SDK copy declares the interface's identifier object without defining it.
    if (FUnknownPrivate::iidEqual(iid, IPlugViewContentScaleSupport_iid))
    {
        addRef();
        *object = static_cast<IPlugViewContentScaleSupport*>(this);
        return kResultOk;
    }
    return EditorView::queryInterface(iid, object);
}

tresult PLUGIN_API CPlugEditorView::setContentScaleFactor(ScaleFactor factor)
{
    if (!(factor >= kMinimumScale && factor <= kMaximumScale))
        return kInvalidArgument;
    try
    {
        sizeForScale(factor);
        ViewRect wanted(rect.left, rect.top, rect.left + mEditorWidthPixels, rect.top + mEditorHeightPixels);
        // The host answers with onSize; a host without a frame or one that refuses keeps its window
        // and the editor still draws at the new density.
        if (plugFrame != nullptr)
            plugFrame->resizeView(this, &wanted);
        rect = wanted;
        if (mIsOpen)
            followSize();
        return kResultOk;
    }
    catch (...)
    {
        return kResultFalse;
    }
}

void CPlugEditorView::sizeForScale(float scale)
{
    mDisplayScale = scale;
    EditorControllerLink* controller = plugController();
    const velmoran::editor::EditorSize size = velmoran::editor::editorSize(
        controller != nullptr ? controller->editorWidth() : velmoran::editor::kDesignWidth,
        controller != nullptr ? controller->editorHeight() : velmoran::editor::kDesignHeight, scale, false, 0,
        0);
    mEditorWidth = size.width;
    mEditorHeight = size.height;
    mEditorWidthPixels = size.widthPixels;
    mEditorHeightPixels = size.heightPixels;
}

void CPlugEditorView::followSize()
{
    mWindows->resize(mWindowSlot, mEditorWidthPixels, mEditorHeightPixels);
    mRenderer->makeCurrent();
    mRenderer->setPixelScale(mDisplayScale);
    mRenderer->setViewportSize(static_cast<float>(mEditorWidthPixels),
                               static_cast<float>(mEditorHeightPixels));
    measureScale(mWindows->windowHandle(mWindowSlot));
    // Text is drawn at the window's density: the cached texts go and are drawn anew.
    mPainter->releaseTextures();
    mPainter =
        std::make_unique<velmoran::editor::GLPainter>(*mRenderer, CEditorShared::instance(), density());
    mWindows->invalidate(mWindowSlot, 0, 0, mEditorWidthPixels, mEditorHeightPixels);
}

tresult PLUGIN_API CPlugEditorView::onKeyDown(char16, int16 keyCode, int16 modifiers)
{
    const int key = velmoran::editor::editorKeyFromHost(keyCode);
    if (key == 0 || !mScreen || !hasFocus())
        return kResultFalse;
    try
    {
        return mScreen->keyDown(key, velmoran::editor::editorModifiersFromHost(modifiers)) ? kResultTrue
                                                                                           : kResultFalse;
    }
    catch (...)
    {
        return kResultFalse;
    }
}

tresult PLUGIN_API CPlugEditorView::onKeyUp(char16, int16 keyCode, int16)
{
    const int key = velmoran::editor::editorKeyFromHost(keyCode);
    if (key == 0 || !mScreen)
        return kResultFalse;
    return mScreen->keyUp(key) ? kResultTrue : kResultFalse;
}

bool CPlugEditorView::hasFocus() const
{
    return mIsOpen && mWindowSlot >= 0 &&
           velmoran::platform::hasKeyboardFocus(mWindows->windowHandle(mWindowSlot));
}

tresult PLUGIN_API CPlugEditorView::removed()
{
    close();
    return EditorView::removed();
}

tresult PLUGIN_API CPlugEditorView::setFrame(IPlugFrame* frame)
{
    if (frame == nullptr)
        mRunLoop.stop();
    return EditorView::setFrame(frame);
}

void CPlugEditorView::open(velmoran::platform::NativeWindow parent)
{
    mIsOpen = false;
    if (mWindows == nullptr)
        return;
    // What a failed attempt kept for its box goes before the next one.
    if (mWindowSlot >= 0)
        close();
    mWindowSlot =
        mWindows->createChildWindow(0, 0, mEditorWidthPixels, mEditorHeightPixels, 1.0f, parent, this);
    if (mWindowSlot < 0)
        return;
    mWindows->setWindowIcon(mWindowSlot, velmoran::resources::kWindowIcon);
    mWindows->setWindowTitle(mWindowSlot, velmoran::editor::titleLine().c_str());
    mWindows->acceptDroppedFiles(mWindowSlot);
    const int started = startRenderer(mWindows->windowHandle(mWindowSlot));
    if (started != CGLRenderer::kOk)
    {
        failToOpen(started);
        return;
    }
    CEditorShared* shared = CEditorShared::instance();
    if (shared != nullptr)
    {
        shared->openImages(*mRenderer);
        mImagesOpen = true;
    }
    mScreen = std::make_unique<velmoran::editor::EditorScreen>(*this, mSampleRate);
    mPainter = std::make_unique<velmoran::editor::GLPainter>(*mRenderer, shared, density());
    mScreen->synchronise();
    mWindows->setWindowTimerPeriod(kTimerPeriodMs);
    registerCallbacks();
    mWindows->setTrackMouseMoves(mWindowSlot, true);
    mWindows->showWindow(mWindowSlot);
    mRunLoop.start(mWindowSlot, kTimerPeriodMs);
    mIsOpen = true;
    MBXManager::instance().editorOpened(this);
    if (EditorControllerLink* controller = plugController())
        controller->editorOpened(this);
}

void CPlugEditorView::failToOpen(int started)
{
    if (started == kRendererNotMade)
    {
        mWindows->destroyWindow(mWindowSlot);
        mWindowSlot = -1;
        return;
    }
    // The empty window stays until removed(): the box that says why belongs to its host window, and
    // where the host's run loop drives the windows, it goes on delivering the box's events.
    mWindows->setDestroyNotifyCallback(mWindowSlot, onDestroyed);
    mRunLoop.start(mWindowSlot, kTimerPeriodMs);
    // Last: the box's modal loop keeps the host live, and the host may release the view.
    showEditorError("Plug-In Editor Failed to Open", failureText(started));
}

int CPlugEditorView::startRenderer(velmoran::platform::NativeWindow window)
{
    if (!mRenderer)
    {
        mRenderer.reset(new (std::nothrow) CGLRenderer());
        if (!mRenderer)
            return kRendererNotMade;
    }
    const int result =
        gRendererStart(*mRenderer, window, velmoran::editor::kDesignWidth, velmoran::editor::kDesignHeight,
                       mEditorWidthPixels, mEditorHeightPixels);
    if (result != CGLRenderer::kOk)
    {
        // The half-started renderer is given up, so that the next attach starts afresh.
        mRenderer->teardown();
        mRenderer.reset();
        return result;
    }
    mRenderer->setPixelScale(mDisplayScale);
    mRenderer->setClearColour(0, 0, 0);
    measureScale(window);
    return CGLRenderer::kOk;
}

void CPlugEditorView::measureScale(velmoran::platform::NativeWindow window)
{
    float drawableWidth = 0.0f;
    float drawableHeight = 0.0f;
    mRenderer->logicalSize(drawableWidth, drawableHeight);
    int clientWidthPixels = 0;
    int clientHeightPixels = 0;
    velmoran::platform::clientSize(window, clientWidthPixels, clientHeightPixels);
    const float clientWidth = static_cast<float>(clientWidthPixels);
    const float clientHeight = static_cast<float>(clientHeightPixels);
    mScaleX = clientWidth > 0.0f ? drawableWidth / clientWidth : 1.0f;
    mScaleY = clientHeight > 0.0f ? drawableHeight / clientHeight : 1.0f;
}

float CPlugEditorView::density() const
{
    // The screen is laid out at its design size and stretched over the window; text is drawn at
    // the window's own density so it stays sharp.
    return std::min(mEditorWidth / velmoran::editor::kDesignWidth,
                    mEditorHeight / velmoran::editor::kDesignHeight);
}

void CPlugEditorView::registerCallbacks()
{
    mWindows->setPaintCallback(mWindowSlot, onPaint);
    mWindows->setMouseDownCallback(mWindowSlot, onMouseDown);
    mWindows->setMouseUpCallback(mWindowSlot, onMouseUp);
    mWindows->setMouseMoveCallback(mWindowSlot, onMouseMove);
    mWindows->setDoubleClickCallback(mWindowSlot, onDoubleClick);
    mWindows->setMouseWheelCallback(mWindowSlot, onMouseWheel);
    mWindows->setKeyHandler(mWindowSlot, onWindowKey);
    mWindows->setDestroyNotifyCallback(mWindowSlot, onDestroyed);
    mWindows->setPointerLostCallback(mWindowSlot, onPointerLost);
    mWindows->setTimerCallback(mWindowSlot, onTimer);
}

void CPlugEditorView::close()
{
    // The host's run loop stops calling into the window before the window goes.
    mRunLoop.stop();
    const bool wasOpen = mIsOpen;
    mIsOpen = false;
    if (mRenderer)
        mRenderer->makeCurrent();
    if (mPainter)
        mPainter->releaseTextures();
    mPainter.reset();
    mScreen.reset();
    if (mImagesOpen)
    {
        if (CEditorShared* shared = CEditorShared::instance())
            shared->closeImages();
        mImagesOpen = false;
    }
    // The renderer object stays for the next attach; its share of the context goes now, so the
    // context ends with the last open editor.
    if (mRenderer)
        mRenderer->teardown();
    if (mWindows != nullptr && mWindowSlot >= 0 && mWindows->slot(mWindowSlot).user == this)
        mWindows->destroyWindow(mWindowSlot);
    mWindowSlot = -1;
    if (wasOpen)
    {
        MBXManager::instance().editorClosed(this);
        if (EditorControllerLink* controller = plugController())
            controller->editorClosed(this);
    }
}

void CPlugEditorView::parameterChanged(ParamID tag, ParamValue value)
{
    if (!mScreen)
        return;
    try
    {
        mScreen->parameterChanged(tag, value);
    }
    catch (...)
    {
        // Out of memory: the controller's setter still succeeds; the widget shows the next change.
    }
}

void CPlugEditorView::tick()
{
    if (!mIsOpen || !mScreen)
        return;
    mScreen->tick();
    mWindows->invalidate(mWindowSlot, 0, 0, mEditorWidthPixels, mEditorHeightPixels);
}

void CPlugEditorView::copySpectrumFrame()
{
    EditorControllerLink* controller = plugController();
    if (controller == nullptr)
        return;
    mFrameSection.enter();
    // Only a frame the view has not seen yet is smoothed and drawn anew.
    const bool arrived = controller->copySpectrumFrame(*mSpectrumFrame, mSpectrumSequence);
    if (arrived)
        mScreen->setSpectrum(mSpectrumFrame->magnitudes, kAnalyserMagnitudeCount, mSpectrumFrame->sampleRate,
                             mSpectrumFrame->transformSize);
    mFrameSection.leave();
    remindProcessor(*controller, arrived);
}

void CPlugEditorView::remindProcessor(EditorControllerLink& controller, bool frameArrived)
{
    // A processor that missed the news of an open editor (a message lost on its way) sends no
    // frames: while the spectrum is on and none has come for a second, it hears it again.
    if (frameArrived || !isOn(static_cast<float>(controller.editController()->getParamNormalized(kFftTag))))
    {
        mPaintsWithoutFrame = 0;
        return;
    }
    if (++mPaintsWithoutFrame < kPaintsBeforeReminder)
        return;
    mPaintsWithoutFrame = 0;
    controller.setEditorOpen(true);
}

void CPlugEditorView::followSampleRate()
{
    // The processor may start, or change its rate, while the editor is open.
    EditorControllerLink* controller = plugController();
    const float rate = controller != nullptr ? static_cast<float>(controller->sampleRate()) : mSampleRate;
    if (rate != mSampleRate)
    {
        mSampleRate = rate;
        mScreen->graph().setSampleRate(rate);
    }
}

void CPlugEditorView::paint()
{
    if (!mIsOpen || !mRenderer || !mScreen)
        return;
    followSampleRate();
    copySpectrumFrame();
    mRenderer->makeCurrent();
    mRenderer->beginFrame();
    mRenderer->clear();
    mPainter->beginFrame();
    mScreen->draw(*mPainter);
    mRenderer->setScissor(0, 0, 0, 0);
    mRenderer->present();
}

double CPlugEditorView::parameter(unsigned tag) const
{
    return getController() != nullptr ? getController()->getParamNormalized(tag) : 0.0;
}

void CPlugEditorView::beginEdit(unsigned tag)
{
    if (getController() != nullptr)
        getController()->beginEdit(tag);
}

void CPlugEditorView::performEdit(unsigned tag, double value)
{
    if (getController() == nullptr)
        return;
    getController()->setParamNormalized(tag, value);
    getController()->performEdit(tag, value);
}

void CPlugEditorView::endEdit(unsigned tag)
{
    if (getController() != nullptr)
        getController()->endEdit(tag);
}

std::string CPlugEditorView::programName(int index) const
{
    EditorControllerLink* controller = plugController();
    const CPlugProgram* program = controller != nullptr ? controller->program(index) : nullptr;
    return program != nullptr ? std::string(program->name) : std::string();
}

void CPlugEditorView::showAbout()
{
    MBXAboutMessage about;
    MBXManager::instance().show(about);
}

void CPlugEditorView::focusWindow()
{
    if (mWindows != nullptr && mWindowSlot >= 0)
        mWindows->giveFocus(mWindowSlot);
}

void CPlugEditorView::messageBoxShown(bool shown)
{
    if (mScreen)
        mScreen->setGreyedOut(shown);
    if (mIsOpen)
    {
        paint();
    }
}

void CPlugEditorView::onPaint(int, int, int, int, int, void* user)
{
    viewOf(user)->paint();
}

void CPlugEditorView::onMouseDown(int x, int y, int button, int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (view->mScreen)
    {
        if (button == velmoran::platform::kButtonLeft)
            view->mWindows->captureMouse(view->mWindowSlot);
        view->mScreen->mouseDown(view->designX(x), view->designY(y), static_cast<MouseButton>(button),
                                 heldModifiers());
    }
}

void CPlugEditorView::onMouseUp(int x, int y, int button, int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (view->mScreen)
    {
        if (button == velmoran::platform::kButtonLeft)
        {
            view->mReleasingCapture = true;
            view->mWindows->releaseCapture();
            view->mReleasingCapture = false;
        }
        view->mScreen->mouseUp(view->designX(x), view->designY(y), static_cast<MouseButton>(button),
                               heldModifiers());
    }
}

void CPlugEditorView::onMouseMove(int x, int y, int button, int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (!view->mScreen)
        return;
    Modifiers modifiers = heldModifiers();
    // Code 1 is the left button alone; with code 0 the left one may still be held with the right.
    modifiers.leftButtonUp = button != 1 && !velmoran::platform::leftButtonHeld();
    view->mScreen->mouseMove(view->designX(x), view->designY(y), modifiers);
}

void CPlugEditorView::onDoubleClick(int x, int y, int, int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (view->mScreen)
        view->mScreen->doubleClick(view->designX(x), view->designY(y), heldModifiers());
}

void CPlugEditorView::onMouseWheel(int x, int y, int delta, int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (view->mScreen)
        view->mScreen->wheel(view->designX(x), view->designY(y), static_cast<float>(delta) / kWheelNotch,
                             heldModifiers());
}

bool CPlugEditorView::onWindowKey(int key, int down, int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (!view->mScreen || !view->hasFocus())
        return false;
    return down != 0 ? view->mScreen->keyDown(key, heldModifiers()) : view->mScreen->keyUp(key);
}

void CPlugEditorView::onDestroyed(int, void* user)
{
    // The host destroyed its window before removed(): the editor closes now, while its window and
    // so its GL context can still be made current for the textures to go. The kit frees the slot.
    CPlugEditorView* view = viewOf(user);
    view->mWindowSlot = -1;
    view->close();
}

void CPlugEditorView::onPointerLost(int, void* user)
{
    CPlugEditorView* view = viewOf(user);
    if (view->mScreen && !view->mReleasingCapture)
        view->mScreen->cancelGesture();
}

bool CPlugEditorView::onTimer(void* user)
{
    viewOf(user)->tick();
    return true;
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
