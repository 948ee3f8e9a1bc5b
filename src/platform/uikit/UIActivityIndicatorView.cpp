#include "platform/uikit/UIActivityIndicatorView.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIAccessibility.h"

#include <cmath>

namespace sela {

UIActivityIndicatorView::UIActivityIndicatorView(std::string_view name)
    : UIView(name), color_(UIColor::dynamic({0.6, 0.6, 0.6, 1}, {0.7, 0.7, 0.7, 1})) {
    setFrame({0, 0, side, side});
    setHidden(true);
    setUserInteractionEnabled(false);
    setAccessibilityRole(AccessibilityRole::progress);
}

void UIActivityIndicatorView::setColor(const UIColor& color) {
    color_ = color;
    setNeedsDisplay();
}

void UIActivityIndicatorView::startAnimating() {
    if (!spinning_)
        startTime_ = DispatchQueue::main().now();
    spinning_ = true;
    setHidden(false);
    setNeedsDisplay();
}

void UIActivityIndicatorView::stopAnimating() {
    spinning_ = false;
    setHidden(true);
}

ViewContent UIActivityIndicatorView::content() const {
    return SpinnerContent{color_, spokes, leadingSpoke()};
}

int UIActivityIndicatorView::leadingSpoke() const {
    if (!spinning_)
        return 0;
    const double turn = UIAccessibility::isReduceMotionEnabled() ? calmTurnDuration : turnDuration;
    const double turns = (DispatchQueue::main().now() - startTime_) / turn;
    return static_cast<int>((turns - std::floor(turns)) * spokes) % spokes;
}

bool UIActivityIndicatorView::isAnimating() const {
    return spinning_ || UIView::isAnimating();
}

} // namespace sela
