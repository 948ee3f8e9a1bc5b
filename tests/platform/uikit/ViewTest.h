#pragma once

#include "platform/foundation/ScopedMainQueue.h"
#include "platform/uikit/UIWindow.h"
#include "support/FixedTextMeasurer.h"
#include "support/VirtualMainLoop.h"

#include <gtest/gtest.h>

#include <ostream>

namespace sela {

inline void PrintTo(const CGRect& rect, std::ostream* out) {
    *out << '(' << rect.minX() << ", " << rect.minY() << ", " << rect.size.width << ", " << rect.size.height
         << ')';
}

inline void PrintTo(const CGSize& size, std::ostream* out) {
    *out << size.width << " by " << size.height;
}

/// A window of 300 by 400 points and a clock that the test moves.
class ViewTest : public testing::Test {
protected:
    /// A whole tap at a point of the window.
    void tap(CGPoint point) {
        window.touchBegan(point);
        window.touchEnded(point);
    }

    FixedTextMeasurer text;
    VirtualMainLoop loop;
    ScopedMainQueue mainQueue{loop};
    UIWindow window{{300, 400}};
};

} // namespace sela
