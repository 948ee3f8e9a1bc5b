#pragma once

#include "platform/uikit/Geometry.h"

#include <QPainterPath>
#include <QRectF>
#include <QTransform>

#include <array>

/// Where views lie on the pixels of a picture. A transform here leads from a view's points to pixels. Edges
/// of views are moved to whole pixels where they are drawn, so that they are sharp and meet. Any thread.
namespace sela::PixelGrid {

/// Whether the transform keeps rectangles axis-aligned.
bool isUpright(const QTransform& transform);

/// Whether a point of the view is the usual number of pixels in each direction, so that its edges can be
/// moved to whole pixels without distortion.
bool isAtScale(const QTransform& transform, double pixelsPerPoint);

/// The rectangle (pixels) with its edges moved to the nearest whole pixels.
QRect withEdgesOnPixels(const QRectF& rect);

/// A rounded rectangle (points) in pixels; its edges lie on whole pixels unless it is scaled or rotated.
QPainterPath roundedPath(const QTransform& transform, const CGRect& rect, double radius,
                         double pixelsPerPoint);

/// The four parts of a rectangle that lie outside when its corners are rounded. All in pixels.
std::array<QPainterPath, 4> outsideOfCorners(const QRect& rect, double radius);

} // namespace sela::PixelGrid
