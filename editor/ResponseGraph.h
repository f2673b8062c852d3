#pragma once

#include "GraphAxes.h"
#include "GraphGrid.h"
#include "GraphSlot.h"
#include "Painter.h"
#include "ResponseCurve.h"
#include "SpectrumCurve.h"

#include <array>
#include <vector>

namespace velmoran::editor
{

// Where the automatic lock holds a drag: the handle's frequency and gain when the lock engaged.
struct LockAnchor
{
    bool set = false;
    float freqHz = 0.0f;
    float gainDb = 0.0f;
};

// The response graph: the panel on which the user sees and shapes the equaliser. It keeps thirteen
// slots (ten bands and three markers: output gain, frequency readout, input gain), evaluates each band's
// response and the summed response over the visible frequency range, hit-tests and highlights handles, zooms
// about the mouse and shows the live spectrum behind the curves. Positions are drawing pixels of the 998 x
// 634 design. UI thread only; only construction and the first layout allocate, never a frame.
class ResponseGraph
{
public:
    static constexpr int kBandCount = 10;
    static constexpr int kSlotCount = 13;
    static constexpr int kOutputGainMarker = 10;
    static constexpr int kFrequencyMarker = 11;
    static constexpr int kInputGainMarker = 12;
    static constexpr int kPointCount = 600;
    static constexpr float kHitReach = 8.0f;
    static constexpr float kMinSampleRate = 44100.0f;
    static constexpr float kMaxSampleRate = 192000.0f;

    ResponseGraph();

    // Sample rate in Hz for the band curves, kept within 44,100..192,000; redesigns every band.
    void setSampleRate(float sampleRateHz);
    float sampleRate() const { return mSampleRate; }
    // Full frequency range in Hz (at least 0.1, at most rate / 2 - 50); ignored after layout().
    void setFrequencyRange(float minHz, float maxHz);
    // Full gain range in dB; ignored after layout().
    void setGainRange(float minDb, float maxDb);
    // Freezes the ranges and builds the grid; later calls only place everything again.
    void layout();

    Rect panelRect() const { return mPanel; }
    Rect plotRect() const { return mAxes.plot(); }
    const GraphAxes& axes() const { return mAxes; }

    // Band `slot` (0..9): designs it at the graph's rate and marks its curve for evaluation. A type
    // code of 0 hides the band; pass filters (9..11) keep their handle on 0 dB, having no gain.
    void setBand(int slot, float freqHz, float gainDb, float q, int typeCode, unsigned routing, bool active);
    // The output (slot 10) or input (slot 12) gain in dB: a dot at the right or left end of the
    // audio band that the user drags up and down, and a line across the plot while the gain is not 0.
    void setGainMarker(int marker, float gainDb);
    // The frequency readout line (slot 11), in Hz.
    void setFrequencyMarker(float hz, bool shown);
    const GraphSlot& slot(int index) const { return mSlots[index]; }
    // The evaluated curve of band `band` (0..9).
    const ResponseCurve& bandCurve(int band) const { return mBandCurves[band]; }
    // The summed response of the first (0) or second (1) channel.
    const ResponseCurve& sumCurve(int channel) const { return mSums[channel]; }
    // True when some band is routed to one channel only, so each channel's sum is drawn.
    bool drawsSecondSum() const;
    // Lowest band not in use, or -1 when all ten are.
    int firstFreeBand() const;

    float xForFrequency(float hz) const { return mAxes.xForFrequency(hz); }
    float yForGain(float db) const { return mAxes.yForGain(db); }
    float frequencyForX(float x) const { return mAxes.frequencyForX(x); }
    float gainForY(float y) const { return mAxes.gainForY(y); }

    // The lowest visible slot whose handle lies inside the plot and within 8 pixels of (x, y) in
    // both directions, so a band before a gain marker; it is selected, lit to half its alpha and its
    // drag starts at its handle. -1 when none is.
    int hitTest(float x, float y);
    // Records the mouse position, which lights the handle of a switched-off band under it.
    void setMousePosition(float x, float y);
    // The slot whose handle the mouse is over, -1 for none.
    int hoveredSlot() const { return mHoveredSlot; }
    // The band the editor's keys act on, drawn with a lit handle; -1 for none.
    void setSelectedBand(int band) { mSelectedBand = band; }
    int selectedBand() const { return mSelectedBand; }
    void clearSelection();
    void setDragged(int slot, bool dragged);
    // Mouse position of a drag in drawing pixels.
    void setDragPosition(int slot, float x, float y);
    // Zooms by 0.1 per unit of delta (1..2) about (x, y), keeping the pan inside the plot.
    void wheelZoom(float delta, float x, float y);
    float zoom() const { return mAxes.zoom(); }

    // 0 off, 1 armed, 2 frequency held, 3 gain held; below 2 the anchor is dropped.
    void setLockMode(unsigned mode);
    unsigned lockMode() const { return mLockMode; }
    // Engages the anchor of a holding lock (modes 2 and 3 only).
    void setLockAnchor(float freqHz, float gainDb);

    // The analyser's latest frame: `count` linear magnitudes, bin k at k * sampleRateHz /
    // transformSize Hz.
    void setSpectrum(const float* magnitudes, int count, float sampleRateHz, int transformSize);
    void setSpectrumOn(bool on) { mSpectrum.setOn(on); }
    // Tilts the spectrum by +3 dB per octave around 1 kHz.
    void setSpectrumSlope(bool tilted) { mSpectrum.setSlope(tilted); }
    const SpectrumCurve& spectrum() const { return mSpectrum; }

    // Once per frame (40 ms): evaluates what changed, fades highlights and the spectrum; true while
    // something is still moving, so the editor keeps redrawing.
    bool update();
    // Draws panel, grid, spectrum, curves and handles as the last update() left them.
    void draw(Painter& painter) const;

    const std::vector<FrequencyGridLine>& frequencyGrid() const { return mFrequencyGrid; }
    const std::vector<GainGridLine>& gainGrid() const { return mGainGrid; }

private:
    void designBand(int slot);
    void placeHandle(GraphSlot& slot) const;
    // Everything placed on the axes follows them: handles at once, curves at the next update.
    void viewMoved();
    void refreshCurves();
    void evaluateBand(int band);
    void evaluateSums();
    void finishCurve(ResponseCurve& curve) const;
    void styleBandCurve(int band);
    void styleSums();
    bool fadeHighlights();
    int handleAt(float x, float y) const;

    void drawPanel(Painter& painter) const;
    void drawGridLines(Painter& painter) const;
    void drawGridLabels(Painter& painter) const;
    void drawCurves(Painter& painter) const;
    void drawMarkers(Painter& painter) const;
    void drawLockGuide(Painter& painter) const;
    void drawHandles(Painter& painter) const;

    Rect mPanel;
    GraphAxes mAxes;
    float mSampleRate = kMinSampleRate;
    bool mLaidOut = false;
    bool mCurvesNeedPlacing = true;
    std::array<GraphSlot, kSlotCount> mSlots;
    std::vector<ResponseCurve> mBandCurves;
    std::vector<ResponseCurve> mSums;
    std::vector<FrequencyGridLine> mFrequencyGrid;
    std::vector<GainGridLine> mGainGrid;
    SpectrumCurve mSpectrum;
    int mHoveredSlot = -1;
    int mSelectedBand = -1;
    unsigned mLockMode = 0;
    LockAnchor mLockAnchor;
};

} // namespace velmoran::editor
