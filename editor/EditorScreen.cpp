#include "EditorScreen.h"

#include "EditorLayout.h"
#include "TextMeasure.h"
#include "platform/render/text/FontDescriptor.h"
#include "resources/ResourceIds.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

using namespace Steinberg::Vst::Velmoran;
namespace ids = resources;

namespace
{

constexpr float kTitleBarHeight = 44.0f;
constexpr float kToggleWidth = 64.0f;
constexpr float kToggleHeight = 43.0f;
constexpr float kToggleSpacing = 68.0f;
constexpr float kButtonSize = 32.0f;
constexpr float kButtonSpacing = 38.0f;
constexpr float kRowGap = 12.0f; // between the graph panel and the control row
constexpr float kStatusWidth = 256.0f;
constexpr Rgba kBackgroundTop{40, 44, 50, 255};
constexpr Rgba kBackgroundBottom{18, 20, 23, 255};
constexpr Rgba kTitleTop{48, 53, 60, 255};
constexpr Rgba kTitleBottom{30, 33, 38, 255};
constexpr Rgba kRowTop{34, 37, 42, 255};
constexpr Rgba kRowBottom{24, 26, 30, 255};
constexpr Rgba kGreyText{196, 200, 206, 255};

// Which switch of mSwitches a tag is, -1 for none.
int switchIndex(unsigned tag)
{
    switch (tag)
    {
    case kEqTag:
        return 0;
    case kFftTag:
        return 1;
    case kFftSourceTag:
        return 2;
    case kFftSlopeTag:
        return 3;
    case kPolarityTag:
        return 4;
    default:
        return -1;
    }
}

SwitchKind switchKind(unsigned tag)
{
    switch (tag)
    {
    case kFftTag:
        return SwitchKind::Spectrum;
    case kFftSourceTag:
        return SwitchKind::SpectrumSource;
    case kFftSlopeTag:
        return SwitchKind::SpectrumSlope;
    case kPolarityTag:
        return SwitchKind::Polarity;
    default:
        return SwitchKind::Effect;
    }
}

// The band (0..9) a band parameter belongs to, -1 for other tags.
int bandOfTag(unsigned tag)
{
    for (int band = 1; band <= kBandCount; ++band)
    {
        if (tag == filterTypeTag(band) || tag == frequencyTag(band) || tag == gainTag(band) ||
            tag == qTag(band) || tag == enableTag(band) || tag == modeTag(band))
            return band - 1;
    }
    return -1;
}

TextStyle style(const platform::FontDescriptor& font, float size, Rgba colour)
{
    return {&font, size, colour, false};
}

} // namespace

EditorScreen::EditorScreen(EditorContext& context, float sampleRate)
    : mContext(context), mWidth(kDesignWidth), mHeight(kDesignHeight)
{
    mGraph.setSampleRate(sampleRate);
    mGraph.layout();
    createWidgets();
    mStatusText = titleLine();
}

EditorScreen::~EditorScreen()
{
    for (unsigned tag : mOpenEdits)
        mContext.endEdit(tag);
}

