#include "ResponseGraph.h"

#include "EditorLayout.h"
#include "TextMeasure.h"
#include "platform/render/text/FontDescriptor.h"
#include "resources/ResourceIds.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

constexpr Rgba kPanelBorder{112, 112, 112, 255};
constexpr Rgba kPlotBackground{56, 56, 56, 255};
constexpr Rgba kGridLine{159, 159, 159, 127};
constexpr Rgba kGridLabel{136, 136, 136, 255};
constexpr Rgba kZeroLine{255, 176, 0, 110};
constexpr Rgba kSecondSum{150, 200, 235, 255};
constexpr float kLabelSize = 11.0f;
constexpr float kLabelGap = 5.0f;

constexpr float kBandHalfWidth = 0.7f;
constexpr float kSumHalfWidth = 1.1f;
// A switched-off band keeps a faint stroke and no fill: still there to pick, not heard.
constexpr int kInactiveBandAlpha = 96;
// Fills fade from 40 % of the fill colour's alpha at the curve to 8 % at 0 dB, so overlapping
// bands stay readable.
constexpr float kFillEdgeShare = 0.4f;
constexpr float kFillBaseShare = 0.08f;
constexpr int kSumFillEdgeAlpha = 36;
constexpr int kSumFillBaseAlpha = 6;

constexpr int kMarkerLineAlpha = 160;
constexpr int kLockGuideAlpha = 80;
constexpr float kHandleHalfSize = 16.0f;
constexpr float kRingOuterRadius = 11.5f;
constexpr float kRingInnerRadius = 9.5f;
constexpr float kMarkerDotRadius = 4.0f;
// A gain marker's line would only hide the 0 dB grid line below a tenth of a decibel.
constexpr float kMarkerLineMinDb = 0.1f;
// A gain line crosses the whole graph, so it is drawn heavier than the grid to read as a level.
constexpr float kGainLineThickness = 2.0f;

Rgba scaledAlpha(Rgba colour, float share)
{
    return withAlpha(colour, static_cast<int>(colour.a * share));
}

TextStyle labelStyle(Rgba colour)
{
    return {&platform::kArialSmallFont, kLabelSize, colour};
}

void verticalLine(Painter& painter, const Rect& plot, float x, Rgba colour)
{
    painter.fillRect({static_cast<float>(wholePixel(x)), plot.y, 1.0f, plot.height}, colour);
}

void horizontalLine(Painter& painter, const Rect& plot, float y, Rgba colour, float thickness = 1.0f)
{
    painter.fillRect(
        {plot.x, static_cast<float>(wholePixel(y)) - std::floor(thickness / 2.0f), plot.width, thickness},
        colour);
}

bool withinColumns(const Rect& plot, float x)
{
    return x >= plot.x && x <= plot.right();
}

bool withinRows(const Rect& plot, float y)
{
    return y >= plot.y && y <= plot.bottom();
}

// The ring brightens with the highlight; even a settled ring shows the band's colour.
Rgba ringColour(const GraphSlot& slot)
{
    return withAlpha(slot.curveColour, static_cast<int>(64 + 2 * slot.highlight));
}

} // namespace

void ResponseGraph::styleBandCurve(int band)
{
    const GraphSlot& slot = mSlots[band];
    ResponseCurve& curve = mBandCurves[band];
    if (slot.active)
    {
        curve.buildFill(mAxes.zeroLineY(), scaledAlpha(slot.fillColour, kFillEdgeShare),
                        scaledAlpha(slot.fillColour, kFillBaseShare));
        curve.buildStroke(slot.curveColour, kBandHalfWidth);
    }
    else
    {
        curve.clearFill();
        curve.buildStroke(withAlpha(slot.curveColour, kInactiveBandAlpha), kBandHalfWidth);
    }
}

void ResponseGraph::styleSums()
{
    mSums[0].buildFill(mAxes.zeroLineY(), withAlpha(kLightGrey, kSumFillEdgeAlpha),
                       withAlpha(kLightGrey, kSumFillBaseAlpha));
    mSums[0].buildStroke(kLightGrey, kSumHalfWidth);
    mSums[1].buildStroke(kSecondSum, kSumHalfWidth);
}

void ResponseGraph::draw(Painter& painter) const
{
    drawPanel(painter);
    painter.setClip(mPanel);
    drawGridLabels(painter);
    painter.setClip(plotRect());
    drawGridLines(painter);
    mSpectrum.draw(painter);
    drawCurves(painter);
    drawMarkers(painter);
    drawLockGuide(painter);
    drawHandles(painter);
    painter.setClip({});
}

void ResponseGraph::drawPanel(Painter& painter) const
{
    const Rect& p = mPanel;
    painter.fillRect({p.x, p.y, p.width, 1.0f}, kPanelBorder);
    painter.fillRect({p.x, p.bottom() - 1.0f, p.width, 1.0f}, kPanelBorder);
    painter.fillRect({p.x, p.y + 1.0f, 1.0f, p.height - 2.0f}, kPanelBorder);
    painter.fillRect({p.right() - 1.0f, p.y + 1.0f, 1.0f, p.height - 2.0f}, kPanelBorder);
    painter.fillRect(plotRect(), kPlotBackground);
}

