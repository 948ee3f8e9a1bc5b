#pragma once

#include "platform/uikit/Geometry.h"

namespace sela {

class UIView;

/// A finger (or the pressed mouse button) at one moment of its way over the window. One finger is followed at
/// a time.
struct UITouch {
    CGPoint locationInWindow;
    double timestamp = 0; ///< seconds of the main queue's clock

    /// Where it is in `view`'s coordinates.
    CGPoint location(const UIView& view) const;
};

/// How far, in points, a finger may stray from where it came down and still count as a tap.
inline constexpr double tapMovementLimit = 10;

} // namespace sela
