#include "ResponseGraph.h"

#include "BandColours.h"
#include "EditorLayout.h"
#include "dsp/BiquadMagnitude.h"
#include "dsp/FilterDesign.h"
#include "plugin/PlugParameters.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

namespace params = Steinberg::Vst::Velmoran;

constexpr double kPi = 3.14159265358979323846;
// Deep stop bands read as -200 dB rather than minus infinity.
constexpr double kSmallestMagnitude = 1e-10;
constexpr float kHighestHzBelowNyquist = 50.0f;
constexpr float kLowestFullMinHz = 0.1f;
constexpr unsigned kHighlightFadeStep = 4;
constexpr unsigned kLockModeCount = 4;
constexpr unsigned kFirstHoldingLockMode = 2;
// The signal runs from left to right across the graph: the input gain's handle sits at the low end
// of the audio band, the output gain's at the top end, the frequency readout's near the top of the
// gain range, all clear of the bands' default handles.
constexpr float kInputGainMarkerHz = 20.0f;
constexpr float kOutputGainMarkerHz = 20000.0f;
constexpr float kFrequencyMarkerDb = 21.0f;

Rect plotInside(const Rect& panel)
{
    return {panel.x + 34.0f, panel.y + 24.0f, kDesignWidth - 116.0f, kDesignHeight - 202.0f};
}

bool hasNoGain(int typeCode)
{
    return typeCode == dsp::kTypeLowPass || typeCode == dsp::kTypeHighPass || typeCode == dsp::kTypeBandPass;
}

// Settings the graph can place: a positive frequency and finite gain and Q.
bool placeable(float freqHz, float gainDb, float q)
{
    return freqHz > 0.0f && std::isfinite(freqHz) && std::isfinite(gainDb) && std::isfinite(q);
}

unsigned eighthOf(Rgba colour)
{
    return colour.a / 8u;
}

// A fresh graph shows the bands where the plug-in's default settings put them.
GraphSlot defaultBandSlot(int band)
{
    GraphSlot slot;
    slot.freqHz = params::bandFrequencyHz(params::defaultValue(params::frequencyTag(band + 1)));
    slot.gainDb = params::bandGainDb(params::defaultValue(params::gainTag(band + 1)));
    slot.q = params::bandQ(params::defaultValue(params::qTag(band + 1)));
    return slot;
}

} // namespace

ResponseGraph::ResponseGraph()
    : mPanel(graphPanelRect(kDesignWidth, kDesignHeight)), mAxes(plotInside(mPanel))
{
    mBandCurves.reserve(kBandCount);
    for (int band = 0; band < kBandCount; ++band)
    {
        mSlots[band] = defaultBandSlot(band);
        mBandCurves.emplace_back(kPointCount);
    }
    mSums.reserve(2);
    mSums.emplace_back(kPointCount);
    mSums.emplace_back(kPointCount);
    mSlots[kOutputGainMarker].freqHz = kOutputGainMarkerHz;
    mSlots[kInputGainMarker].freqHz = kInputGainMarkerHz;
    mSlots[kFrequencyMarker].gainDb = kFrequencyMarkerDb;
    for (int index = 0; index < kSlotCount; ++index)
    {
        GraphSlot& slot = mSlots[index];
        slot.curveColour = slotCurveColour(index);
        slot.fillColour = slotFillColour(index);
        slot.highlight = eighthOf(slot.curveColour);
        placeHandle(slot);
    }
}

void ResponseGraph::setSampleRate(float sampleRateHz)
{
    const float clamped =
        sampleRateHz >= kMinSampleRate ? std::min(sampleRateHz, kMaxSampleRate) : kMinSampleRate;
    if (clamped == mSampleRate)
    {
        return;
    }
    mSampleRate = clamped;
    // The top of the axis must stay below Nyquist even when the layout is already frozen.
    const float ceilingHz = mSampleRate / 2.0f - kHighestHzBelowNyquist;
    if (mAxes.fullMaxHz() > ceilingHz)
    {
        mAxes.setFrequencyRange(mAxes.fullMinHz(), ceilingHz);
        if (mLaidOut)
        {
            mFrequencyGrid = frequencyGridLines(mAxes.fullMinHz(), mAxes.fullMaxHz());
        }
        viewMoved();
    }
    for (int band = 0; band < kBandCount; ++band)
    {
        designBand(band);
    }
}

void ResponseGraph::setFrequencyRange(float minHz, float maxHz)
{
    if (mLaidOut)
    {
        return;
    }
    mAxes.setFrequencyRange(std::max(minHz, kLowestFullMinHz),
                            std::min(maxHz, mSampleRate / 2.0f - kHighestHzBelowNyquist));
    viewMoved();
}

void ResponseGraph::setGainRange(float minDb, float maxDb)
{
    if (mLaidOut)
    {
        return;
    }
    mAxes.setGainRange(minDb, maxDb);
    viewMoved();
}

