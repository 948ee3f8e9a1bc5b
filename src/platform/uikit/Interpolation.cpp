#include "platform/uikit/Interpolation.h"

#include <cmath>

namespace sela {

double interpolated(double from, double to, double fraction) {
    return std::lerp(from, to, fraction);
}

CGPoint interpolated(CGPoint from, CGPoint to, double fraction) {
    return {std::lerp(from.x, to.x, fraction), std::lerp(from.y, to.y, fraction)};
}

CGRect interpolated(const CGRect& from, const CGRect& to, double fraction) {
    return {interpolated(from.origin, to.origin, fraction),
            {std::lerp(from.size.width, to.size.width, fraction),
             std::lerp(from.size.height, to.size.height, fraction)}};
}

CGAffineTransform interpolated(const CGAffineTransform& from, const CGAffineTransform& to, double fraction) {
    return {std::lerp(from.a, to.a, fraction),   std::lerp(from.b, to.b, fraction),
            std::lerp(from.c, to.c, fraction),   std::lerp(from.d, to.d, fraction),
            std::lerp(from.tx, to.tx, fraction), std::lerp(from.ty, to.ty, fraction)};
}

std::optional<UIColor> interpolated(const std::optional<UIColor>& from, const std::optional<UIColor>& to,
                                    double fraction) {
    if (fraction >= 1 || (!from && !to))
        return to;
    return UIColor::interpolated(from.value_or(UIColor::clear()), to.value_or(UIColor::clear()), fraction);
}

} // namespace sela
