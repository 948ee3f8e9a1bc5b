#pragma once

#include "platform/uikit/CAMediaTimingFunction.h"

#include <string>
#include <utility>
#include <vector>

namespace sela {

/// An animation of one number through key values at equal distances of time. It changes what is shown, never
/// the view's own values. The only key path is "transform.translation.x" (points to the right).
struct CAKeyframeAnimation {
    explicit CAKeyframeAnimation(std::string animatedKeyPath) : keyPath(std::move(animatedKeyPath)) {}

    std::string keyPath;
    CAMediaTimingFunction timingFunction =
        CAMediaTimingFunction::linear(); ///< between two neighbouring values
    double duration = 0.25;              ///< seconds
    std::vector<double> values;

    /// The number shown `elapsed` seconds after the start: the first value before it, and 0 (no effect)
    /// without values or from `duration` on.
    double value(double elapsed) const;
};

} // namespace sela
