#include "host/FocusRing.h"

#include "host/QtConversions.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace sela {

namespace {

/// Lengths in points.
constexpr double distance = 4;
constexpr double width = 2.5;
constexpr double haloWidth = 5;
constexpr double smallestRadius = 4;

/// Around the view, and clipped by the views around it.
FocusRing::Place placeAround(const UIWindow& window, const UIView& view) {
    const double radius = std::max(view.layer().cornerRadius(), smallestRadius) + distance;
    CGRect rect = window.shownRect(view).insetBy(-distance, -distance);
    for (const UIView* above = view.superview(); above; above = above->superview())
        if (above->clipsToBounds() || above == &window)
            rect = rect.intersection(window.shownRect(*above).insetBy(width / 2, width / 2));
    return {rect, radius};
}

CGRect drawnRect(const std::optional<FocusRing::Place>& place) {
    return place ? place->rect.insetBy(-haloWidth, -haloWidth) : CGRect();
}

} // namespace

CGRect FocusRing::move(const UIWindow& window, const UIView* view) {
    const std::optional<Place> place = view ? std::optional(placeAround(window, *view)) : std::nullopt;
    if (place == place_)
        return {};
    const std::optional<Place> former = std::exchange(place_, place);
    return drawnRect(former).unionWith(drawnRect(place));
}

void FocusRing::paint(QImage& target, const QRect& area, double pixelsPerPoint,
                      const UITraitCollection& traits) const {
    if (!place_)
        return;
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(area);
    painter.scale(pixelsPerPoint, pixelsPerPoint);
    // A halo of the opposite lightness, so that the ring stands out from a control of its own colour, too.
    const bool dark = traits.userInterfaceStyle == UIUserInterfaceStyle::dark;
    const QPen pens[] = {QPen(dark ? Qt::black : Qt::white, haloWidth),
                         QPen(toQt(UIColor::systemBlue().resolve(traits)), width)};
    for (const QPen& pen : pens) {
        painter.setPen(pen);
        painter.drawRoundedRect(toQt(place_->rect), place_->cornerRadius, place_->cornerRadius);
    }
}

} // namespace sela
