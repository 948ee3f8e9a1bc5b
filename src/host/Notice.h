#pragma once

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"

#include <functional>
#include <optional>
#include <string>

namespace sela {

/// A panel at the bottom of a window that says what the host has to say, over whatever the extension shows:
/// a text, how far something has come, and a button. It covers no button of a screen, and without one of its
/// own it takes no touches. Main thread only.
class Notice {
public:
    static constexpr double duration = 5; ///< seconds

    struct Content {
        std::string text;

        /// How far something has come, from 0 to 1, drawn as a bar; absent: no bar.
        std::optional<double> progress = std::nullopt;

        /// The title of a button that a tap, Return or Escape presses; empty: no button.
        std::string button = {};
        std::function<void()> action = {};
    };

    /// `window` must outlive this.
    explicit Notice(UIWindow& window);

    /// Shows a text for `duration`, which a screen reader says, too.
    void show(const std::string& text);

    /// Shows something in place of what is shown, until something else is or `hide` is called. A screen
    /// reader says the text when it comes without a progress, which changes too often.
    void keep(const Content& content);

    void hide();

private:
    void layOut();
    double topBeside(const CGRect& bottom) const;
    void buttonTapped(UIButton&);

    UIWindow& window_;
    UIView panel_{"notice"};
    UILabel label_;
    UIView track_;
    UIView bar_;
    UIButton button_{"noticeButton"};
    Content content_;
    int shows_ = 0;
};

} // namespace sela
