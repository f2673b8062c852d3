// What the mouse and the keys do on the editor's screen. Every change goes to the host as one
// edit per gesture: begin at mouse down, the values as they change, end at mouse up.

#include "EditorLayout.h"
#include "EditorScreen.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

using namespace Steinberg::Vst::Velmoran;

namespace
{

constexpr float kFineFactor = 0.1f;
// Movement in design pixels before an armed lock decides on an axis.
constexpr float kLockDistance = 6.0f;
constexpr float kWheelQStep = 0.025f;  // normalised Q per wheel step
constexpr float kKeyGainStepDb = 0.5f; // per arrow key, a tenth with the fine modifier
constexpr float kKeyOctaveStep = 1.0f / 12.0f;
constexpr int kNewBandType = 2; // a new band starts as the first peaking flavour
constexpr float kMinimumHz = 20.0f;
constexpr float kMaximumHz = 20000.0f;
constexpr float kGainRangeDb = 18.0f;
constexpr float kIoGainRangeDb = 6.0f;

enum LockMode : unsigned
{
    kLockOff = 0,
    kLockArmed = 1,
    kLockFrequency = 2,
    kLockGain = 3
};

} // namespace

void EditorScreen::mouseDown(float x, float y, MouseButton button, Modifiers modifiers)
{
    mMouseX = x;
    mMouseY = y;
    // While a message box is up the screen only shows; the box has the user's attention.
    if (mGreyedOut)
        return;
    if (button == MouseButton::WheelUp || button == MouseButton::WheelDown)
    {
        wheel(x, y, button == MouseButton::WheelUp ? 1.0f : -1.0f, modifiers);
        return;
    }
    if (mMenuBand >= 0)
    {
        // A click outside the menu closes it; a click on an entry chooses at the release.
        if (!mBandMenus[static_cast<size_t>(mMenuBand)]->hitTest(x, y))
        {
            mBandMenus[static_cast<size_t>(mMenuBand)]->close();
            mMenuBand = -1;
            letGoOfHandles();
        }
        return;
    }
    if (button == MouseButton::Right)
    {
        const int slot = mGraph.hitTest(x, y);
        if (slot >= 0 && slot < kBandCount)
            openBandMenu(slot, x, y);
        return;
    }
    mLeftHeld = true;
    mAddedBand = -1;
    if (pressWidget(x, y) || pressInfoBox(x, y))
        return;
    const int slot = mGraph.hitTest(x, y);
    if (slot >= 0 && slot < kBandCount && modifiers.toggle)
        toggleBand(slot);
    else if (slot >= 0 && slot < kBandCount)
        startBandDrag(slot, x, y);
    else if (slot == ResponseGraph::kOutputGainMarker || slot == ResponseGraph::kInputGainMarker)
        startGainDrag(slot, y);
    else if (slot < 0 && mGraph.plotRect().contains(x, y))
        addBandAt(x, y);
}

bool EditorScreen::pressWidget(float x, float y)
{
    std::vector<Widget*> widgets;
    for (auto& toggle : mToggles)
        widgets.push_back(toggle.get());
    for (auto& button : mImageButtons)
        widgets.push_back(button.get());
    widgets.push_back(mLockSelector.get());
    for (Widget* widget : widgets)
    {
        if (widget->hitTest(x, y))
        {
            mPressedWidget = widget;
            widget->setPressed(true);
            mNeedsRedraw = true;
            return true;
        }
    }
    return false;
}

bool EditorScreen::pressInfoBox(float x, float y)
{
    for (int band = 0; band < kBandCount; ++band)
    {
        const TextBox& box = *mInfoBoxes[static_cast<size_t>(band)];
        if (!box.hitTest(x, y))
            continue;
        // The box then shows the new state as the host reports the change back.
        if (box.lineAt(x, y) == BandInfoLines::kStateLine)
            singleEdit(enableTag(band + 1), mBands[static_cast<size_t>(band)].on() ? 0.0 : 1.0);
        return true;
    }
    return false;
}

void EditorScreen::mouseMove(float x, float y, Modifiers modifiers)
{
    mMouseX = x;
    mMouseY = y;
    if (mLeftHeld && modifiers.leftButtonUp)
        cancelGesture();
    if (mMenuBand >= 0)
    {
        if (mBandMenus[static_cast<size_t>(mMenuBand)]->hover(x, y))
            mNeedsRedraw = true;
        return;
    }
    if (mDragBand >= 0 && mLeftHeld)
    {
        dragBand(x, y, modifiers);
        return;
    }
    if (mGainDrag >= 0 && mLeftHeld)
    {
        dragGain(y, modifiers);
        return;
    }
    mGraph.setMousePosition(x, y);
    postHoverTexts(x, y);
    mNeedsRedraw = true;
}

