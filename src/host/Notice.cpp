#include "host/Notice.h"

#include "host/ScreenElements.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIAccessibility.h"

#include <algorithm>

namespace sela {

namespace {

/// Lengths in points.
constexpr double widest = 400;
constexpr double margin = 16;
constexpr double padding = 12;
constexpr double gap = 10;
constexpr double barHeight = 4;
constexpr double buttonHeight = 40;

} // namespace

Notice::Notice(UIWindow& window) : window_(window) {
    panel_.setBackgroundColor(UIColor::named("AppText"));
    panel_.layer().setCornerRadius(10);
    label_.setFont(UIFont::systemFont(15));
    label_.setTextColor(UIColor::named("AppCard"));
    label_.setTextAlignment(NSTextAlignment::center);
    label_.setNumberOfLines(0);
    track_.setBackgroundColor(UIColor::named("AppTextSecond"));
    bar_.setBackgroundColor(UIColor::named("AppTint"));
    for (UIView* const part : {&track_, &bar_})
        part->layer().setCornerRadius(barHeight / 2);
    button_.setTitleColor(UIColor::named("AppCard"));
    button_.layer().setBorderWidth(1);
    button_.layer().setBorderColor(UIColor::named("AppTextSecond"));
    button_.layer().setCornerRadius(buttonHeight / 2);
    button_.addTarget(this, &Notice::buttonTapped, UIControl::Event::touchUpInside);
    button_.addKeyCommand(UIKeyCommand::inputReturn);
    button_.addKeyCommand(UIKeyCommand::inputEscape);
    panel_.addSubview(label_);
    track_.addSubview(bar_);
    panel_.addSubview(track_);
    panel_.addSubview(button_);
}

void Notice::show(const std::string& text) {
    keep({.text = text});
    DispatchQueue::main().asyncAfter(duration, [this, alive = ViewReference(panel_), show = shows_] {
        if (alive && show == shows_)
            hide();
    });
}

void Notice::keep(const Content& content) {
    ++shows_;
    content_ = content;
    label_.setText(content.text);
    button_.setTitle(content.button);
    layOut();
    if (panel_.superview() != &window_ || window_.subviews().back() != &panel_)
        window_.addSubview(panel_);
    if (!content.progress)
        UIAccessibility::postAnnouncement(content.text);
}

void Notice::hide() {
    ++shows_;
    content_ = {};
    panel_.removeFromSuperview();
}

/// Text, bar and button below each other, each over the whole width.
void Notice::layOut() {
    panel_.setUserInteractionEnabled(!content_.button.empty());
    const CGSize screen = window_.bounds().size;
    const double room = std::min(widest, screen.width - 2 * margin) - 2 * padding;
    const CGSize text = label_.sizeThatFits({room, screen.height});
    const bool isOnlyText = !content_.progress && content_.button.empty();
    const double width = isOnlyText ? text.width : room;
    double y = padding;
    label_.setFrame({padding, y, width, text.height});
    y += text.height;
    track_.setHidden(!content_.progress);
    if (content_.progress) {
        y += gap;
        track_.setFrame({padding, y, width, barHeight});
        bar_.setFrame({0, 0, width * std::clamp(*content_.progress, 0.0, 1.0), barHeight});
        y += barHeight;
    }
    button_.setHidden(content_.button.empty());
    if (!content_.button.empty()) {
        y += gap;
        button_.setFrame({padding, y, width, buttonHeight});
        y += buttonHeight;
    }
    const double height = y + padding;
    const CGRect bottom{(screen.width - width) / 2 - padding, screen.height - margin - height,
                        width + 2 * padding, height};
    panel_.setFrame({bottom.origin.x, topBeside(bottom), bottom.size.width, bottom.size.height});
}

/// The top of the panel: that of `bottom`, moved up where the panel would cover buttons.
double Notice::topBeside(const CGRect& bottom) const {
    double top = bottom.minY();
    for (const UIView* const element : ScreenElements::inside(window_, window_)) {
        const CGRect rect = window_.shownRect(*element);
        const bool isCovered = element->accessibilityRole() == AccessibilityRole::button &&
                               !element->isDescendant(panel_) && rect.maxY() > bottom.minY() &&
                               rect.minX() < bottom.maxX() && rect.maxX() > bottom.minX();
        if (isCovered)
            top = std::min(top, rect.minY() - gap - bottom.size.height);
    }
    return std::max(top, 0.0);
}

void Notice::buttonTapped(UIButton&) {
    if (const std::function<void()> action = content_.action)
        action();
}

} // namespace sela
