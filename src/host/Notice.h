#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"

#include <string>

namespace sela {

/// A line at the bottom of a window that says something for a few seconds, over whatever is shown, and has a
/// screen reader say it, too. Takes no touches. Main thread only.
class Notice {
public:
    static constexpr double duration = 5; ///< seconds

    /// `window` must outlive this.
    explicit Notice(UIWindow& window);

    /// Shows `text` in place of what is shown.
    void show(const std::string& text);

private:
    UIWindow& window_;
    UIView panel_{"notice"};
    UILabel label_;
    int shows_ = 0;
};

} // namespace sela
