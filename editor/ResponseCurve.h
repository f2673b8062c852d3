#pragma once

#include "GraphAxes.h"
#include "Painter.h"

#include <vector>

namespace velmoran::editor
{

// One sample of a curve: where it is on the frequency axis, its level and its position.
struct CurvePoint
{
    float frequencyHz = 0.0f;
    float responseDb = 0.0f;
    float x = 0.0f;
    float y = 0.0f;
    // The level lies on the other side of 0 dB than at the previous point.
    bool crossesZero = false;
};

// A curve across the plot and the triangles that draw it: an anti-aliased stroke and a fill down
// to a baseline. Painter::fillTriangles does not smooth edges, so the stroke fades from a solid
// core to transparent outer vertices over one pixel. Every buffer is sized at construction; the
// rebuilds only refill them.
class ResponseCurve
{
public:
    explicit ResponseCurve(int pointCount);

    int size() const { return static_cast<int>(mPoints.size()); }
    CurvePoint& operator[](int k) { return mPoints[k]; }
    const CurvePoint& operator[](int k) const { return mPoints[k]; }

    // Spreads the points over the plot's visible frequency range (frequency and x of each).
    void placeOn(const GraphAxes& axes);
    // Flags the points where the level changed sides of 0 dB since the previous point.
    void flagZeroCrossings();
    // Stroke along the points' positions, solid over halfWidth pixels on either side.
    void buildStroke(Rgba colour, float halfWidth);
    // Fill between the points and the row baselineY, shading from edgeColour at the curve to
    // baselineColour at the baseline; split where the curve crosses 0 dB, so a boost and a cut
    // each fill their own side.
    void buildFill(float baselineY, Rgba edgeColour, Rgba baselineColour);
    // No fill until the next buildFill.
    void clearFill() { mFill.clear(); }

    void drawFill(Painter& painter) const;
    void drawStroke(Painter& painter) const;
    const std::vector<ColouredVertex>& strokeVertices() const { return mStroke; }
    const std::vector<ColouredVertex>& fillVertices() const { return mFill; }

private:
    struct Offset
    {
        float dx;
        float dy;
    };

    Offset sideOffset(int k) const;

    std::vector<CurvePoint> mPoints;
    std::vector<ColouredVertex> mStroke;
    std::vector<ColouredVertex> mFill;
};

} // namespace velmoran::editor
