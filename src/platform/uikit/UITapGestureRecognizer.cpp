#include "platform/uikit/UITapGestureRecognizer.h"

namespace sela {

void UITapGestureRecognizer::recognize() {
    // The action may destroy the view and with it this recogniser.
    const auto action = action_;
    action(*this);
}

} // namespace sela
