#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"

#include <string>

namespace sela {

/// Shows the full text of a control whose text is cut off, beside the control, while the pointer is over it
/// or it has the focus. Takes no touches. Main thread only.
class FullTextTip {
public:
    /// `window` must outlive this. `scale` is that of the screens in it, by which the tip grows.
    FullTextTip(UIWindow& window, double scale);

    /// Shows what is cut off in `view`; nothing when nothing is, and for null.
    void show(const UIView* view);

private:
    void layOut();

    UIWindow& window_;
    const double scale_;
    UIView panel_{"tip"};
    UILabel label_;
    CGRect place_; ///< of the view that the text is shown for, in window points
    std::string text_;
};

} // namespace sela