// An icon says little to a new user: entering a switch or a button names it and its state.
void EditorScreen::postHoverTexts(float x, float y)
{
    for (int index = 0; index < kToggleCount; ++index)
        if (mToggles[static_cast<size_t>(index)]->trackHover(x, y) &&
            mToggles[static_cast<size_t>(index)]->hovered())
            postStatus(toggleHoverText(index));
    for (int index = 0; index < kImageButtonCount; ++index)
        if (mImageButtons[static_cast<size_t>(index)]->trackHover(x, y) &&
            mImageButtons[static_cast<size_t>(index)]->hovered())
            postStatus(buttonHoverText(index));
    if (mLockSelector->trackHover(x, y) && mLockSelector->hovered())
        postStatus(autoLockText(mGraph.lockMode()));
    const int slot = mGraph.hoveredSlot();
    if (slot != mHoveredSlot &&
        (slot == ResponseGraph::kOutputGainMarker || slot == ResponseGraph::kInputGainMarker))
        postStatus(markerHoverText(slot));
    mHoveredSlot = slot;
}

std::string EditorScreen::markerHoverText(int marker) const
{
    const bool output = marker == ResponseGraph::kOutputGainMarker;
    const float gainDb = ioGainDb(output ? mOutputGain : mInputGain);
    return (output ? outputGainText(gainDb) : inputGainText(gainDb)) + " : drag up or down";
}

void EditorScreen::mouseUp(float x, float y, MouseButton button, Modifiers /*modifiers*/)
{
    mMouseX = x;
    mMouseY = y;
    if (button == MouseButton::WheelUp || button == MouseButton::WheelDown)
        return;
    if (mMenuBand >= 0)
    {
        // A release on an entry chooses it: the left button's click, or the right button let go
        // after it moved from where its press opened the menu.
        const int entry = mBandMenus[static_cast<size_t>(mMenuBand)]->entryAt(x, y);
        const bool rightMoved = button == MouseButton::Right && (x != mMenuPressX || y != mMenuPressY);
        if (entry >= 0 && (button == MouseButton::Left || rightMoved))
            chooseMenuEntry(entry);
        return;
    }
    if (button != MouseButton::Left)
        return;
    mLeftHeld = false;
    if (mPressedWidget != nullptr)
    {
        Widget* pressed = mPressedWidget;
        mPressedWidget = nullptr;
        pressed->setPressed(false);
        mNeedsRedraw = true;
        // The click comes last: it may open a modal box in which the host closes the editor.
        if (pressed->hitTest(x, y))
            clickWidget(pressed);
        return;
    }
    finishGesture();
    letGoOfHandles();
}

void EditorScreen::cancelGesture()
{
    mLeftHeld = false;
    if (mPressedWidget != nullptr)
    {
        mPressedWidget->setPressed(false);
        mPressedWidget = nullptr;
    }
    finishGesture();
    letGoOfHandles();
}

void EditorScreen::letGoOfHandles()
{
    // The handle stays lit while it is held; let go, its highlight fades once the status cycle
    // clears the dragged flags.
    mGraph.clearSelection();
    mNeedsRedraw = true;
}

void EditorScreen::doubleClick(float x, float y, Modifiers modifiers)
{
    // A pair whose first click added a band adds nothing more: the band stays as that click
    // placed it, even where the pointer lies beyond the band's range and so off its handle.
    if (mGreyedOut || mAddedBand >= 0)
        return;
    const int slot = mGraph.hitTest(x, y);
    if (slot >= 0 && slot < kBandCount && !modifiers.toggle)
    {
        resetBand(slot);
        return;
    }
    if (slot == ResponseGraph::kOutputGainMarker || slot == ResponseGraph::kInputGainMarker)
    {
        singleEdit(slot == ResponseGraph::kOutputGainMarker ? kOutputGainTag : kInputGainTag,
                   normalisedIoGain(0.0f));
        return;
    }
    // A double-click elsewhere, or a second Control-click, is a second press for whatever lies there.
    mouseDown(x, y, MouseButton::Left, modifiers);
}

