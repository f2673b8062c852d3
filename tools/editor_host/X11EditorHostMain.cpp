// velmoran-editor-host MODULE OUTPUT.png [--preset N] [--seconds S] [--signal demo|sine:HZ|noise]
//                      [--set TAG=VALUE ...] [--gesture KIND:X,Y[,...] ...]
// The editor test host on Linux: loads the plug-in as a host does, offers its run loop, embeds the
// editor by XEmbed into a top-level window of its own on the X display, plays a signal through the
// processor so that spectrum frames flow, drives the editor with real X input (XTest), saves what
// the editor shows as a PNG, then closes and opens the editor again and shuts down. Any failure is
// printed and gives a non-zero exit code.
#include "AudioPlayer.h"
#include "EditorHostArguments.h"
#include "PollRunLoop.h"

#include "plugin/PlugParameters.h"
#include "sdk/hosting/Module.h"
#include "sdk/hosting/PluginInstance.h"
#include "tools/contact_sheet/PngWriter.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using velmoran::editorhost::AudioPlayer;
using velmoran::editorhost::EditorGesture;
using velmoran::editorhost::EditorHostArguments;
using velmoran::editorhost::PollRunLoop;

namespace
{

// Time the editor runs after the gestures, and after it was opened again, seconds.
constexpr double kGestureSeconds = 0.3;
constexpr double kReopenSeconds = 0.2;

// The host's side of one editor: the plug-in running with its processor active, the host's own
// top-level window on its own X connection and the run loop that drives both.
class X11EditorSession
{
public:
    bool start(const std::string& modulePath, std::string& error)
    {
        mDisplay = XOpenDisplay(nullptr);
        if (mDisplay == nullptr)
        {
            error = "cannot open the X display";
            return false;
        }
        std::string reason;
        mModule = VST3::Hosting::Module::load(modulePath, reason);
        if (!mModule)
        {
            error = "cannot load the module '" + modulePath + "': " + reason;
            return false;
        }
        mInstance = std::make_unique<PluginInstance>(mModule->factory());
        if (!mInstance->valid())
        {
            error = "cannot start the plug-in: " + mInstance->failureReason();
            return false;
        }
        mInstance->controller->setComponentState(streamOf(stateBytes(mInstance->component)));
        mAudio = std::make_unique<AudioPlayer>(*mInstance);
        return mAudio->activate(error);
    }

    ~X11EditorSession()
    {
        closeEditor();
        if (mFrame != 0)
            XDestroyWindow(mDisplay, mFrame);
        mAudio.reset();
        mInstance.reset();
        mModule.reset();
        if (mDisplay != nullptr)
            XCloseDisplay(mDisplay);
    }

    // createView("editor"), a frame window of the view's size, and the view embedded into it.
    bool openEditor(std::string& error)
    {
        mView = owned(mInstance->controller->createView(ViewType::kEditor));
        ViewRect size;
        if (!mView || mView->getSize(&size) != kResultOk)
        {
            error = "createView(\"editor\") gave no view that tells its size";
            return false;
        }
        if (mView->isPlatformTypeSupported(kPlatformTypeX11EmbedWindowID) != kResultTrue)
        {
            error = "the view does not support the platform type \"X11EmbedWindowID\"";
            return false;
        }
        mFrame = XCreateSimpleWindow(mDisplay, DefaultRootWindow(mDisplay), 0, 0,
                                     static_cast<unsigned>(size.getWidth()),
                                     static_cast<unsigned>(size.getHeight()), 0, 0, 0x404040);
        XStoreName(mDisplay, mFrame, "Velmoran editor host");
        XMapWindow(mDisplay, mFrame);
        XSync(mDisplay, False);
        mView->setFrame(mRunLoop);
        return attach(error);
    }

    bool reopenEditor(std::string& error)
    {
        mView->removed();
        mAttached = false;
        return attach(error);
    }

    void closeEditor()
    {
        if (!mView)
            return;
        if (mAttached)
            mView->removed();
        mView->setFrame(nullptr);
        mView = nullptr;
        mAttached = false;
    }

    // Runs the host's loop for seconds of real time, processing every audio block that falls due.
    bool run(double seconds, std::string& error)
    {
        return mAudio->playFor(
            seconds, [this](AudioPlayer::Clock::time_point until) { mRunLoop->runUntilTime(until); }, error);
    }

    void setParameter(ParamID tag, ParamValue value)
    {
        mInstance->controller->setParamNormalized(tag, value);
        int32 index = 0;
        if (IParamValueQueue* queue = mInstance->handler->pendingChanges().addParameterData(tag, index))
            queue->addPoint(0, value, index);
    }

    void applySettings(const EditorHostArguments& arguments)
    {
        if (arguments.signal)
            mAudio->setSignal(*arguments.signal);
        if (arguments.preset)
            setParameter(Velmoran::kPresetTag,
                         static_cast<ParamValue>(*arguments.preset) / Velmoran::kPresetStepCount);
        for (const auto& [tag, value] : arguments.settings)
            setParameter(tag, value);
    }

    // The gestures as real pointer input at editor pixels.
    void performGestures(const std::vector<EditorGesture>& gestures)
    {
        for (const EditorGesture& gesture : gestures)
        {
            const std::vector<int>& n = gesture.numbers;
            switch (gesture.kind)
            {
            case EditorGesture::kMove:
                moveTo(n[0], n[1]);
                break;
            case EditorGesture::kClick:
                moveTo(n[0], n[1]);
                pressButton(1);
                break;
            case EditorGesture::kControlClick:
                moveTo(n[0], n[1]);
                holdControl(true);
                pressButton(1);
                holdControl(false);
                break;
            case EditorGesture::kRightClick:
                moveTo(n[0], n[1]);
                pressButton(3);
                break;
            case EditorGesture::kWheel:
                moveTo(n[0], n[1]);
                for (int notch = 0; notch < std::abs(n[2]); ++notch)
                    pressButton(n[2] > 0 ? 4 : 5);
                break;
            case EditorGesture::kDrag:
                drag(n[0], n[1], n[2], n[3], 8);
                break;
            }
        }
        XSync(mDisplay, False);
    }

