#include "host/PixelGrid.h"

#include "host/QtConversions.h"

#include <algorithm>
#include <cmath>

namespace sela::PixelGrid {

namespace {

/// The radius of corners that meet at most.
double shownRadius(const QRectF& rect, double radius) {
    const double largest = std::min(rect.width(), rect.height()) / 2;
    return std::clamp(radius, 0.0, std::max(largest, 0.0));
}

QPainterPath pathOf(const QRectF& rect, double radius) {
    const double shown = shownRadius(rect, radius);
    QPainterPath path;
    path.addRoundedRect(rect, shown, shown);
    return path;
}

} // namespace

bool isUpright(const QTransform& transform) {
    return transform.m12() == 0 && transform.m21() == 0;
}

bool isAtScale(const QTransform& transform, double pixelsPerPoint) {
    constexpr double tolerance = 1e-6;
    return isUpright(transform) && std::abs(transform.m11() - pixelsPerPoint) < tolerance &&
           std::abs(transform.m22() - pixelsPerPoint) < tolerance;
}

QRect withEdgesOnPixels(const QRectF& rect) {
    const QPoint begin = rect.topLeft().toPoint();
    const QPoint end = rect.bottomRight().toPoint();
    return {begin, QSize(end.x() - begin.x(), end.y() - begin.y())};
}

QPainterPath roundedPath(const QTransform& transform, const CGRect& rect, double radius,
                         double pixelsPerPoint) {
    if (!isAtScale(transform, pixelsPerPoint))
        return transform.map(pathOf(toQt(rect), radius));
    return pathOf(withEdgesOnPixels(transform.mapRect(toQt(rect))), radius * pixelsPerPoint);
}

std::array<QPainterPath, 4> outsideOfCorners(const QRect& rect, double radius) {
    const QRectF all(rect);
    const double shown = shownRadius(all, radius);
    QRectF circle(all.topLeft(), QSizeF(2 * shown, 2 * shown));
    std::array<QPainterPath, 4> parts;
    const auto set = [&](std::size_t index, double startAngle, QPointF corner) {
        parts[index].arcMoveTo(circle, startAngle);
        parts[index].arcTo(circle, startAngle, -90);
        parts[index].lineTo(corner);
        parts[index].closeSubpath();
    };
    set(0, 180, all.topLeft());
    circle.moveRight(all.right());
    set(1, 90, all.topRight());
    circle.moveBottom(all.bottom());
    set(2, 0, all.bottomRight());
    circle.moveLeft(all.left());
    set(3, 270, all.bottomLeft());
    return parts;
}

} // namespace sela::PixelGrid
