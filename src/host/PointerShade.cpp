#include "host/PointerShade.h"

#include "host/QtConversions.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace sela {

namespace {

constexpr double pointedAlpha = 0.08;
constexpr double pressedAlpha = 0.16;

/// Corner radius of controls that have none of their own, in points.
constexpr double defaultRadius = 6;

} // namespace

CGRect PointerShade::move(const UIWindow& window, const UIView* view, bool pressed) {
    std::optional<Place> place;
    if (view) {
        const bool isRow = view->accessibilityRole() == AccessibilityRole::listItem;
        const double radius = isRow ? 0 : std::max(view->layer().cornerRadius(), defaultRadius);
        place = Place{window.shownRect(*view), radius, pressed};
    }
    if (place == place_)
        return {};
    const std::optional<Place> former = std::exchange(place_, place);
    return (former ? former->rect : CGRect()).unionWith(place ? place->rect : CGRect());
}

void PointerShade::paint(QImage& target, const QRect& area, double pixelsPerPoint,
                         const UITraitCollection& traits) const {
    if (!place_)
        return;
    QColor color = toQt(UIColor::named("AppText").resolve(traits));
    color.setAlphaF(static_cast<float>(place_->pressed ? pressedAlpha : pointedAlpha));
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(area);
    painter.scale(pixelsPerPoint, pixelsPerPoint);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(toQt(place_->rect), place_->cornerRadius, place_->cornerRadius);
}

} // namespace sela