void EditorScreen::createWidgets()
{
    mTitleBar =
        std::make_unique<Panel>(Rect{0.0f, 0.0f, mWidth, kTitleBarHeight}, kTitleTop, kTitleBottom, false);
    const Rect panel = graphPanelRect(mWidth, mHeight);
    const float rowTop = panel.bottom() + kRowGap;
    mControlRow = std::make_unique<Panel>(Rect{16.0f, rowTop - 4.0f, mWidth - 32.0f, kToggleHeight + 8.0f},
                                          kRowTop, kRowBottom, false);

    static constexpr std::array<int, kToggleCount> kToggleImages = {
        ids::kEffectSwitch,   ids::kFlatButton,           ids::kClearButton,
        ids::kSpectrumSwitch, ids::kSpectrumSourceSwitch, ids::kSpectrumSlopeSwitch};
    for (int index = 0; index < kToggleCount; ++index)
        mToggles[static_cast<size_t>(index)] = std::make_unique<ImageToggle>(
            kToggleImages[static_cast<size_t>(index)], panel.x + index * kToggleSpacing, rowTop, kToggleWidth,
            kToggleHeight);

    struct ButtonImage
    {
        int id;
        int frames;
    };
    static constexpr std::array<ButtonImage, kImageButtonCount> kButtonImages = {
        {{ids::kChannelModeButton, 3},
         {ids::kSoloButton, 2},
         {ids::kPolarityButton, 2},
         {ids::kTitleButton, 2},
         {ids::kInfoButton, 2}}};
    const float buttonTop = rowTop + (kToggleHeight - kButtonSize) / 2.0f;
    const float buttonsLeft = panel.x + kToggleCount * kToggleSpacing + 14.0f;
    for (int index = 0; index < kImageButtonCount; ++index)
    {
        const ButtonImage& image = kButtonImages[static_cast<size_t>(index)];
        // The lock selector sits between the band's buttons and the title and info buttons.
        const float gap = index >= kTitleButtonIndex ? kButtonSpacing : 0.0f;
        mImageButtons[static_cast<size_t>(index)] = std::make_unique<ImageButton>(
            image.id, image.frames, buttonsLeft + index * kButtonSpacing + gap, buttonTop, kButtonSize);
    }
    mTitleButton = mImageButtons[kTitleButtonIndex].get();
    mLockSelector = std::make_unique<ImageButton>(ids::kAutoLockSelector, 5, buttonsLeft + 3 * kButtonSpacing,
                                                  buttonTop, kButtonSize, 4);

    const TextStyle readout = style(platform::kSairaFont, 15.0f, kAmber);
    mOutputGainBox = std::make_unique<TextBox>(readout, false);
    mZoomBox = std::make_unique<TextBox>(style(platform::kSairaFont, 22.0f, kAmber), true);
    mProgramBox = std::make_unique<TextBox>(style(platform::kSairaFont, 15.0f, kGreyText), false);
    mHintBox = std::make_unique<TextBox>(style(platform::kDejaVuSansFont, 15.0f, kGreyText), true);
    mStatusLine = std::make_unique<StatusLine>(mWidth - 24.0f - kStatusWidth, buttonTop,
                                               style(platform::kSairaFont, 13.0f, kLegend));
    mStatusLine->setVisible(false);
    createBandWidgets();
}

void EditorScreen::createBandWidgets()
{
    const TextStyle menuStyle = style(platform::kDejaVuSansFont, 13.0f, kLightGrey);
    for (int band = 0; band < kBandCount; ++band)
    {
        auto menu = std::make_unique<PopupMenu>("Filter Function:", ids::kIconFilterFunction, menuStyle,
                                                kAmber, kLightGrey);
        for (int code = 1; code <= 11; ++code)
            menu->addEntry(filterMenuLabel(code), filterMenuIcon(code), code);
        menu->addSeparator();
        menu->addEntry("Delete", filterMenuIcon(0), 0);
        mBandMenus[static_cast<size_t>(band)] = std::move(menu);
        mInfoBoxes[static_cast<size_t>(band)] =
            std::make_unique<TextBox>(style(platform::kDejaVuSansFont, 13.0f, kLightGrey), true);
    }
}

void EditorScreen::synchronise()
{
    for (unsigned tag : {kEqTag, kFftTag, kFftSourceTag, kFftSlopeTag, kPolarityTag})
        applySwitch(tag, static_cast<float>(mContext.parameter(tag)), false);
    for (int band = 0; band < kBandCount; ++band)
    {
        const int number = band + 1;
        BandSettings& settings = mBands[static_cast<size_t>(band)];
        settings.type = static_cast<float>(mContext.parameter(filterTypeTag(number)));
        settings.frequency = static_cast<float>(mContext.parameter(frequencyTag(number)));
        settings.gain = static_cast<float>(mContext.parameter(gainTag(number)));
        settings.q = static_cast<float>(mContext.parameter(qTag(number)));
        settings.enable = static_cast<float>(mContext.parameter(enableTag(number)));
        settings.mode = static_cast<float>(mContext.parameter(modeTag(number)));
        applyBand(band, false, -1);
    }
    applySolo(static_cast<float>(mContext.parameter(kSoloTag)), false);
    applyInputGain(static_cast<float>(mContext.parameter(kInputGainTag)), false);
    applyOutputGain(static_cast<float>(mContext.parameter(kOutputGainTag)), false);
    setZoomReadout(mGraph.zoom());
    mZoomBox->setVisible(false);
    mGraph.update();
    // The title goes straight into the status line for a short while.
    mStatusText = titleLine();
    mStatusLine->setText(mStatusText);
    mStatusLine->setVisible(true);
    mStatusCountdown = kTitleOnlyTicks;
    mNeedsRedraw = true;
}

