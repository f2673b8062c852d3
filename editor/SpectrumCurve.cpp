#include "SpectrumCurve.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

constexpr float kFadeStep = 0.25f;
constexpr float kSlopeDbPerOctave = 3.0f;
constexpr float kSlopePivotHz = 1000.0f;
constexpr float kStrokeHalfWidth = 0.6f;
constexpr int kStrokeAlpha = 200;
constexpr int kFillEdgeAlpha = 72;
constexpr int kFillBaseAlpha = 8;
// Binomial weights over five neighbouring points: smooth enough to read as one calm shape, narrow
// enough to keep a tone's peak where it is.
constexpr float kSmoothing[5] = {1.0f / 16, 4.0f / 16, 6.0f / 16, 4.0f / 16, 1.0f / 16};

// The analyser publishes |X| / M for a frame of M samples under a four-term Blackman-Harris
// window, so a sine of peak amplitude A reads A times the window's mean (0.35875) over two (one
// side of the spectrum). Adding that back lets a sine read its own peak level in dBFS.
constexpr float kSineCalibrationDb = 14.9248f; // 20 log10(2 / 0.35875)

float levelDb(float magnitude)
{
    return 20.0f * std::log10(std::max(magnitude, SpectrumCurve::kFloor)) + kSineCalibrationDb;
}

} // namespace

SpectrumCurve::SpectrumCurve()
    : mMagnitudes(kMaxBinCount), mBinDb(kMaxBinCount), mRawDb(kPointCount), mEnvelopeDb(kPointCount),
      mCurve(kPointCount)
{
}

void SpectrumCurve::setOn(bool on)
{
    if (on == mOn)
    {
        return;
    }
    mOn = on;
    if (on)
    {
        // What was shown before is stale; wait for the analyser's next frame.
        mHasFrame = false;
        mHasCurve = false;
        mBinCount = 0;
        mOpacity = 1.0f;
    }
}

void SpectrumCurve::setSlope(bool tilted)
{
    if (tilted != mSloped)
    {
        mSloped = tilted;
        mNeedsResample = true;
    }
}

void SpectrumCurve::setFrame(const float* magnitudes, int count, float sampleRateHz, int transformSize)
{
    if (!mOn || magnitudes == nullptr || count <= 0 || transformSize <= 0 || !(sampleRateHz > 0.0f) ||
        !std::isfinite(sampleRateHz))
    {
        return;
    }
    count = std::min(count, kMaxBinCount);
    const bool sameFrame = mHasFrame && count == mBinCount && sampleRateHz == mSampleRate &&
                           transformSize == mTransformSize &&
                           std::equal(magnitudes, magnitudes + count, mMagnitudes.begin());
    if (sameFrame)
    {
        return;
    }
    std::copy(magnitudes, magnitudes + count, mMagnitudes.begin());
    std::transform(magnitudes, magnitudes + count, mBinDb.begin(), levelDb);
    mBinCount = count;
    mSampleRate = sampleRateHz;
    mTransformSize = transformSize;
    mHasFrame = true;
    mNeedsResample = true;
}

bool SpectrumCurve::update(const GraphAxes& axes)
{
    if (mOn && mHasFrame && mNeedsResample)
    {
        resample(axes);
        mNeedsResample = false;
        mHasCurve = true;
    }
    if (!mOn && mHasCurve && mOpacity > 0.0f)
    {
        mOpacity = std::max(mOpacity - kFadeStep, 0.0f);
        rebuildGeometry(axes);
        return mOpacity > 0.0f;
    }
    return false;
}

void SpectrumCurve::draw(Painter& painter) const
{
    if (visibility() > 0.0f)
    {
        mCurve.drawFill(painter);
        mCurve.drawStroke(painter);
    }
}

float SpectrumCurve::columnLevelDb(float hz, float halfStep) const
{
    const float floorDb = levelDb(0.0f);
    const int first = static_cast<int>(std::ceil(binPosition(hz / halfStep)));
    const int last = std::min(static_cast<int>(std::floor(binPosition(hz * halfStep))), mBinCount - 1);
    if (first <= last)
    {
        // Several bins share the column: the loudest speaks for them, so a tone keeps its level
        // however narrow the column is.
        return *std::max_element(mBinDb.begin() + first, mBinDb.begin() + last + 1);
    }
    // Fewer bins than columns (the bass): draw straight between the neighbouring bins.
    const float position = binPosition(hz);
    const int below = static_cast<int>(position);
    if (below + 1 >= mBinCount)
    {
        return floorDb;
    }
    const float t = position - static_cast<float>(below);
    return mBinDb[below] + t * (mBinDb[below + 1] - mBinDb[below]);
}

void SpectrumCurve::resample(const GraphAxes& axes)
{
    mCurve.placeOn(axes);
    // The points are evenly spaced in log frequency; a column reaches half a step either side.
    const float halfStep = std::sqrt(mCurve[1].frequencyHz / mCurve[0].frequencyHz);
    for (int k = 0; k < kPointCount; ++k)
    {
        mRawDb[k] = columnLevelDb(mCurve[k].frequencyHz, halfStep);
    }
    smoothLevels();
    if (mSloped)
    {
        for (int k = 0; k < kPointCount; ++k)
        {
            mCurve[k].responseDb += kSlopeDbPerOctave * std::log2(mCurve[k].frequencyHz / kSlopePivotHz);
        }
    }
    for (int k = 0; k < kPointCount; ++k)
    {
        mCurve[k].y = axes.nearPlotY(axes.yForSpectrumLevel(mCurve[k].responseDb));
    }
    rebuildGeometry(axes);
}

void SpectrumCurve::smoothLevels()
{
    // A tone is one or two columns wide: an average in dB would sink it towards the floor around
    // it. Each column takes the loudest of its neighbours less a falloff per column, which keeps
    // every peak at its level and rounds its flanks, and then a light average calms the ripple.
    constexpr int kReach = 2;
    constexpr float kFalloffDbPerColumn = 4.0f;
    for (int k = 0; k < kPointCount; ++k)
    {
        float envelope = mRawDb[k];
        for (int offset = 1; offset <= kReach; ++offset)
        {
            const float falloff = kFalloffDbPerColumn * static_cast<float>(offset);
            envelope = std::max(envelope, mRawDb[std::max(k - offset, 0)] - falloff);
            envelope = std::max(envelope, mRawDb[std::min(k + offset, kPointCount - 1)] - falloff);
        }
        mEnvelopeDb[k] = envelope;
    }
    for (int k = 0; k < kPointCount; ++k)
    {
        float sum = 0.0f;
        for (int offset = -kReach; offset <= kReach; ++offset)
        {
            const int neighbour = std::clamp(k + offset, 0, kPointCount - 1);
            sum += kSmoothing[offset + kReach] * mEnvelopeDb[neighbour];
        }
        // A column that is its own peak keeps its level, so a tone reads true at its top.
        mCurve[k].responseDb =
            mRawDb[k] >= mEnvelopeDb[k] ? mEnvelopeDb[k] : std::max(sum, mEnvelopeDb[k] - 1.0f);
    }
}

void SpectrumCurve::rebuildGeometry(const GraphAxes& axes)
{
    const auto faded = [this](int alpha) { return withAlpha(kColour, static_cast<int>(alpha * mOpacity)); };
    mCurve.buildFill(axes.plot().bottom(), faded(kFillEdgeAlpha), faded(kFillBaseAlpha));
    mCurve.buildStroke(faded(kStrokeAlpha), kStrokeHalfWidth);
}

} // namespace velmoran::editor
