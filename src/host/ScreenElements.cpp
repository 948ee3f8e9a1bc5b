#include "host/ScreenElements.h"

#include "platform/uikit/UIView.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela::ScreenElements {

namespace {

/// Below this alpha a view takes no touches either.
constexpr double smallestAlpha = 0.01;

bool isElement(const UIView& view) {
    switch (view.accessibilityRole()) {
    case AccessibilityRole::none:
        return false;
    case AccessibilityRole::image:
    case AccessibilityRole::staticText:
        return !view.accessibilityLabel().empty();
    default:
        return true;
    }
}

void collect(UIWindow& window, const UIView& view, bool controlsOnly, std::vector<UIView*>& elements) {
    for (UIView* const subview : view.subviews()) {
        if (subview->isHidden() || subview->alpha() < smallestAlpha)
            continue;
        if (!isElement(*subview))
            collect(window, *subview, controlsOnly, elements);
        else if ((isControl(*subview) || !controlsOnly) && !window.shownRect(*subview).isEmpty())
            elements.push_back(subview);
    }
}

} // namespace

bool isControl(const UIView& view) {
    const AccessibilityRole role = view.accessibilityRole();
    return role == AccessibilityRole::button || role == AccessibilityRole::keyboardKey ||
           role == AccessibilityRole::listItem;
}

std::vector<UIView*> inside(UIWindow& window, const UIView& view) {
    std::vector<UIView*> elements;
    collect(window, view, isControl(view), elements);
    const bool isFromRight =
        window.effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    const auto place = [&](const UIView* element) {
        const CGRect rect = window.shownRect(*element);
        return std::pair(std::lround(rect.midY()), std::lround(isFromRight ? -rect.maxX() : rect.minX()));
    };
    std::ranges::stable_sort(elements, {}, place);
    return elements;
}

UIView* around(const UIView& view) {
    UIView* above = view.superview();
    while (above && !isElement(*above))
        above = above->superview();
    return above;
}

UIView* controlAt(UIWindow& window, CGPoint point) {
    UIView* view = window.hitTest(point);
    while (view && !isControl(*view))
        view = view->superview();
    return view;
}

bool tap(UIWindow& window, UIView& view) {
    window.prepareFrame();
    const std::optional<CGPoint> point = window.tapPoint(view);
    if (point)
        window.tap(*point);
    return point.has_value();
}

} // namespace sela::ScreenElements
