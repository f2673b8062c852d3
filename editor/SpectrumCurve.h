#pragma once

#include "GraphAxes.h"
#include "Painter.h"
#include "ResponseCurve.h"

#include <vector>

namespace velmoran::editor
{

// The live spectrum behind the response curves: a calm filled curve of the analyser's latest
// frame on the graph's spectrum scale (0 dB at the top, -72 dB at the bottom). Resampled only when
// a new frame arrives or the view moves; fades out over a few frames when switched off.
// UI thread only; nothing allocates after construction.
class SpectrumCurve
{
public:
    static constexpr int kPointCount = 400;
    static constexpr int kMaxBinCount = 8192;
    // Magnitudes below this read as this (-100 dB), so silence cannot give log10(0).
    static constexpr float kFloor = 1e-5f;
    static constexpr Rgba kColour{104, 152, 208, 255};

    SpectrumCurve();

    // On: shown from the next frame that arrives. Off: fades out.
    void setOn(bool on);
    // Tilted: +3 dB per octave around 1 kHz, so pink noise reads flat.
    void setSlope(bool tilted);
    // Takes the analyser's frame: `count` linear magnitudes, bin k at k * sampleRateHz /
    // transformSize Hz. Ignored while off, when malformed, and when it equals the last frame.
    void setFrame(const float* magnitudes, int count, float sampleRateHz, int transformSize);
    // Zoom or pan moved: resample at the next update.
    void viewChanged() { mNeedsResample = true; }
    // Resamples what changed and steps the fade; true while the fade still runs.
    bool update(const GraphAxes& axes);
    void draw(Painter& painter) const;

    // How strongly the spectrum shows, 0 (not at all) .. 1.
    float visibility() const { return mHasCurve ? mOpacity : 0.0f; }
    const ResponseCurve& curve() const { return mCurve; }

private:
    void resample(const GraphAxes& axes);
    void smoothLevels();
    void rebuildGeometry(const GraphAxes& axes);
    float binPosition(float hz) const { return hz * static_cast<float>(mTransformSize) / mSampleRate; }
    float columnLevelDb(float hz, float halfStep) const;

    bool mOn = false;
    bool mSloped = false;
    bool mHasFrame = false;
    bool mHasCurve = false;
    bool mNeedsResample = false;
    float mOpacity = 0.0f;
    int mBinCount = 0;
    float mSampleRate = 44100.0f;
    int mTransformSize = 0;
    std::vector<float> mMagnitudes;
    std::vector<float> mBinDb;
    std::vector<float> mRawDb;
    std::vector<float> mEnvelopeDb;
    ResponseCurve mCurve;
};

} // namespace velmoran::editor
