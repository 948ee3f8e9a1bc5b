#pragma once

#include <functional>

namespace sela {

class UIView;

/// Recognises one tap on the view it was added to, that is a finger that comes down on the view or on a view
/// inside it and goes up without straying by more than `tapMovementLimit`. Of the recognisers on the way from
/// the touched view upwards the first wins, and a control on that way keeps those above it from recognising.
/// A recognised tap cancels the touch for the views. Owned by its view; main thread only.
class UITapGestureRecognizer {
public:
    /// Calls `action` of `target`, which must outlive the view.
    template<class Target, class Owner>
    UITapGestureRecognizer(Target* target, void (Owner::*action)(UITapGestureRecognizer&))
        : action_([target, action](UITapGestureRecognizer& recognizer) { (target->*action)(recognizer); }) {}

    /// The view it was added to; null before.
    UIView* view() const { return view_; }

    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled) { enabled_ = enabled; }

    /// Reports a tap to the target.
    void recognize() {
        // The action may destroy the view and with it this recogniser.
        const auto action = action_;
        action(*this);
    }

private:
    friend class UIView;

    UIView* view_ = nullptr;
    bool enabled_ = true;
    std::function<void(UITapGestureRecognizer&)> action_;
};

} // namespace sela
