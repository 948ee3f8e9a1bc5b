#pragma once

#include "platform/foundation/NSLog.h"
#include "platform/uikit/UIView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

namespace sela {

inline void PrintTo(const CGRect& rect, std::ostream* stream) {
    *stream << "(" << rect.origin.x << ", " << rect.origin.y << ", " << rect.size.width << " x "
            << rect.size.height << ")";
}

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

/// The log lines that are written while it lives.
class CapturedLog {
public:
    const std::vector<std::string>& lines() const { return lines_; }

private:
    std::vector<std::string> lines_;
    LogRedirection redirection_{[this](const std::string& line) { lines_.push_back(line); }};
};

} // namespace sela