bool EditorScreen::keyDown(int key, Modifiers modifiers)
{
    if (mGreyedOut || key <= 0 || key >= static_cast<int>(mKeysTaken.size()))
        return false;
    const bool used = mMenuBand >= 0 ? menuKey(key) : bandKey(key, modifiers);
    if (used)
        mKeysTaken.set(static_cast<size_t>(key));
    return used;
}

bool EditorScreen::keyUp(int key)
{
    if (key <= 0 || key >= static_cast<int>(mKeysTaken.size()) || !mKeysTaken.test(static_cast<size_t>(key)))
        return false;
    mKeysTaken.reset(static_cast<size_t>(key));
    return true;
}

bool EditorScreen::menuKey(int key)
{
    PopupMenu& menu = *mBandMenus[static_cast<size_t>(mMenuBand)];
    if (key == keys::kUp || key == keys::kDown)
        menu.step(key == keys::kDown ? 1 : -1);
    else if (key == keys::kReturn && menu.markedEntry() >= 0)
        chooseMenuEntry(menu.markedEntry());
    else if (key == keys::kEscape)
    {
        menu.close();
        mMenuBand = -1;
        letGoOfHandles();
    }
    else
        return false;
    mNeedsRedraw = true;
    return true;
}

bool EditorScreen::bandKey(int key, Modifiers modifiers)
{
    if (mSelectedBand < 0 || mDragBand >= 0 || mGainDrag >= 0)
        return false;
    if (key == keys::kDelete || key == keys::kBackspace)
        deleteBand(mSelectedBand);
    else if (key == keys::kLeft || key == keys::kRight || key == keys::kUp || key == keys::kDown)
        nudgeBand(mSelectedBand, key, modifiers);
    else
        return false;
    return true;
}

void EditorScreen::clickWidget(const Widget* pressed)
{
    for (int index = 0; index < kToggleCount; ++index)
    {
        if (pressed == mToggles[static_cast<size_t>(index)].get())
        {
            clickToggle(index);
            return;
        }
    }
    for (int index = 0; index < kImageButtonCount; ++index)
    {
        if (pressed == mImageButtons[static_cast<size_t>(index)].get())
        {
            clickImageButton(index);
            return;
        }
    }
    if (pressed == mLockSelector.get())
        setAutoLock((mGraph.lockMode() + 1) % 4);
}

void EditorScreen::clickToggle(int index)
{
    switch (index)
    {
    case kEffectToggle:
        singleEdit(kEqTag, isOn(mSwitches[0]) ? 0.0 : 1.0);
        break;
    case kSpectrumToggle:
        singleEdit(kFftTag, isOn(mSwitches[1]) ? 0.0 : 1.0);
        break;
    case kSourceToggle:
        singleEdit(kFftSourceTag, isOn(mSwitches[2]) ? 0.0 : 1.0);
        break;
    case kSlopeToggle:
        singleEdit(kFftSlopeTag, isOn(mSwitches[3]) ? 0.0 : 1.0);
        break;
    case kFlatToggle:
        setFlat();
        break;
    case kClearToggle:
        clearFilters();
        break;
    default:
        break;
    }
}

void EditorScreen::clickImageButton(int index)
{
    switch (index)
    {
    case kChannelModeButton:
        if (mSelectedBand >= 0)
        {
            const int next =
                (std::clamp(mBands[static_cast<size_t>(mSelectedBand)].channelMode(), 0, 2) + 1) % 3;
            singleEdit(modeTag(mSelectedBand + 1), normalisedChannelMode(next));
            postStatus(channelModeText(next));
        }
        break;
    case kSoloButton:
        if (mSelectedBand >= 0)
        {
            const bool soloed = soloBand(mSolo) == mSelectedBand + 1;
            singleEdit(kSoloTag, soloed ? 0.0 : normalisedSoloBand(mSelectedBand + 1));
        }
        break;
    case kPolarityButton:
        singleEdit(kPolarityTag, isOn(mSwitches[4]) ? 0.0 : 1.0);
        break;
    case kTitleButtonIndex:
        showTitle();
        // Last: the box's modal loop keeps the host live, and the host may close the editor.
        mContext.showAbout();
        break;
    case kInfoButton:
        mHintBox->setTexts({"Drag a handle: frequency and gain", "Wheel on a band: Q  (Shift: fine)",
                            "Right-click a band: filter function", "Double-click a band: reset",
                            "Ctrl-click a band: on / off", "Click and drag on the graph: new band",
                            "Drag the dot at the left / right: input / output gain"},
                           kLightGrey);
        mHintBox->centreOn(mGraph.plotRect().x + mGraph.plotRect().width / 2.0f,
                           mGraph.plotRect().y + mGraph.plotRect().height / 2.0f);
        mHintBox->setVisible(true);
        mHintCountdown = kHintTicks;
        mNeedsRedraw = true;
        break;
    default:
        break;
    }
}

