#pragma once

#include "platform/uikit/UIView.h"

namespace sela {

/// The process as its views see it. Main thread only.
class UIApplication {
public:
    static UIApplication& shared();

    /// The direction of the language that the texts are in; from left to right until the host says otherwise,
    /// which it does before the first view is laid out.
    UIUserInterfaceLayoutDirection userInterfaceLayoutDirection() const { return layoutDirection_; }
    void setUserInterfaceLayoutDirection(UIUserInterfaceLayoutDirection direction) {
        layoutDirection_ = direction;
    }

private:
    UIApplication() = default;

    UIUserInterfaceLayoutDirection layoutDirection_ = UIUserInterfaceLayoutDirection::leftToRight;
};

} // namespace sela
