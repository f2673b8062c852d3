// What the Linux editor costs the host's UI thread: one 40 ms tick of an open editor (the timer
// handler: events, status cycle, a full repaint and the swap) with the spectrum on and a new
// spectrum frame every tick, and the event handler woken with nothing to read, which is all an idle
// editor does between ticks. Run under Xvfb; with Mesa's llvmpipe the repaint dominates.

#include "editor/CPlugEditorView.h"
#include "platform/window/WindowKit.h"
#include "plugin/PlugController.h"
#include "plugin/PlugParameters.h"
#include "plugin/SpectrumFrame.h"
#include "tools/editor_host/PollRunLoop.h"

#include "public.sdk/source/vst/hosting/hostclasses.h"

#include <benchmark/benchmark.h>

#include <X11/Xlib.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;
using velmoran::editorhost::PollRunLoop;
using velmoran::platform::CPlatformWindows;

namespace
{

constexpr int kTicks = 1000;

// A controller with its editor open in a host window on the display, spectrum on.
class OpenEditor
{
public:
    OpenEditor()
    {
        CPlatformWindows::instance(true);
        mDisplay = XOpenDisplay(nullptr);
        if (mDisplay == nullptr)
            return;
        mWindow = XCreateSimpleWindow(mDisplay, DefaultRootWindow(mDisplay), 0, 0, 998, 634, 0, 0, 0);
        XMapWindow(mDisplay, mWindow);
        XSync(mDisplay, False);
        mController = static_cast<CPlugController*>(
            static_cast<IEditController*>(CPlugController::createInstance(nullptr)));
        mController->initialize(&mHost);
        mController->setParamNormalized(kFftTag, 1.0);
        mView = owned(static_cast<CPlugEditorView*>(mController->createView(ViewType::kEditor)));
        mView->setFrame(mRunLoop);
        mOpen = mView->attached(reinterpret_cast<void*>(mWindow), kPlatformTypeX11EmbedWindowID) == kResultOk;
    }
    ~OpenEditor()
    {
        if (mView)
        {
            mView->removed();
            mView->setFrame(nullptr);
            mView = nullptr;
        }
        if (mController != nullptr)
        {
            mController->terminate();
            mController->release();
        }
        if (mDisplay != nullptr)
            XCloseDisplay(mDisplay);
        CPlatformWindows::release();
    }

    bool open() const { return mOpen; }
    PollRunLoop& runLoop() { return *mRunLoop; }

    // A new frame from the processor, as the spectrum link delivers it, its peaks moved by `phase`.
    void sendSpectrumFrame(int phase)
    {
        mFrame.sampleRate = 48000.0f;
        mFrame.transformSize = 4096;
        for (int bin = 0; bin < kAnalyserMagnitudeCount; ++bin)
            mFrame.magnitudes[bin] =
                0.05f / (1.0f + bin / 40.0f) * (1.0f + 0.5f * std::sin(0.05f * (bin + phase)));
        IPtr<HostMessage> message = owned(new HostMessage);
        message->setMessageID("BinaryMessage");
        message->getAttributes()->setBinary("FFTData", &mFrame, sizeof(mFrame));
        mController->notify(message);
    }

private:
    Display* mDisplay = nullptr;
    Window mWindow = 0;
    HostApplication mHost;
    CPlugController* mController = nullptr;
    IPtr<CPlugEditorView> mView;
    IPtr<PollRunLoop> mRunLoop = owned(new PollRunLoop);
    SpectrumFrame mFrame;
    bool mOpen = false;
};

void reportDurations(benchmark::State& state, std::vector<double>& microseconds)
{
    std::sort(microseconds.begin(), microseconds.end());
    state.counters["median_us"] = microseconds[microseconds.size() / 2];
    state.counters["worst_us"] = microseconds.back();
}

// 1,000 ticks of an open editor, each timed on its own.
void BM_EditorTick(benchmark::State& state)
{
    OpenEditor editor;
    if (!editor.open())
    {
        state.SkipWithError("the editor did not open (no X display or no GLX context)");
        return;
    }
    std::vector<double> microseconds;
    for (auto _ : state)
    {
        microseconds.clear();
        for (int tick = 0; tick < kTicks; ++tick)
        {
            editor.sendSpectrumFrame(tick);
            const auto start = std::chrono::steady_clock::now();
            editor.runLoop().fireTimers();
            microseconds.push_back(
                std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
        }
    }
    reportDurations(state, microseconds);
}
BENCHMARK(BM_EditorTick)->Iterations(1)->Unit(benchmark::kMillisecond);

// The event handler woken with nothing to read: the idle editor's whole cost between ticks.
void BM_IdleWakeUp(benchmark::State& state)
{
    OpenEditor editor;
    if (!editor.open())
    {
        state.SkipWithError("the editor did not open (no X display or no GLX context)");
        return;
    }
    editor.runLoop().fireTimers();
    for (auto _ : state)
        editor.runLoop().signalDescriptors();
}
BENCHMARK(BM_IdleWakeUp)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