void EditorScreen::parameterChanged(unsigned tag, double value)
{
    const float v = static_cast<float>(value);
    if (switchIndex(tag) >= 0)
        applySwitch(tag, v, true);
    else if (tag == kOutputGainTag)
        applyOutputGain(v, true);
    else if (tag == kInputGainTag)
        applyInputGain(v, true);
    else if (tag == kSoloTag)
        applySolo(v, true);
    else if (tag == kPresetTag)
        applyProgram(v, true);
    else if (const int band = bandOfTag(tag); band >= 0)
    {
        setBandValue(band, tag, v);
        const bool gainLine = tag == gainTag(band + 1);
        const bool typeLine = tag == filterTypeTag(band + 1);
        const bool stateLine = tag == enableTag(band + 1);
        applyBand(band, true, gainLine ? 1 : typeLine ? 2 : stateLine ? 0 : -1);
    }
}

void EditorScreen::setBandValue(int band, unsigned tag, float value)
{
    BandSettings& settings = mBands[static_cast<size_t>(band)];
    const int number = band + 1;
    if (tag == filterTypeTag(number))
        settings.type = value;
    else if (tag == frequencyTag(number))
        settings.frequency = value;
    else if (tag == gainTag(number))
        settings.gain = value;
    else if (tag == qTag(number))
        settings.q = value;
    else if (tag == enableTag(number))
        settings.enable = value;
    else if (tag == modeTag(number))
        settings.mode = value;
}

std::string EditorScreen::toggleHoverText(int index) const
{
    switch (index)
    {
    case kEffectToggle:
        return switchStatusText(SwitchKind::Effect, mSwitches[0]);
    case kSpectrumToggle:
        return switchStatusText(SwitchKind::Spectrum, mSwitches[1]);
    case kSourceToggle:
        return switchStatusText(SwitchKind::SpectrumSource, mSwitches[2]);
    case kSlopeToggle:
        return switchStatusText(SwitchKind::SpectrumSlope, mSwitches[3]);
    case kFlatToggle:
        return "EQ Set Flat : every gain to 0 dB";
    default:
        return "Clear : remove every filter";
    }
}

std::string EditorScreen::buttonHoverText(int index) const
{
    const bool bandSelected = mSelectedBand >= 0;
    switch (index)
    {
    case kChannelModeButton:
        return bandSelected ? channelModeText(mBands[static_cast<size_t>(mSelectedBand)].channelMode()) : "";
    case kSoloButton:
        return bandSelected && soloBand(mSolo) == mSelectedBand + 1 ? "Solo : On " : "Solo : Off";
    case kPolarityButton:
        return switchStatusText(SwitchKind::Polarity, mSwitches[4]);
    case kTitleButtonIndex:
        return "About Velmoran";
    default:
        return "Help : mouse gestures";
    }
}

void EditorScreen::applySwitch(unsigned tag, float value, bool post)
{
    const int index = switchIndex(tag);
    if (index < 0)
        return;
    mSwitches[static_cast<size_t>(index)] = value;
    const float widgetValue = value * 100.0f;
    switch (tag)
    {
    case kEqTag:
        mToggles[kEffectToggle]->setValue(widgetValue);
        break;
    case kFftTag:
        mToggles[kSpectrumToggle]->setValue(widgetValue);
        mGraph.setSpectrumOn(isOn(value));
        break;
    case kFftSourceTag:
        mToggles[kSourceToggle]->setValue(widgetValue);
        break;
    case kFftSlopeTag:
        mToggles[kSlopeToggle]->setValue(widgetValue);
        mGraph.setSpectrumSlope(isOn(value));
        break;
    case kPolarityTag:
        mImageButtons[kPolarityButton]->setValue(isOn(value) ? 100.0f : 0.0f);
        break;
    default:
        break;
    }
    if (post)
        postStatus(switchStatusText(switchKind(tag), value));
    mNeedsRedraw = true;
}