void ResponseGraph::drawGridLines(Painter& painter) const
{
    const Rect plot = plotRect();
    for (const FrequencyGridLine& line : mFrequencyGrid)
    {
        const float x = mAxes.xForFrequency(line.hz);
        if (withinColumns(plot, x))
        {
            verticalLine(painter, plot, x, kGridLine);
        }
    }
    for (const GainGridLine& line : mGainGrid)
    {
        const float y = mAxes.yForGain(line.db);
        if (withinRows(plot, y))
        {
            horizontalLine(painter, plot, y, kGridLine);
        }
    }
    horizontalLine(painter, plot, mAxes.zeroLineY(), kZeroLine);
}

void ResponseGraph::drawGridLabels(Painter& painter) const
{
    const Rect plot = plotRect();
    const float halfLine = lineHeight(labelStyle(kGridLabel)) / 2.0f;
    for (const FrequencyGridLine& line : mFrequencyGrid)
    {
        const float x = mAxes.xForFrequency(line.hz);
        if (line.label != " " && withinColumns(plot, x))
        {
            const TextStyle style = labelStyle(kGridLabel);
            painter.drawText(x - textWidth(line.label.c_str(), style) / 2.0f, plot.bottom() + kLabelGap,
                             line.label.c_str(), style);
        }
    }
    const float spectrumShown = mSpectrum.visibility();
    for (const GainGridLine& line : mGainGrid)
    {
        const float y = mAxes.yForGain(line.db);
        if (!withinRows(plot, y))
        {
            continue;
        }
        const TextStyle style = labelStyle(line.labelColour);
        painter.drawText(plot.x - kLabelGap - textWidth(line.label.c_str(), style), y - halfLine,
                         line.label.c_str(), style);
        if (spectrumShown > 0.0f)
        {
            painter.drawText(plot.right() + kLabelGap, y - halfLine, line.spectrumLabel.c_str(),
                             labelStyle(scaledAlpha(kGridLabel, spectrumShown)));
        }
    }
}

void ResponseGraph::drawCurves(Painter& painter) const
{
    bool anyBand = false;
    for (int band = 0; band < kBandCount; ++band)
    {
        if (mSlots[band].visible)
        {
            mBandCurves[band].drawFill(painter);
            anyBand = true;
        }
    }
    if (!anyBand)
    {
        return;
    }
    for (int band = 0; band < kBandCount; ++band)
    {
        if (mSlots[band].visible)
        {
            mBandCurves[band].drawStroke(painter);
        }
    }
    if (drawsSecondSum())
    {
        mSums[1].drawStroke(painter);
    }
    mSums[0].drawFill(painter);
    mSums[0].drawStroke(painter);
}

void ResponseGraph::drawMarkers(Painter& painter) const
{
    const Rect plot = plotRect();
    for (int index : {kInputGainMarker, kOutputGainMarker})
    {
        const GraphSlot& gain = mSlots[index];
        if (gain.visible && std::fabs(gain.gainDb) >= kMarkerLineMinDb)
        {
            horizontalLine(painter, plot, gain.handleY, withAlpha(gain.curveColour, kMarkerLineAlpha),
                           kGainLineThickness);
        }
    }
    const GraphSlot& readout = mSlots[kFrequencyMarker];
    if (readout.visible)
    {
        verticalLine(painter, plot, readout.handleX, withAlpha(readout.curveColour, kMarkerLineAlpha));
    }
}

void ResponseGraph::drawLockGuide(Painter& painter) const
{
    if (!mLockAnchor.set)
    {
        return;
    }
    const Rgba guide = withAlpha(kAmber, kLockGuideAlpha);
    if (mLockMode == 2)
    {
        verticalLine(painter, plotRect(), mAxes.xForFrequency(mLockAnchor.freqHz), guide);
    }
    else
    {
        horizontalLine(painter, plotRect(), mAxes.yForGain(mLockAnchor.gainDb), guide);
    }
}

void ResponseGraph::drawHandles(Painter& painter) const
{
    // From the top slot down, so a lower slot lies on top: the one a click on both would pick.
    for (int index = kSlotCount - 1; index >= 0; --index)
    {
        const GraphSlot& slot = mSlots[index];
        if (!slot.visible)
        {
            continue;
        }
        if (index >= kBandCount)
        {
            painter.drawCircle(slot.handleX, slot.handleY, kMarkerDotRadius, 0.0f, slot.curveColour);
        }
        else
        {
            const bool active = slot.active;
            const int image = active ? resources::kBandHandle : resources::kIdleHandle;
            const bool lit = index == mSelectedBand || (!active && index == mHoveredSlot);
            painter.drawImage(image, 2, lit ? 1 : 0, static_cast<float>(slot.handleXPixel) - kHandleHalfSize,
                              static_cast<float>(slot.handleYPixel) - kHandleHalfSize);
        }
        painter.drawCircle(slot.handleX, slot.handleY, kRingOuterRadius, kRingInnerRadius, ringColour(slot));
    }
}

} // namespace velmoran::editor
