#include "ui/UIScale.h"

#include "platform/uikit/UIViewController.h"

#include <algorithm>

namespace sela {

double getUIScale(UIViewController& controller) {
    constexpr double phoneWidth = 375;
    constexpr double tabletWidth = 768;
    const CGSize size = controller.view().frame().size;
    const double shorterSide = std::min(size.width, size.height);
    return shorterSide / (shorterSide < tabletWidth ? phoneWidth : tabletWidth);
}

} // namespace sela