void EditorScreen::applyBand(int band, bool post, int highlightCode)
{
    const BandSettings& settings = mBands[static_cast<size_t>(band)];
    // Passes keep their handles on the 0 dB line whatever their gain parameter holds.
    const float gainDb = settings.hasGain() ? settings.gainDb() : 0.0f;
    mGraph.setBand(band, settings.frequencyHz(), gainDb, settings.qValue(), settings.typeCode(),
                   static_cast<unsigned>(settings.channelMode()), settings.on());
    if (!settings.inUse() && mSelectedBand == band)
        selectBand(-1);
    if (post && settings.inUse())
        showBandInfo(band, highlightCode);
    if (!settings.inUse())
        mInfoBoxes[static_cast<size_t>(band)]->setVisible(false);
    updateBandButtons();
    mNeedsRedraw = true;
}

void EditorScreen::applySolo(float value, bool post)
{
    const int previous = soloBand(mSolo);
    mSolo = value;
    updateBandButtons();
    // Solo shows the soloed band's info; ending it shows the band again, no longer as "Solo".
    const int soloed = soloBand(value);
    const int shown = soloed >= 1 ? soloed : previous;
    if (post && shown >= 1 && shown <= kBandCount && mBands[static_cast<size_t>(shown - 1)].inUse())
        showBandInfo(shown - 1, 0);
    mNeedsRedraw = true;
}

void EditorScreen::applyOutputGain(float value, bool post)
{
    mOutputGain = value;
    const float gainDb = ioGainDb(value);
    mGraph.setGainMarker(ResponseGraph::kOutputGainMarker, gainDb);
    showGainReadout(outputGainText(gainDb), post);
}

void EditorScreen::applyInputGain(float value, bool post)
{
    mInputGain = value;
    const float gainDb = ioGainDb(value);
    mGraph.setGainMarker(ResponseGraph::kInputGainMarker, gainDb);
    // The output gain's readout stays in the box until the input gain itself changes.
    if (post)
        showGainReadout(inputGainText(gainDb), post);
}

void EditorScreen::showGainReadout(const std::string& text, bool post)
{
    mOutputGainBox->setTexts({text}, kAmber);
    const TextStyle& boxStyle = mOutputGainBox->style();
    mOutputGainBox->moveTo(graphPanelRect(mWidth, mHeight).x, mHeight - lineHeight(boxStyle) - 8.0f);
    if (post)
    {
        mOutputGainBox->setVisible(true);
        mStatusCountdown = kMessageTicks;
    }
    mNeedsRedraw = true;
}

void EditorScreen::applyProgram(float value, bool post)
{
    const double steps = kPresetStepCount;
    const int index = std::clamp(static_cast<int>(std::floor(std::min(steps, value * (steps + 1.0)))), 0,
                                 static_cast<int>(steps) - 1);
    const std::string name = mContext.programName(index);
    if (name.empty())
        return;
    mProgramBox->setTexts({name}, kGreyText);
    const Rect panel = graphPanelRect(mWidth, mHeight);
    mProgramBox->moveTo(panel.right() - mProgramBox->bounds().width,
                        mHeight - mProgramBox->bounds().height - 8.0f);
    mProgramBox->setVisible(true);
    if (post)
        postStatus(name);
}

void EditorScreen::setZoomReadout(float zoom)
{
    const auto texts = zoomTexts(zoom);
    mZoomBox->setTexts({texts[0], texts[1]}, kAmber);
    const Rect panel = graphPanelRect(mWidth, mHeight);
    mZoomBox->centreOn(panel.x + panel.width / 2.0f, panel.y + panel.height / 2.0f);
}

