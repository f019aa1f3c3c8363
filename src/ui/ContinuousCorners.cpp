// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ContinuousCorners.h"

#include <QPointF>

#include <algorithm>
#include <cmath>

namespace stowly {

namespace {

// One corner's shape in radii, measured from the corner along its two edges.
// The curve leaves the edge at `extent`; its two inner control points also lie on the edge,
// so the curvature is zero where it leaves. It crosses the diagonal at `apex` from the
// corner on each axis (a circular arc of the same radius crosses at 1 - 1/sqrt(2) = 0.293),
// with the curvature there 1.2 times the arc's: the tighter middle is what the long,
// flat run-in pays for.
constexpr qreal extent = kContinuousCornerExtent;
constexpr qreal apex = 0.29;
constexpr qreal apexCurvature = 1.2;

struct Corner {
    QPointF origin; // the rectangle's corner
    QPointF first;  // unit vector along the edge the path arrives on, away from the corner
    QPointF second; // unit vector along the edge the path leaves on, away from the corner
};

void addCorner(QPainterPath& path, const Corner& corner, qreal radius)
{
    // On the diagonal the tangent runs at 45°; the line through the apex in that direction
    // meets each edge at 2 * apex, where the segment's last control point must lie.
    // The remaining control point sets the curvature at the apex:
    // k = (c - 2a) / (3 * sqrt(2) * a^2) for a segment from the edge to the apex.
    const qreal a = apex * radius;
    const qreal inner = 2 * a;
    const qreal outer = inner + apexCurvature * 3 * std::sqrt(2.0) * apex * apex * radius;
    const auto at = [&corner](qreal along, qreal across) {
        return corner.origin + corner.first * along + corner.second * across;
    };
    path.cubicTo(at(outer, 0), at(inner, 0), at(a, a));
    path.cubicTo(at(0, inner), at(0, outer), at(0, extent * radius));
}

} // namespace

QPainterPath continuousRoundedRect(const QRectF& rect, qreal radius)
{
    QPainterPath path;
    const QRectF r = rect.normalized();
    if (r.isEmpty())
        return path;
    // The bend runs `extent` radii along each edge; two corners may meet but not cross.
    radius = std::clamp(radius, qreal(0), std::min(r.width(), r.height()) / (2 * extent));
    if (radius <= 0) {
        path.addRect(r);
        return path;
    }
    const qreal run = extent * radius;
    const Corner corners[] = {
        {r.topRight(), QPointF(-1, 0), QPointF(0, 1)},
        {r.bottomRight(), QPointF(0, -1), QPointF(-1, 0)},
        {r.bottomLeft(), QPointF(1, 0), QPointF(0, -1)},
        {r.topLeft(), QPointF(0, 1), QPointF(1, 0)},
    };
    path.moveTo(r.left() + run, r.top());
    for (const Corner& corner : corners) {
        path.lineTo(corner.origin + corner.first * run);
        addCorner(path, corner, radius);
    }
    path.closeSubpath();
    return path;
}

} // namespace stowly
