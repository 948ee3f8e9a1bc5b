#include "host/FullTextTip.h"

#include <algorithm>
#include <variant>

namespace sela {

namespace {

/// Lengths in points on a screen of scale 1.
constexpr double tipFontSize = 14;
constexpr double tipRadius = 8;
constexpr double tipWidest = 400;
constexpr double tipMargin = 16; ///< to the window's edges
constexpr double tipPadding = 10;
constexpr double tipGap = 6; ///< to the control

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

FullTextTip::FullTextTip(UIWindow& window, double scale) : window_(window), scale_(scale) {
    panel_.setUserInteractionEnabled(false);
    panel_.setBackgroundColor(UIColor::named("AppText"));
    panel_.layer().setCornerRadius(tipRadius * scale);
    label_.setFont(UIFont::systemFont(tipFontSize * scale));
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
    const double inset = tipPadding * scale_;
    const double edge = tipMargin * scale_;
    const CGSize text =
        label_.sizeThatFits({std::min(tipWidest * scale_, room.width - 2 * edge) - 2 * inset, room.height});
    const CGSize size{text.width + 2 * inset, text.height + 2 * inset};
    label_.setFrame({{inset, inset}, text});
    const double x = std::max(edge, std::min(place_.midX() - size.width / 2, room.width - edge - size.width));
    const double below = place_.maxY() + tipGap * scale_;
    const bool fitsBelow = below + size.height + edge <= room.height;
    panel_.setFrame({{x, fitsBelow ? below : place_.minY() - tipGap * scale_ - size.height}, size});
}

} // namespace sela
