#include "host/FullTextTip.h"

#include <algorithm>
#include <variant>

namespace sela {

namespace {

/// Lengths in points.
constexpr double widest = 400;
constexpr double margin = 16; ///< to the window's edges
constexpr double padding = 10;
constexpr double gap = 6; ///< to the control

/// The first text in `view` that is not wholly shown; empty when there is none.
std::string cutOffText(const UIView& view) {
    if (view.isHidden())
        return {};
    const ViewContent content = view.content();
    if (const auto* const text = std::get_if<TextContent>(&content);
        text && text->isTruncated(view.bounds().size))
        return text->text.string();
    for (const UIView* const subview : view.subviews())
        if (std::string text = cutOffText(*subview); !text.empty())
            return text;
    return {};
}

} // namespace

FullTextTip::FullTextTip(UIWindow& window) : window_(window) {
    panel_.setUserInteractionEnabled(false);
    panel_.setBackgroundColor(UIColor::named("AppText"));
    panel_.layer().setCornerRadius(8);
    label_.setFont(UIFont::systemFont(14));
    label_.setTextColor(UIColor::named("AppCard"));
    label_.setNumberOfLines(0);
    panel_.addSubview(label_);
}

void FullTextTip::show(const UIView* view) {
    const std::string text = view ? cutOffText(*view) : std::string();
    const CGRect place = text.empty() ? CGRect() : window_.shownRect(*view);
    if (text == text_ && place == place_)
        return;
    text_ = text;
    place_ = place;
    panel_.removeFromSuperview();
    if (text.empty())
        return;
    layOut();
    window_.addSubview(panel_);
}

/// Below the control, or above it where there is no room, and inside the window.
void FullTextTip::layOut() {
    label_.setText(text_);
    const CGSize room = window_.bounds().size;
    const CGSize text =
        label_.sizeThatFits({std::min(widest, room.width - 2 * margin) - 2 * padding, room.height});
    const CGSize size{text.width + 2 * padding, text.height + 2 * padding};
    label_.setFrame({{padding, padding}, text});
    const double x =
        std::max(margin, std::min(place_.midX() - size.width / 2, room.width - margin - size.width));
    const double below = place_.maxY() + gap;
    const double y = below + size.height + margin <= room.height ? below : place_.minY() - gap - size.height;
    panel_.setFrame({{x, y}, size});
}

} // namespace sela