void EditorScreen::startBandDrag(int slot, float x, float y)
{
    selectBand(slot);
    const int number = slot + 1;
    const BandSettings& settings = mBands[static_cast<size_t>(slot)];
    std::vector<unsigned> tags = {frequencyTag(number)};
    if (settings.hasGain())
        tags.push_back(gainTag(number));
    beginGesture(std::move(tags));
    mDragBand = slot;
    mDragStartX = mLastX = x;
    mDragStartY = mLastY = y;
    mDragX = mGraph.slot(slot).handleX;
    mDragY = mGraph.slot(slot).handleY;
    mDragStartFrequencyX = mDragX;
    mDragStartGainY = mDragY;
    mLockChosen = false;
    mGraph.setDragged(slot, true);
    showBandInfo(slot, settings.hasGain() ? 1 : -1);
}

// A Control-click switches the band on or off where it stands; no drag follows.
void EditorScreen::toggleBand(int band)
{
    selectBand(band);
    singleEdit(enableTag(band + 1), mBands[static_cast<size_t>(band)].on() ? 0.0 : 1.0);
    showBandInfo(band, 0);
}

// The gain markers move up and down only, within the gains' own range of +-6 dB.
void EditorScreen::startGainDrag(int marker, float y)
{
    beginGesture({marker == ResponseGraph::kOutputGainMarker ? kOutputGainTag : kInputGainTag});
    mGainDrag = marker;
    mLastY = y;
    // The gain's readout takes the place of any band's box.
    for (auto& box : mInfoBoxes)
        box->setVisible(false);
    mDragY = mGraph.slot(marker).handleY;
    mGraph.setDragged(marker, true);
    postStatus(markerHoverText(marker));
}

void EditorScreen::dragGain(float y, Modifiers modifiers)
{
    mDragY += (y - mLastY) * (modifiers.fine ? kFineFactor : 1.0f);
    mLastY = y;
    const float db = std::clamp(mGraph.gainForY(mDragY), -kIoGainRangeDb, kIoGainRangeDb);
    performGestureEdit(mOpenEdits.front(), normalisedIoGain(db));
    postStatus(markerHoverText(mGainDrag));
}

void EditorScreen::addBandAt(float x, float y)
{
    const int band = mGraph.firstFreeBand();
    if (band < 0)
    {
        postStatus("All ten bands are in use");
        return;
    }
    const int number = band + 1;
    mAddedBand = band;
    beginGesture({filterTypeTag(number), enableTag(number), frequencyTag(number), gainTag(number)});
    performGestureEdit(filterTypeTag(number), normalisedTypeCode(kNewBandType));
    performGestureEdit(enableTag(number), 1.0);
    const float hz = std::clamp(mGraph.frequencyForX(x), kMinimumHz, kMaximumHz);
    const float db = std::clamp(mGraph.gainForY(y), -kGainRangeDb, kGainRangeDb);
    performGestureEdit(frequencyTag(number), normalisedFrequency(hz));
    performGestureEdit(gainTag(number), normalisedGain(db));
    selectBand(band);
    mDragBand = band;
    mDragStartX = mLastX = x;
    mDragStartY = mLastY = y;
    mDragX = mDragStartFrequencyX = x;
    mDragY = mDragStartGainY = y;
    mLockChosen = false;
    mGraph.setDragged(band, true);
    showBandInfo(band, 1);
}

