// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QPainterPath>
#include <QRectF>

namespace stowly {

// The outline of a rounded rectangle whose corners ease into the straight edges: the
// bend starts about one and a half radii before the corner with no curvature and tightens
// towards the corner's diagonal, so the edge flows into the corner without the visible
// kink where a circular arc meets a straight line. Each corner is two cubic Bézier
// segments that meet on the diagonal, mirror images of each other. A radius that would
// make two corners overlap is reduced until they just meet.
QPainterPath continuousRoundedRect(const QRectF& rect, qreal radius);

// How far before the corner the bend begins, in radii.
inline constexpr qreal kContinuousCornerExtent = 1.528;

} // namespace stowly