void EditorScreen::showBandInfo(int band, int highlightCode)
{
    const BandSettings& settings = mBands[static_cast<size_t>(band)];
    BandDisplay display;
    display.frequencyHz = settings.frequencyHz();
    display.q = settings.qValue();
    display.gainDb = settings.gainDb();
    display.typeCode = settings.typeCode();
    display.highlightCode = highlightCode;
    display.soloBand = soloBand(mSolo);
    display.bandIndex = band;
    display.on = settings.on();
    const BandInfoLines lines = bandInfoLines(display);
    static constexpr std::array<int, BandInfoLines::kLineCount> kIcons = {
        ids::kIconFrequency, ids::kIconQ, ids::kIconGain, ids::kIconFilterFunction, ids::kIconBandState};
    std::vector<TextBox::Line> boxLines;
    for (int line = 0; line < BandInfoLines::kLineCount; ++line)
    {
        const auto index = static_cast<size_t>(line);
        const int icon = line == BandInfoLines::kStateLine && lines.texts[index] == "Solo" ? ids::kIconSolo
                                                                                           : kIcons[index];
        boxLines.push_back({lines.texts[index], kLightGrey, icon, lines.highlighted[index]});
    }
    TextBox& box = *mInfoBoxes[static_cast<size_t>(band)];
    box.setLines(std::move(boxLines));
    // Beside the handle, turned to whichever side keeps the box inside the plot.
    const GraphSlot& slot = mGraph.slot(band);
    const Rect plot = mGraph.plotRect();
    float x = slot.handleX + 18.0f;
    float y = slot.handleY + 18.0f;
    if (x + box.bounds().width > plot.right())
        x = slot.handleX - 18.0f - box.bounds().width;
    if (y + box.bounds().height > plot.bottom())
        y = slot.handleY - 18.0f - box.bounds().height;
    box.moveTo(std::max(plot.x, x), std::max(plot.y, y));
    for (int other = 0; other < kBandCount; ++other)
        mInfoBoxes[static_cast<size_t>(other)]->setVisible(other == band);
    hideReadouts();
    mStatusCountdown = kMessageTicks;
    mNeedsRedraw = true;
}

void EditorScreen::hideReadouts()
{
    mOutputGainBox->setVisible(false);
    mZoomBox->setVisible(false);
    mProgramBox->setVisible(false);
    mHintBox->setVisible(false);
}

void EditorScreen::setAutoLock(unsigned mode)
{
    mGraph.setLockMode(mode);
    mLockSelector->setValue(static_cast<float>(mode) * 100.0f);
    if (mode == 0)
    {
        // Drop the selection and pick again whatever the mouse is over now; the keys then act on
        // what is shown as selected, if anything.
        if (mSelectedBand >= 0)
        {
            mGraph.clearSelection();
            const int hit = mGraph.hitTest(mMouseX, mMouseY);
            selectBand(hit >= 0 && hit < kBandCount ? hit : -1);
            if (hit < 0)
                mContext.focusWindow();
        }
    }
    postStatus(autoLockText(mode));
}

void EditorScreen::updateBandButtons()
{
    const bool bandSelected = mSelectedBand >= 0;
    mImageButtons[kChannelModeButton]->setVisible(bandSelected);
    mImageButtons[kSoloButton]->setVisible(bandSelected);
    if (!bandSelected)
        return;
    const BandSettings& settings = mBands[static_cast<size_t>(mSelectedBand)];
    mImageButtons[kChannelModeButton]->setValue(static_cast<float>(std::clamp(settings.channelMode(), 0, 2)) *
                                                100.0f);
    mImageButtons[kSoloButton]->setValue(soloBand(mSolo) == mSelectedBand + 1 ? 100.0f : 0.0f);
}

void EditorScreen::selectBand(int band)
{
    mSelectedBand = band;
    mGraph.setSelectedBand(band);
    updateBandButtons();
    mNeedsRedraw = true;
}

void EditorScreen::postStatus(const std::string& text)
{
    mStatusText = text.substr(0, StatusLine::kMaxLength);
    mStatusLine->setText(mStatusText);
    mStatusLine->setVisible(true);
    mStatusCountdown = kMessageTicks;
    mNeedsRedraw = true;
}

