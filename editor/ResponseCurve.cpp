#include "ResponseCurve.h"

#include <algorithm>
#include <cmath>

namespace velmoran::editor
{

namespace
{

constexpr float kFeatherPixels = 1.0f;
// Limits how far a joint's corner may reach at a sharp turn, where the mitre grows without bound.
constexpr float kSmallestMitreCosine = 0.35f;
// Three quads of two triangles between neighbouring points: feather, core, feather.
constexpr int kStrokeVerticesPerSegment = 18;
constexpr int kFillVerticesPerSegment = 6;

void appendTriangle(std::vector<ColouredVertex>& out, const ColouredVertex& a, const ColouredVertex& b,
                    const ColouredVertex& c)
{
    out.push_back(a);
    out.push_back(b);
    out.push_back(c);
}

// The quad from edge (a0, a1) at one point to edge (b0, b1) at the next.
void appendQuad(std::vector<ColouredVertex>& out, const ColouredVertex& a0, const ColouredVertex& a1,
                const ColouredVertex& b0, const ColouredVertex& b1)
{
    appendTriangle(out, a0, a1, b0);
    appendTriangle(out, a1, b1, b0);
}

void drawTriangles(Painter& painter, const std::vector<ColouredVertex>& vertices)
{
    if (!vertices.empty())
    {
        painter.fillTriangles(vertices.data(), static_cast<int>(vertices.size()));
    }
}

} // namespace

ResponseCurve::ResponseCurve(int pointCount) : mPoints(static_cast<std::size_t>(pointCount))
{
    mStroke.reserve(static_cast<std::size_t>(kStrokeVerticesPerSegment * (pointCount - 1)));
    mFill.reserve(static_cast<std::size_t>(kFillVerticesPerSegment * (pointCount - 1)));
}

void ResponseCurve::placeOn(const GraphAxes& axes)
{
    for (int k = 0; k < size(); ++k)
    {
        mPoints[k].frequencyHz = axes.curveFrequency(k, size());
        mPoints[k].x = axes.xForFrequency(mPoints[k].frequencyHz);
    }
}

void ResponseCurve::flagZeroCrossings()
{
    mPoints[0].crossesZero = false;
    for (int k = 1; k < size(); ++k)
    {
        mPoints[k].crossesZero = (mPoints[k - 1].responseDb < 0.0f) != (mPoints[k].responseDb < 0.0f);
    }
}

ResponseCurve::Offset ResponseCurve::sideOffset(int k) const
{
    const CurvePoint& previous = mPoints[std::max(k - 1, 0)];
    const CurvePoint& next = mPoints[std::min(k + 1, size() - 1)];
    const float tangentX = next.x - previous.x;
    const float tangentY = next.y - previous.y;
    const float length = std::hypot(tangentX, tangentY);
    if (length == 0.0f)
    {
        return {0.0f, 1.0f};
    }
    const float normalX = -tangentY / length;
    const float normalY = tangentX / length;
    // Scale the joint's normal so the stroke keeps its width along the segment beside it.
    const CurvePoint& from = k > 0 ? previous : mPoints[k];
    const CurvePoint& to = k > 0 ? mPoints[k] : next;
    const float segmentLength = std::hypot(to.x - from.x, to.y - from.y);
    float mitre = 1.0f;
    if (segmentLength > 0.0f)
    {
        const float cosine = (normalX * -(to.y - from.y) + normalY * (to.x - from.x)) / segmentLength;
        mitre = 1.0f / std::max(cosine, kSmallestMitreCosine);
    }
    return {normalX * mitre, normalY * mitre};
}

void ResponseCurve::buildStroke(Rgba colour, float halfWidth)
{
    mStroke.clear();
    const Rgba clear = withAlpha(colour, 0);
    const float outer = halfWidth + kFeatherPixels;
    // Edges across the stroke at one point, from one outer feather to the other.
    auto edges = [&](int k, ColouredVertex(&out)[4])
    {
        const CurvePoint& p = mPoints[k];
        const Offset side = sideOffset(k);
        out[0] = {p.x + side.dx * outer, p.y + side.dy * outer, clear};
        out[1] = {p.x + side.dx * halfWidth, p.y + side.dy * halfWidth, colour};
        out[2] = {p.x - side.dx * halfWidth, p.y - side.dy * halfWidth, colour};
        out[3] = {p.x - side.dx * outer, p.y - side.dy * outer, clear};
    };
    ColouredVertex here[4];
    ColouredVertex next[4];
    edges(0, here);
    for (int k = 1; k < size(); ++k)
    {
        edges(k, next);
        for (int band = 0; band < 3; ++band)
        {
            appendQuad(mStroke, here[band], here[band + 1], next[band], next[band + 1]);
        }
        std::copy(next, next + 4, here);
    }
}

void ResponseCurve::buildFill(float baselineY, Rgba edgeColour, Rgba baselineColour)
{
    mFill.clear();
    for (int k = 1; k < size(); ++k)
    {
        const CurvePoint& a = mPoints[k - 1];
        const CurvePoint& b = mPoints[k];
        const ColouredVertex edgeA{a.x, a.y, edgeColour};
        const ColouredVertex edgeB{b.x, b.y, edgeColour};
        const ColouredVertex baseA{a.x, baselineY, baselineColour};
        const ColouredVertex baseB{b.x, baselineY, baselineColour};
        if (!b.crossesZero || a.y == b.y)
        {
            appendQuad(mFill, edgeA, baseA, edgeB, baseB);
            continue;
        }
        // Two triangles that meet where the segment reaches the baseline, one on each side of it.
        const float t = std::clamp((baselineY - a.y) / (b.y - a.y), 0.0f, 1.0f);
        const ColouredVertex crossing{a.x + t * (b.x - a.x), baselineY, baselineColour};
        appendTriangle(mFill, edgeA, baseA, crossing);
        appendTriangle(mFill, crossing, baseB, edgeB);
    }
}

void ResponseCurve::drawFill(Painter& painter) const
{
    drawTriangles(painter, mFill);
}

void ResponseCurve::drawStroke(Painter& painter) const
{
    drawTriangles(painter, mStroke);
}

} // namespace velmoran::editor