void EditorScreen::dragBand(float x, float y, Modifiers modifiers)
{
    // The handle follows the mouse's movement, a tenth of it with the fine modifier.
    const float factor = modifiers.fine ? kFineFactor : 1.0f;
    mDragX += (x - mLastX) * factor;
    mDragY += (y - mLastY) * factor;
    mLastX = x;
    mLastY = y;
    if (mGraph.lockMode() == kLockArmed && !mLockChosen &&
        std::max(std::fabs(x - mDragStartX), std::fabs(y - mDragStartY)) >= kLockDistance)
    {
        mLockChosen = true;
        const bool horizontal = std::fabs(x - mDragStartX) >= std::fabs(y - mDragStartY);
        mGraph.setLockMode(horizontal ? kLockFrequency : kLockGain);
        mLockSelector->setValue(static_cast<float>(mGraph.lockMode()) * 100.0f);
        postStatus(autoLockText(mGraph.lockMode()));
    }
    const unsigned lock = mGraph.lockMode();
    const float handleX = lock == kLockGain ? mDragStartFrequencyX : mDragX;
    const float handleY = lock == kLockFrequency ? mDragStartGainY : mDragY;
    const int number = mDragBand + 1;
    const float hz = std::clamp(mGraph.frequencyForX(handleX), kMinimumHz, kMaximumHz);
    performGestureEdit(frequencyTag(number), normalisedFrequency(hz));
    if (mBands[static_cast<size_t>(mDragBand)].hasGain())
    {
        const float db = std::clamp(mGraph.gainForY(handleY), -kGainRangeDb, kGainRangeDb);
        performGestureEdit(gainTag(number), normalisedGain(db));
    }
    mGraph.setDragPosition(mDragBand, mGraph.xForFrequency(hz), mGraph.slot(mDragBand).handleY);
    showBandInfo(mDragBand, mBands[static_cast<size_t>(mDragBand)].hasGain() ? 1 : -1);
}

void EditorScreen::finishGesture()
{
    for (unsigned tag : mOpenEdits)
        mContext.endEdit(tag);
    mOpenEdits.clear();
    if (mDragBand >= 0 && mLockChosen)
    {
        // An armed lock picks its axis anew for the next drag.
        mGraph.setLockMode(kLockArmed);
        mLockSelector->setValue(100.0f);
    }
    mDragBand = -1;
    mGainDrag = -1;
    mLockChosen = false;
    mNeedsRedraw = true;
}

void EditorScreen::wheel(float x, float y, float steps, Modifiers modifiers)
{
    mMouseX = x;
    mMouseY = y;
    if (mGreyedOut || steps == 0.0f || !std::isfinite(steps))
        return;
    const int slot = mGraph.hitTest(x, y);
    const int band = slot >= 0 && slot < kBandCount ? slot : mDragBand;
    if (band >= 0)
    {
        BandSettings& settings = mBands[static_cast<size_t>(band)];
        const float step = kWheelQStep * (modifiers.fine ? kFineFactor : 1.0f);
        selectBand(band);
        singleEdit(qTag(band + 1), std::clamp(settings.q + step * steps, 0.0f, 1.0f));
        showBandInfo(band, -1);
        if (mDragBand < 0)
            letGoOfHandles();
        return;
    }
    if (!mGraph.plotRect().contains(x, y))
        return;
    mGraph.wheelZoom(steps, x, y);
    setZoomReadout(mGraph.zoom());
    for (auto& box : mInfoBoxes)
        box->setVisible(false);
    hideReadouts();
    mZoomBox->setVisible(true);
    mStatusCountdown = kMessageTicks;
    mNeedsRedraw = true;
}

void EditorScreen::openBandMenu(int band, float x, float y)
{
    selectBand(band);
    mMenuBand = band;
    mMenuPressX = x;
    mMenuPressY = y;
    PopupMenu& menu = *mBandMenus[static_cast<size_t>(band)];
    menu.setCurrentCode(mBands[static_cast<size_t>(band)].typeCode());
    menu.open(x + 4.0f, y + 4.0f, {0.0f, 0.0f, mWidth, mHeight});
    mNeedsRedraw = true;
}

void EditorScreen::chooseMenuEntry(int entry)
{
    PopupMenu& menu = *mBandMenus[static_cast<size_t>(mMenuBand)];
    const int band = mMenuBand;
    const int code = menu.entries()[static_cast<size_t>(entry)].code;
    menu.close();
    mMenuBand = -1;
    letGoOfHandles();
    if (code == 0)
    {
        deleteBand(band);
        return;
    }
    singleEdit(filterTypeTag(band + 1), normalisedTypeCode(code));
    showBandInfo(band, 2);
}

void EditorScreen::resetBand(int band)
{
    const int number = band + 1;
    beginGesture({gainTag(number), qTag(number)});
    performGestureEdit(gainTag(number), normalisedGain(0.0f));
    performGestureEdit(qTag(number), normalisedQ(1.0f));
    finishGesture();
    showBandInfo(band, 1);
}