void EditorScreen::showTitle()
{
    if (mTitleButton == nullptr)
        return;
    mTitleButton->setValue(100.0f);
    mStatusText = titleLine();
    mStatusLine->setText(mStatusText);
    mStatusLine->setVisible(true);
    mStatusCountdown = kTitleWidgetTicks;
    mNeedsRedraw = true;
}

void EditorScreen::tick()
{
    if (mStatusCountdown != 0)
    {
        --mStatusCountdown;
        if (mStatusCountdown == kTitleRestoreTick)
        {
            mStatusText = titleLine();
            mStatusLine->setText(mStatusText);
            hideBoxesNotUnderMouse();
        }
        else if (mStatusCountdown == kDragClearTick)
        {
            clearDraggedSlots();
        }
        else if (mStatusCountdown == kLineClearTick)
        {
            mStatusLine->clear();
            mTitleButton->setValue(0.0f);
        }
        mNeedsRedraw = true;
    }
    if (mHintCountdown != 0 && --mHintCountdown == 0)
    {
        mHintBox->setVisible(false);
        mNeedsRedraw = true;
    }
    if (mGraph.update())
        mNeedsRedraw = true;
}

void EditorScreen::hideBoxesNotUnderMouse()
{
    for (auto& box : mInfoBoxes)
        if (!box->hitTest(mMouseX, mMouseY) && mDragBand < 0)
            box->setVisible(false);
    for (TextBox* box : {mOutputGainBox.get(), mZoomBox.get(), mProgramBox.get()})
        if (!box->hitTest(mMouseX, mMouseY))
            box->setVisible(false);
}

void EditorScreen::clearDraggedSlots()
{
    for (int slot = 0; slot < ResponseGraph::kSlotCount; ++slot)
        mGraph.setDragged(slot, false);
}

void EditorScreen::setSpectrum(const float* magnitudes, int count, float sampleRate, int transformSize)
{
    mGraph.setSpectrum(magnitudes, count, sampleRate, transformSize);
    mNeedsRedraw = true;
}

void EditorScreen::drawFrame(Painter& painter) const
{
    painter.fillRectGradient({0.0f, 0.0f, mWidth, mHeight}, kBackgroundTop, kBackgroundBottom);
    mTitleBar->paint(painter);
    painter.fillRect({0.0f, kTitleBarHeight, mWidth, 1.0f}, withAlpha(kAmber, 150));
    painter.drawImage(ids::kScrew, 2, 0, 4.0f, 6.0f);
    painter.drawImage(ids::kScrew, 2, 0, mWidth - 36.0f, 6.0f);
    painter.drawImage(ids::kEmblem, 1, 0, 40.0f, 6.0f);
    painter.drawImage(ids::kWordmark, 1, 0, 76.0f, 6.0f);
    painter.drawImage(ids::kLamp, 2, isOn(mSwitches[0]) ? 1 : 0, 206.0f, 6.0f);
    painter.drawImage(ids::kMakerPlate, 1, 0, mWidth - 168.0f, 6.0f);
    mControlRow->paint(painter);
    mStatusLine->paintPlate(painter);
}

void EditorScreen::draw(Painter& painter)
{
    painter.setSaturation(mGreyedOut ? 0.0f : 1.0f);
    drawFrame(painter);
    mGraph.draw(painter);
    for (const auto& toggle : mToggles)
        toggle->paint(painter);
    for (const auto& button : mImageButtons)
        button->paint(painter);
    mLockSelector->paint(painter);
    mOutputGainBox->paint(painter);
    mProgramBox->paint(painter);
    for (const auto& box : mInfoBoxes)
        box->paint(painter);
    mZoomBox->paint(painter);
    mHintBox->paint(painter);
    mStatusLine->paint(painter);
    if (mMenuBand >= 0)
        mBandMenus[static_cast<size_t>(mMenuBand)]->paint(painter);
    mNeedsRedraw = false;
}

} // namespace velmoran::editor
