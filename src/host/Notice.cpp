#include "host/Notice.h"

#include "host/ScreenElements.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIAccessibility.h"

#include <algorithm>

namespace sela {

namespace {

/// Lengths in points on a screen of scale 1.
constexpr double fontSize = 15;
constexpr double widest = 400;
constexpr double margin = 16;
constexpr double padding = 12;
constexpr double gap = 10;
constexpr double barHeight = 4;
constexpr double buttonHeight = 40;
constexpr double cornerRadius = 10;

bool meetsAny(const CGRect& panel, const std::vector<CGRect>& rects) {
    return std::ranges::any_of(rects,
                               [&](const CGRect& rect) { return !panel.intersection(rect).isEmpty(); });
}

} // namespace

Notice::Notice(UIWindow& window, double scale) : window_(window), scale_(scale) {
    panel_.setBackgroundColor(UIColor::named("AppText"));
    panel_.layer().setCornerRadius(cornerRadius * scale);
    label_.setFont(UIFont::systemFont(fontSize * scale));
    label_.setTextColor(UIColor::named("AppCard"));
    label_.setTextAlignment(NSTextAlignment::center);
    label_.setNumberOfLines(0);
    track_.setBackgroundColor(UIColor::named("AppTextSecond"));
    bar_.setBackgroundColor(UIColor::named("AppTint"));
    for (UIView* const part : {&track_, &bar_})
        part->layer().setCornerRadius(barHeight * scale / 2);
    button_.setTitleColor(UIColor::named("AppCard"));
    button_.layer().setBorderWidth(1);
    button_.layer().setBorderColor(UIColor::named("AppTextSecond"));
    button_.setTitleFont(UIFont::systemFont(fontSize * scale));
    button_.layer().setCornerRadius(buttonHeight * scale / 2);
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
    const double inset = padding * scale_;
    const double room = std::min(widest * scale_, screen.width - 2 * margin * scale_) - 2 * inset;
    const CGSize text = label_.sizeThatFits({room, screen.height});
    const bool isOnlyText = !content_.progress && content_.button.empty();
    const double width = isOnlyText ? text.width : room;
    double y = inset;
    label_.setFrame({inset, y, width, text.height});
    y += text.height;
    track_.setHidden(!content_.progress);
    if (content_.progress) {
        const double height = barHeight * scale_;
        y += gap * scale_;
        track_.setFrame({inset, y, width, height});
        bar_.setFrame({0, 0, width * std::clamp(*content_.progress, 0.0, 1.0), height});
        y += height;
    }
    button_.setHidden(content_.button.empty());
    if (!content_.button.empty()) {
        y += gap * scale_;
        button_.setFrame({inset, y, width, buttonHeight * scale_});
        y += buttonHeight * scale_;
    }
    panel_.setFrame(place({width + 2 * inset, y + inset}));
}

/// Where a panel of this size lies: at the bottom, or above the buttons that it would cover there; but at the
/// top where it would hide a text there, and nothing at the top.
CGRect Notice::place(CGSize size) const {
    const std::vector<CGRect> texts = shownRects(AccessibilityRole::staticText);
    const std::vector<CGRect> buttons = shownRects(AccessibilityRole::button);
    const CGRect bottom = bottomPlace(size);
    const CGRect top{{bottom.origin.x, margin * scale_}, size};
    return meetsAny(bottom, texts) && !meetsAny(top, texts) && !meetsAny(top, buttons) ? top : bottom;
}

CGRect Notice::bottomPlace(CGSize size) const {
    const CGSize screen = window_.bounds().size;
    CGRect bottom{{(screen.width - size.width) / 2, screen.height - margin * scale_ - size.height}, size};
    // From the lowest up; each may lift the panel onto the next.
    std::vector<CGRect> buttons = shownRects(AccessibilityRole::button);
    std::ranges::reverse(buttons);
    for (const CGRect& button : buttons)
        if (meetsAny(bottom, {button}))
            bottom.origin.y = button.minY() - gap * scale_ - size.height;
    bottom.origin.y = std::max(bottom.origin.y, 0.0);
    return bottom;
}

double Notice::heightBesideTexts() const {
    const CGRect bottom = bottomPlace(panel_.bounds().size);
    double hidden = 0;
    for (const CGRect& text : shownRects(AccessibilityRole::staticText))
        if (meetsAny(bottom, {text}))
            hidden = std::max(hidden, text.maxY() + gap * scale_ - bottom.minY());
    // What is in the middle moves down by half of what the window grows.
    return window_.bounds().size.height + 2 * hidden;
}

/// The frames of what the screens show in this role, in reading order.
std::vector<CGRect> Notice::shownRects(AccessibilityRole role) const {
    std::vector<CGRect> rects;
    for (const UIView* const element : ScreenElements::inside(window_, window_))
        if (element->accessibilityRole() == role && !element->isDescendant(panel_))
            rects.push_back(window_.shownRect(*element));
    return rects;
}

void Notice::buttonTapped(UIButton&) {
    if (const std::function<void()> action = content_.action)
        action();
}

} // namespace sela
