#pragma once

#include "platform/uikit/Geometry.h"

namespace sela {

/// The screen that the views are shown on. Main thread only.
class UIScreen {
public:
    static UIScreen& main();

    /// The screen's rectangle in points; 375 by 667 until a window says otherwise.
    CGRect bounds() const { return bounds_; }
    /// Pixels per point; 1 until a window says otherwise.
    double scale() const { return scale_; }
    void setScale(double scale) { scale_ = scale; }
    void setSize(CGSize size) { bounds_ = {{}, size}; }

private:
    CGRect bounds_{0, 0, 375, 667};
    double scale_ = 1;
};

} // namespace sela