void EditorScreen::nudgeBand(int band, int key, Modifiers modifiers)
{
    const BandSettings& settings = mBands[static_cast<size_t>(band)];
    const float fine = modifiers.fine ? kFineFactor : 1.0f;
    const int number = band + 1;
    if (key == keys::kLeft || key == keys::kRight)
    {
        const float octaves = kKeyOctaveStep * fine * (key == keys::kRight ? 1.0f : -1.0f);
        const float hz = std::clamp(settings.frequencyHz() * std::pow(2.0f, octaves), kMinimumHz, kMaximumHz);
        singleEdit(frequencyTag(number), normalisedFrequency(hz));
        showBandInfo(band, -1);
        return;
    }
    if (!settings.hasGain())
        return;
    const float db = settings.gainDb() + kKeyGainStepDb * fine * (key == keys::kUp ? 1.0f : -1.0f);
    singleEdit(gainTag(number), normalisedGain(std::clamp(db, -kGainRangeDb, kGainRangeDb)));
    showBandInfo(band, 1);
}

void EditorScreen::deleteBand(int band)
{
    singleEdit(filterTypeTag(band + 1), normalisedTypeCode(0));
    mInfoBoxes[static_cast<size_t>(band)]->setVisible(false);
    if (mSelectedBand == band)
        selectBand(-1);
    postStatus(std::string("Band ") + std::to_string(band + 1) + " Deleted");
}

void EditorScreen::setFlat()
{
    // Every band's gain back to 0 dB; types and frequencies stay, so the shape can be rebuilt.
    std::vector<unsigned> tags;
    for (int number = 1; number <= kBandCount; ++number)
        tags.push_back(gainTag(number));
    beginGesture(tags);
    for (unsigned tag : tags)
        performGestureEdit(tag, normalisedGain(0.0f));
    finishGesture();
    mToggles[kFlatToggle]->setValue(0.0f);
    postStatus("EQ Set Flat");
}

void EditorScreen::clearFilters()
{
    // Every band removed and no band soloed: the graph is empty and ready for new bands.
    std::vector<unsigned> tags;
    for (int number = 1; number <= kBandCount; ++number)
        tags.push_back(filterTypeTag(number));
    tags.push_back(kSoloTag);
    beginGesture(tags);
    for (int number = 1; number <= kBandCount; ++number)
        performGestureEdit(filterTypeTag(number), normalisedTypeCode(0));
    performGestureEdit(kSoloTag, 0.0);
    finishGesture();
    mToggles[kClearToggle]->setValue(0.0f);
    selectBand(-1);
    postStatus("Filters Cleared");
    std::vector<std::string> hint(settingsClearedHint().begin(), settingsClearedHint().end());
    hideReadouts();
    mHintBox->setTexts(hint, kLightGrey);
    mHintBox->centreOn(mGraph.plotRect().x + mGraph.plotRect().width / 2.0f,
                       mGraph.plotRect().y + mGraph.plotRect().height / 2.0f);
    mHintBox->setVisible(true);
    mHintCountdown = kHintTicks;
    mGraph.clearSelection();
    clearDraggedSlots();
}

void EditorScreen::singleEdit(unsigned tag, double value)
{
    // A change of its own: a drag in progress (the wheel turned while the button is held) keeps
    // its gesture open around it.
    const bool alreadyOpen = std::find(mOpenEdits.begin(), mOpenEdits.end(), tag) != mOpenEdits.end();
    if (!alreadyOpen)
        mContext.beginEdit(tag);
    performGestureEdit(tag, value);
    if (!alreadyOpen)
        mContext.endEdit(tag);
    mNeedsRedraw = true;
}

void EditorScreen::beginGesture(std::vector<unsigned> tags)
{
    finishGesture();
    mOpenEdits = std::move(tags);
    for (unsigned tag : mOpenEdits)
        mContext.beginEdit(tag);
}

void EditorScreen::performGestureEdit(unsigned tag, double value)
{
    if (std::fabs(mContext.parameter(tag) - value) < 1e-9)
        return;
    mContext.performEdit(tag, value);
    // The controller tells every open editor, this one included; a context that does not echo
    // the change still leaves this screen up to date.
    parameterChanged(tag, value);
}

} // namespace velmoran::editor