void ResponseGraph::layout()
{
    if (!mLaidOut)
    {
        mFrequencyGrid = frequencyGridLines(mAxes.fullMinHz(), mAxes.fullMaxHz());
        mGainGrid = gainGridLines(mAxes.fullMinDb(), mAxes.fullMaxDb());
        mLaidOut = true;
    }
    viewMoved();
}

void ResponseGraph::setBand(int slot, float freqHz, float gainDb, float q, int typeCode, unsigned routing,
                            bool active)
{
    if (slot < 0 || slot >= kBandCount || !placeable(freqHz, gainDb, q))
    {
        return;
    }
    GraphSlot& band = mSlots[slot];
    const float shownGainDb = hasNoGain(typeCode) ? 0.0f : gainDb;
    // The editor may hand every band over on each paint; only a change costs a new curve.
    if (band.freqHz == freqHz && band.gainDb == shownGainDb && band.q == q &&
        band.typeCode == static_cast<unsigned>(typeCode) && band.routing == routing && band.active == active)
    {
        return;
    }
    band.freqHz = freqHz;
    band.gainDb = shownGainDb;
    band.q = q;
    band.typeCode = static_cast<unsigned>(typeCode);
    band.routing = routing;
    band.active = active;
    band.visible = typeCode != dsp::kTypeNone;
    // A removed band is held by nothing, so it cannot keep the other highlights from fading.
    band.selected = band.selected && band.visible;
    band.dragged = band.dragged && band.visible;
    designBand(slot);
    placeHandle(band);
}

void ResponseGraph::setGainMarker(int marker, float gainDb)
{
    if ((marker != kOutputGainMarker && marker != kInputGainMarker) || !std::isfinite(gainDb))
    {
        return;
    }
    GraphSlot& slot = mSlots[marker];
    slot.gainDb = gainDb;
    slot.visible = true;
    placeHandle(slot);
    // A marker being dragged is drawn where the gain now is, also when the view moves.
    slot.dragX = slot.handleX;
    slot.dragY = slot.handleY;
}

void ResponseGraph::setFrequencyMarker(float hz, bool shown)
{
    if (!placeable(hz, 0.0f, 1.0f))
    {
        return;
    }
    GraphSlot& marker = mSlots[kFrequencyMarker];
    marker.freqHz = hz;
    marker.visible = shown;
    placeHandle(marker);
}

bool ResponseGraph::drawsSecondSum() const
{
    return std::any_of(mSlots.begin(), mSlots.begin() + kBandCount,
                       [](const GraphSlot& band) { return band.visible && band.routing != 0; });
}

int ResponseGraph::firstFreeBand() const
{
    for (int band = 0; band < kBandCount; ++band)
    {
        if (!mSlots[band].visible)
        {
            return band;
        }
    }
    return -1;
}

int ResponseGraph::hitTest(float x, float y)
{
    const int index = handleAt(x, y);
    if (index < 0)
    {
        return -1;
    }
    clearSelection();
    GraphSlot& hit = mSlots[index];
    hit.selected = true;
    hit.highlight = hit.curveColour.a / 2u;
    hit.dragged = false;
    hit.dragX = hit.handleX;
    hit.dragY = hit.handleY;
    return index;
}

void ResponseGraph::setMousePosition(float x, float y)
{
    mHoveredSlot = handleAt(x, y);
}

void ResponseGraph::clearSelection()
{
    for (GraphSlot& slot : mSlots)
    {
        slot.selected = false;
    }
}

void ResponseGraph::setDragged(int slot, bool dragged)
{
    if (slot >= 0 && slot < kSlotCount)
    {
        mSlots[slot].dragged = dragged;
    }
}

void ResponseGraph::setDragPosition(int slot, float x, float y)
{
    if (slot >= 0 && slot < kSlotCount)
    {
        mSlots[slot].dragX = x;
        mSlots[slot].dragY = y;
    }
}

void ResponseGraph::wheelZoom(float delta, float x, float y)
{
    const float zoomBefore = mAxes.zoom();
    const float panXBefore = mAxes.panX();
    const float panYBefore = mAxes.panY();
    mAxes.wheelZoom(delta, x, y);
    if (mAxes.zoom() != zoomBefore || mAxes.panX() != panXBefore || mAxes.panY() != panYBefore)
    {
        viewMoved();
    }
}

void ResponseGraph::setLockMode(unsigned mode)
{
    if (mode >= kLockModeCount)
    {
        return;
    }
    mLockMode = mode;
    if (mode < kFirstHoldingLockMode)
    {
        mLockAnchor = {};
    }
}

void ResponseGraph::setLockAnchor(float freqHz, float gainDb)
{
    if (mLockMode >= kFirstHoldingLockMode && placeable(freqHz, gainDb, 1.0f))
    {
        mLockAnchor = {true, freqHz, gainDb};
    }
}

void ResponseGraph::setSpectrum(const float* magnitudes, int count, float sampleRateHz, int transformSize)
{
    mSpectrum.setFrame(magnitudes, count, sampleRateHz, transformSize);
}

bool ResponseGraph::update()
{
    refreshCurves();
    const bool highlightsMoving = fadeHighlights();
    const bool spectrumMoving = mSpectrum.update(mAxes);
    return highlightsMoving || spectrumMoving;
}