    // The editor's window as it shows now, written as a PNG.
    bool saveScreenshot(const std::string& path) const
    {
        const Window editor = editorWindow();
        XWindowAttributes attributes{};
        if (editor == 0 || XGetWindowAttributes(mDisplay, editor, &attributes) == 0)
            return false;
        XImage* image = XGetImage(mDisplay, editor, 0, 0, static_cast<unsigned>(attributes.width),
                                  static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
        if (image == nullptr)
            return false;
        std::vector<std::uint8_t> rgba(static_cast<size_t>(attributes.width) * attributes.height * 4);
        for (int y = 0; y < attributes.height; ++y)
            for (int x = 0; x < attributes.width; ++x)
            {
                const unsigned long pixel = XGetPixel(image, x, y);
                std::uint8_t* out = &rgba[(static_cast<size_t>(y) * attributes.width + x) * 4];
                out[0] = static_cast<std::uint8_t>((pixel >> 16) & 0xFF);
                out[1] = static_cast<std::uint8_t>((pixel >> 8) & 0xFF);
                out[2] = static_cast<std::uint8_t>(pixel & 0xFF);
                out[3] = 0xFF;
            }
        XDestroyImage(image);
        const velmoran::platform::SoftwareImage picture{attributes.width, attributes.height,
                                                        attributes.width * 4, 4, rgba.data()};
        return velmoran::tools::writePng(path, picture);
    }

    // The editor's own window inside the frame, shown; 0 when it has none (an editor that could not
    // start keeps an empty window that it does not show).
    Window editorWindow() const
    {
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        Window shown = 0;
        if (mFrame != 0 && XQueryTree(mDisplay, mFrame, &root, &parent, &children, &count) != 0)
        {
            XWindowAttributes attributes{};
            for (unsigned index = 0; index < count && shown == 0; ++index)
                if (XGetWindowAttributes(mDisplay, children[index], &attributes) != 0 &&
                    attributes.map_state == IsViewable)
                    shown = children[index];
            XFree(children);
        }
        return shown;
    }

    double lastPeakDb() const { return mAudio->lastPeakDb(); }
    std::int64_t processedBlocks() const { return mAudio->processedBlocks(); }

private:
    bool attach(std::string& error)
    {
        if (mView->attached(reinterpret_cast<void*>(mFrame), kPlatformTypeX11EmbedWindowID) != kResultOk)
        {
            error = "attached(window, \"X11EmbedWindowID\") failed";
            return false;
        }
        mAttached = true;
        if (editorWindow() == 0)
        {
            error = "the editor view shows no window inside the host's frame";
            return false;
        }
        return true;
    }

    // The frame lies at the screen's top left, where editor pixels are screen pixels.
    void moveTo(int x, int y) { XTestFakeMotionEvent(mDisplay, -1, x, y, 0); }

    void pressButton(unsigned button)
    {
        XTestFakeButtonEvent(mDisplay, button, True, 0);
        XTestFakeButtonEvent(mDisplay, button, False, 0);
    }

    void holdControl(bool held)
    {
        XTestFakeKeyEvent(mDisplay, XKeysymToKeycode(mDisplay, XK_Control_L), held ? True : False, 0);
    }

    void drag(int fromX, int fromY, int toX, int toY, int steps)
    {
        moveTo(fromX, fromY);
        XTestFakeButtonEvent(mDisplay, 1, True, 0);
        for (int step = 1; step <= steps; ++step)
            moveTo(fromX + (toX - fromX) * step / steps, fromY + (toY - fromY) * step / steps);
        XTestFakeButtonEvent(mDisplay, 1, False, 0);
    }

    Display* mDisplay = nullptr;
    Window mFrame = 0;
    std::unique_ptr<VST3::Hosting::Module> mModule;
    std::unique_ptr<PluginInstance> mInstance;
    std::unique_ptr<AudioPlayer> mAudio;
    IPtr<PollRunLoop> mRunLoop = owned(new PollRunLoop);
    IPtr<IPlugView> mView;
    bool mAttached = false;
};

// Peak of the last output block in dBFS (-inf for silence).
bool showEditor(const EditorHostArguments& arguments, std::string& error)
{
    X11EditorSession session;
    if (!session.start(arguments.modulePath, error) || !session.openEditor(error))
        return false;
    session.applySettings(arguments);
    if (!session.run(arguments.seconds, error))
        return false;
    if (!arguments.gestures.empty())
    {
        session.performGestures(arguments.gestures);
        if (!session.run(kGestureSeconds, error))
            return false;
    }
    std::printf("Played %lld blocks; last block peak %.1f dBFS\n",
                static_cast<long long>(session.processedBlocks()), session.lastPeakDb());
    if (!session.saveScreenshot(arguments.outputPath))
    {
        error = "cannot write the screenshot to '" + arguments.outputPath + "'";
        return false;
    }
    std::printf("Screenshot written to %s\n", arguments.outputPath.c_str());
    return session.reopenEditor(error) && session.run(kReopenSeconds, error);
}

} // namespace

int main(int argc, char** argv)
{
    return velmoran::editorhost::editorHostMain(argc, argv, showEditor);
}
