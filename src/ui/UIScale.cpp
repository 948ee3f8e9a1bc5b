#include "ui/UIScale.h"

#include "platform/uikit/UIViewController.h"

#include <algorithm>

namespace sela {

namespace {

constexpr double phoneWidth = 375;

} // namespace

double getUIScale(UIViewController& controller) {
    return getUIScale(controller.view().frame().size);
}

double getUIScale(CGSize screen) {
    const double shorterSide = std::min(screen.width, screen.height);
    return shorterSide / (shorterSide < tabletWidth ? phoneWidth : tabletWidth);
}

double shorterSideForUIScale(double scale) {
    const double phone = phoneWidth * scale;
    return phone < tabletWidth ? phone : tabletWidth * scale;
}

} // namespace sela
