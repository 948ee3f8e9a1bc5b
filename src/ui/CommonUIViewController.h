#pragma once

#include "platform/uikit/UIViewController.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace sela {

class UIBarButtonItem;

/// A screen that is shown on behalf of another one and reports back to it, once, when it closes. Main thread
/// only.
class CommonUIViewController : public UIViewController {
public:
    /// Takes the screen's result, or no value when the screen closed without one.
    using Callback = std::function<void(std::optional<bool> result)>;

    explicit CommonUIViewController(const std::optional<std::string>& nibName = std::nullopt);
    explicit CommonUIViewController(const NSCoder& coder);

    /// The report to the opener of the screen, set before it is shown; empty at first, and again as soon as
    /// it has been called.
    const Callback& callback() const { return callback_; }
    void setCallback(Callback callback) { callback_ = std::move(callback); }

    /// Whether a dismissal has reported; once true, stays true.
    bool ifDismissed() const { return ifDismissed_; }

    /// Dismisses as the platform does. When that has ended, on the main queue: `completion`, and then, at the
    /// first dismissal only, `callback` with no value. The screen lives at least until then.
    void dismiss(bool animated, Completion completion = {}) override;

    /// The action of a back item in the navigation bar: pops the top screen of the navigation controller,
    /// animated, and calls `callback` with no value. Nothing happens outside a navigation controller.
    void onBackButtonTouched(UIBarButtonItem& item);

protected:
    /// Calls `callback`, when there is one, for the last time.
    void report(std::optional<bool> result);

private:
    Callback callback_;
    bool ifDismissed_ = false;
};

} // namespace sela
