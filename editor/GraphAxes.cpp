#include "GraphAxes.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

// Value lines stay this far inside the plot's edges, so a curve at the end of a range is not cut
// in half by the clip.
constexpr float kInset = 2.0f;
// How far beyond the plot a curve may run before it is flattened.
constexpr float kCurveOverhang = 16.0f;
// Curves are sampled on a grid of half pixels, their first and last samples 3 pixels inside the
// plot's edges.
constexpr float kCurveGridInset = 6.0f;
constexpr float kZoomPerWheelUnit = 0.1f;
constexpr float kFarOffEditor = 65536.0f;

// The value a fraction of the way down a linear range seen from its top.
float fromTop(float top, float bottom, float fraction)
{
    return top - (top - bottom) * fraction;
}

} // namespace

int wholePixel(float position)
{
    // fmax and fmin pass over NaN, which ends up far off to the left as well.
    return static_cast<int>(std::fmin(std::fmax(position, -kFarOffEditor), kFarOffEditor) + 0.5f);
}

GraphAxes::GraphAxes(const Rect& plot)
    : mPlot(plot), mLeft(plot.x + kInset), mRight(plot.right() - kInset), mTop(plot.y + kInset),
      mBottom(plot.bottom() - kInset)
{
    updateView();
}

void GraphAxes::setFrequencyRange(float minHz, float maxHz)
{
    if (!(minHz > 0.0f && minHz < maxHz) || !std::isfinite(maxHz))
    {
        return;
    }
    mFullMinHz = minHz;
    mFullMaxHz = maxHz;
    updateView();
}

void GraphAxes::setGainRange(float minDb, float maxDb)
{
    if (!(minDb < maxDb) || !std::isfinite(minDb) || !std::isfinite(maxDb))
    {
        return;
    }
    mFullMinDb = minDb;
    mFullMaxDb = maxDb;
    updateView();
}

void GraphAxes::wheelZoom(float delta, float x, float y)
{
    if (!std::isfinite(delta) || !std::isfinite(x) || !std::isfinite(y))
    {
        return;
    }
    const float oldZoom = mZoom;
    mZoom = std::clamp(mZoom + kZoomPerWheelUnit * delta, kMinZoom, kMaxZoom);
    // The unzoomed plot position under the mouse is pan + offset / zoom; keep it fixed.
    const float offsetX = x - mLeft;
    const float offsetY = y - mTop;
    mPanX += offsetX / oldZoom - offsetX / mZoom;
    mPanY += offsetY / oldZoom - offsetY / mZoom;
    mPanX = std::clamp(mPanX, 0.0f, viewWidth() - viewWidth() / mZoom);
    mPanY = std::clamp(mPanY, 0.0f, viewHeight() - viewHeight() / mZoom);
    updateView();
}

float GraphAxes::xForFrequency(float hz) const
{
    const double position = (std::log10(static_cast<double>(hz)) - std::log10(mViewMinHz)) /
                            (std::log10(mViewMaxHz) - std::log10(mViewMinHz));
    return mLeft + static_cast<float>(position) * (mRight - mLeft);
}

float GraphAxes::frequencyForX(float x) const
{
    const double position = static_cast<double>(x - mLeft) / (mRight - mLeft);
    const double logMin = std::log10(mViewMinHz);
    return static_cast<float>(std::pow(10.0, logMin + (std::log10(mViewMaxHz) - logMin) * position));
}

float GraphAxes::yForGain(float db) const
{
    return mTop + (1.0f - (db - mViewMinDb) / (mViewMaxDb - mViewMinDb)) * (mBottom - mTop);
}

float GraphAxes::gainForY(float y) const
{
    return fromTop(mViewMaxDb, mViewMinDb, (y - mTop) / (mBottom - mTop));
}

float GraphAxes::yForSpectrumLevel(float db) const
{
    return mTop + (1.0f - (db - mViewMinLevelDb) / (mViewMaxLevelDb - mViewMinLevelDb)) * (mBottom - mTop);
}

float GraphAxes::nearPlotY(float y) const
{
    return std::clamp(y, mPlot.y - kCurveOverhang, mPlot.bottom() + kCurveOverhang);
}

float GraphAxes::curveFrequency(int k, int count) const
{
    const double gridLeft = 2.0 * mPlot.x + kCurveGridInset;
    const double gridRight = 2.0 * mPlot.right() - kCurveGridInset;
    const double gridX = 2.0 * mPlot.x + 2.0 * mPlot.width * k / (count - 1);
    const double logMin = std::log10(mViewMinHz);
    const double position = (gridX - gridLeft) / (gridRight - gridLeft);
    return static_cast<float>(std::pow(10.0, logMin + (std::log10(mViewMaxHz) - logMin) * position));
}

void GraphAxes::updateView()
{
    const double logMin = std::log10(mFullMinHz);
    const double logSpan = std::log10(mFullMaxHz) - logMin;
    const float visibleWidth = viewWidth() / mZoom;
    mViewMinHz = static_cast<float>(std::pow(10.0, logMin + mPanX / viewWidth() * logSpan));
    mViewMaxHz = static_cast<float>(std::pow(10.0, logMin + (mPanX + visibleWidth) / viewWidth() * logSpan));

    const float topFraction = mPanY / viewHeight();
    const float bottomFraction = (mPanY + viewHeight() / mZoom) / viewHeight();
    mViewMaxDb = fromTop(mFullMaxDb, mFullMinDb, topFraction);
    mViewMinDb = fromTop(mFullMaxDb, mFullMinDb, bottomFraction);
    mViewMaxLevelDb = fromTop(kSpectrumTopDb, kSpectrumBottomDb, topFraction);
    mViewMinLevelDb = fromTop(kSpectrumTopDb, kSpectrumBottomDb, bottomFraction);

    mZeroLineY = std::clamp(yForGain(0.0f), mTop, mBottom);
}

} // namespace velmoran::editor