void ResponseGraph::designBand(int slot)
{
    GraphSlot& band = mSlots[slot];
    dsp::BiquadCoefficients& c = band.coefficients;
    dsp::DesignFilter(mSampleRate, band.freqHz, band.gainDb, band.q, static_cast<int>(band.typeCode), c.a0,
                      c.a1, c.a2, c.b0, c.b1, c.b2);
    band.dirty = true;
}

void ResponseGraph::placeHandle(GraphSlot& slot) const
{
    slot.handleX = mAxes.xForFrequency(slot.freqHz);
    slot.handleY = mAxes.yForGain(slot.gainDb);
    slot.handleXPixel = wholePixel(slot.handleX);
    slot.handleYPixel = wholePixel(slot.handleY);
}

void ResponseGraph::viewMoved()
{
    mCurvesNeedPlacing = true;
    for (GraphSlot& slot : mSlots)
    {
        placeHandle(slot);
        // The handle under the mouse stays under it while the view moves beneath.
        if (slot.dragged)
        {
            slot.handleX = slot.dragX;
            slot.handleY = slot.dragY;
            slot.handleXPixel = wholePixel(slot.dragX);
            slot.handleYPixel = wholePixel(slot.dragY);
        }
    }
    mSpectrum.viewChanged();
}

void ResponseGraph::refreshCurves()
{
    if (mCurvesNeedPlacing)
    {
        for (int band = 0; band < kBandCount; ++band)
        {
            mBandCurves[band].placeOn(mAxes);
            mSlots[band].dirty = true;
        }
        for (ResponseCurve& sum : mSums)
        {
            sum.placeOn(mAxes);
        }
        mCurvesNeedPlacing = false;
    }
    bool anyBandChanged = false;
    for (int band = 0; band < kBandCount; ++band)
    {
        if (mSlots[band].dirty)
        {
            if (mSlots[band].visible)
            {
                evaluateBand(band);
            }
            mSlots[band].dirty = false;
            anyBandChanged = true;
        }
    }
    if (anyBandChanged)
    {
        evaluateSums();
    }
}

void ResponseGraph::evaluateBand(int band)
{
    const GraphSlot& slot = mSlots[band];
    ResponseCurve& curve = mBandCurves[band];
    const double radiansPerHz = 2.0 * kPi / mSampleRate;
    for (int k = 0; k < curve.size(); ++k)
    {
        const double magnitude = dsp::BiquadMagnitude(radiansPerHz * curve[k].frequencyHz, slot.coefficients);
        curve[k].responseDb = static_cast<float>(20.0 * std::log10(std::max(magnitude, kSmallestMagnitude)));
    }
    finishCurve(curve);
    styleBandCurve(band);
}

void ResponseGraph::evaluateSums()
{
    for (int k = 0; k < kPointCount; ++k)
    {
        float first = 0.0f;
        float second = 0.0f;
        for (int band = 0; band < kBandCount; ++band)
        {
            const GraphSlot& slot = mSlots[band];
            if (!slot.visible || !slot.active)
            {
                continue;
            }
            const float db = mBandCurves[band][k].responseDb;
            first += slot.routing == 0 || slot.routing == 1 ? db : 0.0f;
            second += slot.routing == 0 || slot.routing == 2 ? db : 0.0f;
        }
        mSums[0][k].responseDb = first;
        mSums[1][k].responseDb = second;
    }
    for (ResponseCurve& sum : mSums)
    {
        finishCurve(sum);
    }
    styleSums();
}

void ResponseGraph::finishCurve(ResponseCurve& curve) const
{
    for (int k = 0; k < curve.size(); ++k)
    {
        curve[k].y = mAxes.nearPlotY(mAxes.yForGain(curve[k].responseDb));
    }
    curve.flagZeroCrossings();
}

bool ResponseGraph::fadeHighlights()
{
    const bool held = std::any_of(mSlots.begin(), mSlots.end(),
                                  [](const GraphSlot& slot) { return slot.selected || slot.dragged; });
    if (held)
    {
        return false;
    }
    bool moving = false;
    for (GraphSlot& slot : mSlots)
    {
        const unsigned settled = eighthOf(slot.curveColour);
        if (slot.highlight > settled)
        {
            slot.highlight -= kHighlightFadeStep;
            moving = moving || slot.highlight > settled;
        }
    }
    return moving;
}

int ResponseGraph::handleAt(float x, float y) const
{
    // Only what is drawn can be taken: not a handle that a zoom has moved out of the plot.
    const Rect plot = plotRect();
    for (int index = 0; index < kSlotCount; ++index)
    {
        const GraphSlot& slot = mSlots[index];
        if (slot.visible && plot.contains(slot.handleX, slot.handleY) &&
            std::fabs(slot.handleX - x) <= kHitReach && std::fabs(slot.handleY - y) <= kHitReach)
        {
            return index;
        }
    }
    return -1;
}

} // namespace velmoran::editor
