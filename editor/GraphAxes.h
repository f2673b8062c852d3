#pragma once

#include "Painter.h"

namespace velmoran::editor
{

// Whole-pixel copy of a position: plus 0.5, truncated. Positions far off the editor are limited
// first, so no value can make the conversion undefined.
int wholePixel(float position);

// The graph's two axes over its plot: frequency on a logarithmic scale, gain on a linear one with
// the spectrum's level scale beside it. Holds the full ranges the axes can show and the part of
// them that zoom and pan leave visible. Positions are design pixels; the value lines stay 2 pixels
// inside the plot's edges.
class GraphAxes
{
public:
    static constexpr float kMinZoom = 1.0f;
    static constexpr float kMaxZoom = 2.0f;
    static constexpr float kSpectrumTopDb = 0.0f;
    static constexpr float kSpectrumBottomDb = -72.0f;

    // Axes over `plot` with the full ranges 10..22,000 Hz and -24..+24 dB, unzoomed.
    explicit GraphAxes(const Rect& plot);

    // Full frequency range in Hz; ignored unless 0 < minHz < maxHz.
    void setFrequencyRange(float minHz, float maxHz);
    // Full gain range in dB; ignored unless minDb < maxDb.
    void setGainRange(float minDb, float maxDb);
    // Zooms by 0.1 per unit of wheel delta (1..2) so the value under (x, y) stays under it.
    void wheelZoom(float delta, float x, float y);

    // Pixel column of a frequency in Hz.
    float xForFrequency(float hz) const;
    // Frequency in Hz at a pixel column.
    float frequencyForX(float x) const;
    // Pixel row of a gain in dB.
    float yForGain(float db) const;
    // Gain in dB at a pixel row.
    float gainForY(float y) const;
    // Pixel row of a spectrum level in dB (0 at the top of the full range, -72 at its bottom).
    float yForSpectrumLevel(float db) const;
    // Pixel row of 0 dB, kept inside the plot when zoom and pan leave 0 dB out of view.
    float zeroLineY() const { return mZeroLineY; }
    // A pixel row limited to a band just around the plot: levels far out of view (a pass filter's
    // stop band) stay drawable without leaving the clip by thousands of pixels.
    float nearPlotY(float y) const;
    // Frequency in Hz of point k of a curve of `count` points spread over the whole plot width.
    float curveFrequency(int k, int count) const;

    const Rect& plot() const { return mPlot; }
    float fullMinHz() const { return mFullMinHz; }
    float fullMaxHz() const { return mFullMaxHz; }
    float fullMinDb() const { return mFullMinDb; }
    float fullMaxDb() const { return mFullMaxDb; }
    float viewMinHz() const { return mViewMinHz; }
    float viewMaxHz() const { return mViewMaxHz; }
    float viewMinDb() const { return mViewMinDb; }
    float viewMaxDb() const { return mViewMaxDb; }
    float zoom() const { return mZoom; }
    // Pan offsets in pixels of the unzoomed plot.
    float panX() const { return mPanX; }
    float panY() const { return mPanY; }

private:
    void updateView();
    float viewWidth() const { return mRight - mLeft; }
    float viewHeight() const { return mBottom - mTop; }

    Rect mPlot;
    float mLeft;
    float mRight;
    float mTop;
    float mBottom;
    float mFullMinHz = 10.0f;
    float mFullMaxHz = 22000.0f;
    float mFullMinDb = -24.0f;
    float mFullMaxDb = 24.0f;
    float mZoom = kMinZoom;
    float mPanX = 0.0f;
    float mPanY = 0.0f;
    float mViewMinHz = 0.0f;
    float mViewMaxHz = 0.0f;
    float mViewMinDb = 0.0f;
    float mViewMaxDb = 0.0f;
    float mViewMinLevelDb = 0.0f;
    float mViewMaxLevelDb = 0.0f;
    float mZeroLineY = 0.0f;
};

} // namespace velmoran::editor
