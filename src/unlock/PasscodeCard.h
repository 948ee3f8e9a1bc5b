#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"

#include <string_view>

namespace sela {

/// The card that an unlocking screen consists of: a rectangle in the middle of the screen, 320 by 390 points
/// before scaling, with the screen's title in a strip of 46 points at its top. Main thread only.
class PasscodeCard {
public:
    UIView& containerView() { return containerView_; }
    UILabel& titleLabel() { return titleLabel_; }

    /// Adds the card to a screen's root view, and the title to the card. `scale` is the screen's factor.
    void assemble(UIView& rootView, double scale);

    /// Shows a title by its key, "Input Passcode" or "Pick Album". Both are set in one size: a smaller one
    /// where either would run under the back button, as a long translation might. Called after `assemble`.
    void setTitle(std::string_view key);

private:
    UIView containerView_{"containerView"};
    UILabel titleLabel_{"titleLabel"};
    double scale_ = 1;
};

} // namespace sela
