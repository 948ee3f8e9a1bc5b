#include "host/CoveredPixels.h"

#include "host/PixelGrid.h"
#include "host/QtConversions.h"

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

/// Smaller areas are drawn sooner than they are looked for.
constexpr int smallestSide = 64;

/// A rounded rectangle without its corners.
QRegion withoutCorners(const QRect& rect, double radius) {
    const int side = static_cast<int>(std::ceil(radius));
    if (side <= 0)
        return rect;
    return QRegion(rect.adjusted(side, 0, -side, 0)) + rect.adjusted(0, side, 0, -side);
}

} // namespace

QRegion coveredPixels(const UIView& view, const QTransform& toPixels, double pixelsPerPoint,
                      const UITraitCollection& traits) {
    const UIView::Presentation shown = view.presentation();
    const QTransform transform = toQt(shown.toSuperview()) * toPixels;
    if (view.isHidden() || shown.alpha < 1 || !PixelGrid::isAtScale(transform, pixelsPerPoint))
        return {};
    const QRect rect = PixelGrid::withEdgesOnPixels(transform.mapRect(toQt(shown.bounds)));
    const bool masks = view.layer().masksToBounds();
    if (masks && std::min(rect.width(), rect.height()) < smallestSide)
        return {};
    const double radius = view.layer().cornerRadius() * pixelsPerPoint;
    if (shown.backgroundColor && shown.backgroundColor->resolve(traits).alpha >= 1)
        return std::min(rect.width(), rect.height()) < smallestSide ? QRegion()
                                                                    : withoutCorners(rect, radius);
    QRegion covered;
    for (const UIView* const subview : view.subviews())
        covered += coveredPixels(*subview, transform, pixelsPerPoint, traits);
    // Where a clip between pixels ends is not known exactly.
    if (masks)
        covered &= radius > 0 ? withoutCorners(rect, radius) : QRegion(rect.adjusted(1, 1, -1, -1));
    return covered;
}

} // namespace sela
