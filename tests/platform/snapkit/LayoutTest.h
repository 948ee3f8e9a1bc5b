#pragma once

#include "platform/uikit/ViewTest.h"

#include <algorithm>
#include <cmath>

namespace sela {

/// Expects a frame to 1e-9 points.
inline void expectFrame(const UIView& view, const CGRect& expected) {
    const CGRect frame = view.frame();
    const double difference =
        std::max({std::abs(frame.origin.x - expected.origin.x), std::abs(frame.origin.y - expected.origin.y),
                  std::abs(frame.size.width - expected.size.width),
                  std::abs(frame.size.height - expected.size.height)});
    EXPECT_LE(difference, 1e-9) << testing::PrintToString(frame) << " instead of "
                                << testing::PrintToString(expected);
}

/// Where a view lies in the root of its tree.
inline CGRect frameInRoot(const UIView& view) {
    CGRect frame = view.layoutFrame();
    for (const UIView* superview = view.superview(); superview && superview->superview();
         superview = superview->superview()) {
        const CGRect outer = superview->layoutFrame();
        const CGPoint origin = superview->bounds().origin;
        frame = frame.offsetBy(outer.origin.x - origin.x, outer.origin.y - origin.y);
    }
    return frame;
}

} // namespace sela
