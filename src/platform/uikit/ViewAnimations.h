#pragma once

#include "platform/uikit/Geometry.h"
#include "platform/uikit/PropertyAnimation.h"
#include "platform/uikit/UIColor.h"

#include <optional>

namespace sela {

/// The animations of one view's properties, and where the view was drawn last while they run.
struct ViewAnimations {
    PropertyAnimation<CGRect> bounds;
    PropertyAnimation<CGPoint> center;
    PropertyAnimation<CGAffineTransform> transform;
    PropertyAnimation<double> alpha;
    PropertyAnimation<std::optional<UIColor>> backgroundColor;
    CGRect lastShown; ///< in the window

    bool isRunning() const {
        return bounds.isRunning() || center.isRunning() || transform.isRunning() || alpha.isRunning() ||
               backgroundColor.isRunning();
    }
};

} // namespace sela
