#pragma once

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// A panel at the bottom of a window with a message of the host, over whatever the extension shows: a text, a
/// progress bar, and a button. It covers no button of a screen, lies at the top where it would hide a text at
/// the bottom, and takes no touches without a button of its own. Main thread only.
class Notice {
public:
    static constexpr double duration = 5; ///< seconds

    struct Content {
        std::string text;

        /// The progress, from 0 to 1, drawn as a bar; absent: no bar.
        std::optional<double> progress = std::nullopt;

        /// The title of a button that a tap, Return or Escape presses; empty: no button.
        std::string button = {};
        std::function<void()> action = {};
    };

    /// `window` must outlive this. `scale` is that of the screens in it, by which the panel grows.
    Notice(UIWindow& window, double scale);

    /// Shows a text for `duration`; a screen reader says it, too.
    void show(const std::string& text);

    /// Shows something in place of what is shown, until something else is or `hide` is called. A screen
    /// reader says only a text without progress, since progress changes too often.
    void keep(const Content& content);

    void hide();

    /// Finds the panel's place again, for a window that has another size now.
    void layOut();

    /// The height in points of a window in which the panel that is shown hides no text at its bottom,
    /// provided that texts stay in the window's middle.
    double heightBesideTexts() const;

private:
    CGRect place(CGSize size) const;
    CGRect bottomPlace(CGSize size) const;
    std::vector<CGRect> shownRects(AccessibilityRole role) const;
    void buttonTapped(UIButton&);

    UIWindow& window_;
    const double scale_;
    UIView panel_{"notice"};
    UILabel label_;
    UIView track_;
    UIView bar_;
    UIButton button_{"noticeButton"};
    Content content_;
    int shows_ = 0;
};

} // namespace sela
