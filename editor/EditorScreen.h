#pragma once

#include "BandSettings.h"
#include "EditorContext.h"
#include "EditorInput.h"
#include "EditorTexts.h"
#include "Painter.h"
#include "ResponseGraph.h"
#include "widgets/ImageButton.h"
#include "widgets/ImageToggle.h"
#include "widgets/Panel.h"
#include "widgets/PopupMenu.h"
#include "widgets/StatusLine.h"
#include "widgets/TextBox.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmoran::editor
{

// The equaliser screen without its window: widgets, response graph, status line and its cycle,
// the setters that follow the parameters, and the gestures that change them. The editor view
// feeds it window input in design pixels, a tick every 40 ms and spectrum frames, and has it draw
// through a Painter. UI thread only.
class EditorScreen
{
public:
    // Ticks of the status cycle: a message stays 62 ticks, the handles' highlights fade after
    // 125, the line clears after 562.
    static constexpr uint32_t kMessageTicks = 625;
    static constexpr uint32_t kTitleRestoreTick = 563;
    static constexpr uint32_t kDragClearTick = 500;
    static constexpr uint32_t kLineClearTick = 63;
    static constexpr uint32_t kTitleWidgetTicks = 500;
    static constexpr uint32_t kTitleOnlyTicks = 125;
    static constexpr uint32_t kHintTicks = 625;

    // A screen of the design size talking to `context`, its graph drawn for the given sample
    // rate (Hz).
    EditorScreen(EditorContext& context, float sampleRate);
    // A screen closed mid-gesture still ends the host's edits.
    ~EditorScreen();
    EditorScreen(const EditorScreen&) = delete;
    EditorScreen& operator=(const EditorScreen&) = delete;

    // Reads every parameter and sets every widget without posting messages; the status line then
    // shows the title briefly.
    void synchronise();
    // A parameter changed (host automation, a program, or this editor's own edit).
    void parameterChanged(unsigned tag, double value);
    // A new spectrum frame: `count` magnitudes of an N-point transform at `sampleRate` Hz.
    void setSpectrum(const float* magnitudes, int count, float sampleRate, int transformSize);

    // One 40 ms tick: the status cycle, the hint countdown and the graph's animation.
    void tick();
    // Draws the whole screen.
    void draw(Painter& painter);

    // Window input in design pixels.
    void mouseDown(float x, float y, MouseButton button, Modifiers modifiers);
    void mouseMove(float x, float y, Modifiers modifiers);
    void mouseUp(float x, float y, MouseButton button, Modifiers modifiers);
    void doubleClick(float x, float y, Modifiers modifiers);
    // The wheel turned by `steps` (positive away from the user; a notch of a stepped wheel is one,
    // a touchpad or a free-spinning wheel gives fractions): Q over a band, zoom over the plot, in
    // proportion, so that many small turns add up to one big one.
    void wheel(float x, float y, float steps, Modifiers modifiers);
    // A key pressed; true when the editor used it, false when it is for the host (the editor uses
    // the arrows and Delete on the selected band and the menu's keys while a menu is open).
    bool keyDown(int key, Modifiers modifiers);
    // A key let go; true when its press was used, so that the host sees neither half.
    bool keyUp(int key);
    // The window lost the mouse or the focus mid-gesture (capture taken, mode cancelled, focus
    // gone): the held button's release will not come, so the gesture ends here as at a release,
    // without the click a release on a widget would make.
    void cancelGesture();
    // A message box opened (true) or closed: the surface is drawn grey meanwhile.
    void setGreyedOut(bool greyed) { mGreyedOut = greyed; }
    bool greyedOut() const { return mGreyedOut; }

    // Posts a message on the status line for the whole cycle.
    void postStatus(const std::string& text);
    // Shows the title line through the title widget.
    void showTitle();

    // Read access for the view and the tests.
    const std::string& statusText() const { return mStatusText; }
    uint32_t statusCountdown() const { return mStatusCountdown; }
    uint32_t hintCountdown() const { return mHintCountdown; }
    bool needsRedraw() const { return mNeedsRedraw; }
    const StatusLine& statusLine() const { return *mStatusLine; }
    const ImageButton& titleWidget() const { return *mTitleButton; }
    const TextBox& bandInfoBox(int band) const { return *mInfoBoxes[static_cast<size_t>(band)]; }
    const TextBox& outputGainBox() const { return *mOutputGainBox; }
    const TextBox& zoomBox() const { return *mZoomBox; }
    const TextBox& programBox() const { return *mProgramBox; }
    const TextBox& hintBox() const { return *mHintBox; }
    const PopupMenu& bandMenu(int band) const { return *mBandMenus[static_cast<size_t>(band)]; }
    // The band whose menu is open, -1 for none.
    int openMenuBand() const { return mMenuBand; }
    const ResponseGraph& graph() const { return mGraph; }
    ResponseGraph& graph() { return mGraph; }
    const BandSettings& band(int index) const { return mBands[static_cast<size_t>(index)]; }
    // The band selected for the buttons and the keys, -1 for none.
    int selectedBand() const { return mSelectedBand; }
    // The switch faces in their order: effect, flat, clear, spectrum, source, slope.
    const ImageToggle& toggle(int index) const { return *mToggles[static_cast<size_t>(index)]; }
    // The image buttons: channel mode, solo, polarity, title, info; and the lock selector.
    const ImageButton& imageButton(int index) const { return *mImageButtons[static_cast<size_t>(index)]; }
    const ImageButton& lockSelector() const { return *mLockSelector; }
    float width() const { return mWidth; }
    float height() const { return mHeight; }

    // Order of the switch faces and the image buttons.
    enum ToggleIndex
    {
        kEffectToggle,
        kFlatToggle,
        kClearToggle,
        kSpectrumToggle,
        kSourceToggle,
        kSlopeToggle,
        kToggleCount
    };
    enum ImageButtonIndex
    {
        kChannelModeButton,
        kSoloButton,
        kPolarityButton,
        kTitleButtonIndex,
        kInfoButton,
        kImageButtonCount
    };

private:
    // Widgets and frame.
    void createWidgets();
    void createBandWidgets();
    void drawFrame(Painter& painter) const;
    void hideReadouts();
    void hideBoxesNotUnderMouse();
    void clearDraggedSlots();

    // Setters that follow the parameters.
    void applySwitch(unsigned tag, float value, bool post);
    void applyBand(int band, bool post, int highlightCode);
    void applySolo(float value, bool post);
    void applyOutputGain(float value, bool post);
    void applyInputGain(float value, bool post);
    // The readout box at the panel's foot: the output or the input gain, whichever last changed.
    void showGainReadout(const std::string& text, bool post);
    void applyProgram(float value, bool post);
    void setZoomReadout(float zoom);
    void showBandInfo(int band, int highlightCode);
    void setAutoLock(unsigned mode);
    void updateBandButtons();
    void setBandValue(int band, unsigned tag, float value);

    // Gestures (EditorGestures.cpp).
    bool pressWidget(float x, float y);
    // A press on a shown info box stays with the box; on its state line it switches the band.
    bool pressInfoBox(float x, float y);
    // Runs the click of a pressed widget; nothing of the screen is touched after it.
    void clickWidget(const Widget* pressed);
    void clickToggle(int index);
    // What the status line says while the mouse is over a switch or a button: its name and state.
    std::string toggleHoverText(int index) const;
    std::string buttonHoverText(int index) const;
    void postHoverTexts(float x, float y);
    void clickImageButton(int index);
    void startBandDrag(int slot, float x, float y);
    void toggleBand(int band);
    void startGainDrag(int marker, float y);
    void dragGain(float y, Modifiers modifiers);
    // What the status line says while the mouse is over a gain marker.
    std::string markerHoverText(int marker) const;
    void addBandAt(float x, float y);
    void dragBand(float x, float y, Modifiers modifiers);
    void finishGesture();
    bool menuKey(int key);
    bool bandKey(int key, Modifiers modifiers);
    void letGoOfHandles();
    void openBandMenu(int band, float x, float y);
    void chooseMenuEntry(int entry);
    void resetBand(int band);
    void nudgeBand(int band, int key, Modifiers modifiers);
    void deleteBand(int band);
    void setFlat();
    void clearFilters();
    void selectBand(int band);
    void singleEdit(unsigned tag, double value);
    void beginGesture(std::vector<unsigned> tags);
    void performGestureEdit(unsigned tag, double value);

    EditorContext& mContext;
    float mWidth;
    float mHeight;
    ResponseGraph mGraph;

    std::unique_ptr<Panel> mTitleBar;
    std::unique_ptr<Panel> mControlRow;
    std::array<std::unique_ptr<ImageToggle>, kToggleCount> mToggles;
    std::array<std::unique_ptr<ImageButton>, kImageButtonCount> mImageButtons;
    ImageButton* mTitleButton = nullptr;
    std::unique_ptr<ImageButton> mLockSelector;
    std::array<std::unique_ptr<PopupMenu>, Steinberg::Vst::Velmoran::kBandCount> mBandMenus;
    std::array<std::unique_ptr<TextBox>, Steinberg::Vst::Velmoran::kBandCount> mInfoBoxes;
    std::unique_ptr<TextBox> mOutputGainBox;
    std::unique_ptr<TextBox> mZoomBox;
    std::unique_ptr<TextBox> mProgramBox;
    std::unique_ptr<TextBox> mHintBox;
    std::unique_ptr<StatusLine> mStatusLine;

    std::string mStatusText;
    uint32_t mStatusCountdown = 0;
    uint32_t mHintCountdown = 0;
    bool mNeedsRedraw = true;
    bool mGreyedOut = false;

    std::array<BandSettings, Steinberg::Vst::Velmoran::kBandCount> mBands{};
    float mSolo = 0.0f;
    float mOutputGain = 0.5f;
    float mInputGain = 0.5f;
    std::array<float, 5> mSwitches{}; // effect, FFT, source, slope, polarity
    int mSelectedBand = -1;
    int mMenuBand = -1;
    // Where the right press that opened the menu was.
    float mMenuPressX = 0.0f;
    float mMenuPressY = 0.0f;

    // The gesture in progress: the band dragged (-1 for none), the tags with an open edit, where
    // the drag started and the values it started from.
    int mDragBand = -1;
    // The gain marker dragged (a graph slot), -1 for none.
    int mGainDrag = -1;
    // The slot whose handle the mouse was last over, so a marker is named once on entering it.
    int mHoveredSlot = -1;
    // The band that the last left press added, -1 when it added none.
    int mAddedBand = -1;
    std::vector<unsigned> mOpenEdits;
    float mDragStartX = 0.0f;
    float mDragStartY = 0.0f;
    float mDragStartFrequencyX = 0.0f;
    float mDragStartGainY = 0.0f;
    float mLastX = 0.0f;
    float mLastY = 0.0f;
    float mDragX = 0.0f;
    float mDragY = 0.0f;
    bool mLockChosen = false;
    bool mLeftHeld = false;
    Widget* mPressedWidget = nullptr;
    // The keys whose press the editor used, by virtual-key code.
    std::bitset<256> mKeysTaken;
    float mMouseX = -1.0f;
    float mMouseY = -1.0f;
};

} // namespace velmoran::editor
