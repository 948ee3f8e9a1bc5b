#include "platform/uikit/UIButton.h"

#include <algorithm>
#include <utility>

namespace sela {

namespace {

/// What is left of the content while the button is pressed, or disabled.
constexpr double pressedAlpha = 0.2;
constexpr double disabledAlpha = 0.35;

} // namespace

UIButton::UIButton(const CGRect& frame) : UIButton(std::string_view()) {
    setFrame(frame);
}

UIButton::UIButton(std::string_view name) : UIControl(name) {
    setAccessibilityRole(AccessibilityRole::button);
    titleLabel_.setFont(UIFont::systemFont(15));
    titleLabel_.setTextColor(tintColor());
    titleLabel_.setAccessibilityRole(AccessibilityRole::none);
    imageView_.setAccessibilityRole(AccessibilityRole::none);
    imageView_.setAlwaysDrawsTemplate(true);
    imageView_.setContentMode(ContentMode::scaleAspectFit);
    addSubview(imageView_);
    addSubview(titleLabel_);
}

void UIButton::setTitle(const std::string& title) {
    title_ = title;
    titleChanged();
}

void UIButton::setAttributedTitle(std::optional<NSAttributedString> title) {
    attributedTitle_ = std::move(title);
    titleChanged();
}

void UIButton::titleChanged() {
    if (attributedTitle_)
        titleLabel_.setAttributedText(*attributedTitle_);
    else
        titleLabel_.setText(title_);
    contentChanged();
}

void UIButton::setTitleColor(const std::optional<UIColor>& color) {
    titleColor_ = color;
    titleLabel_.setTextColor(titleColor_.value_or(tintColor()));
}

void UIButton::setTitleFont(const UIFont& font) {
    titleLabel_.setFont(font);
    contentChanged();
}

void UIButton::setImage(std::optional<UIImage> image) {
    imageView_.setImage(std::move(image));
    contentChanged();
}

void UIButton::setContentEdgeInsets(const UIEdgeInsets& insets) {
    contentEdgeInsets_ = insets;
    contentChanged();
}

void UIButton::setContentHorizontalAlignment(ContentHorizontalAlignment alignment) {
    contentHorizontalAlignment_ = alignment;
    setNeedsLayout();
}

void UIButton::contentChanged() {
    setNeedsLayout();
    invalidateIntrinsicContentSize();
}

CGSize UIButton::imageSize() const {
    const std::optional<UIImage>& image = imageView_.image();
    return image ? CGSize{image->width(), image->height()} : CGSize{};
}

CGSize UIButton::intrinsicContentSize() const {
    const CGSize title = titleLabel_.intrinsicContentSize();
    const CGSize image = imageSize();
    return {image.width + title.width + contentEdgeInsets_.left + contentEdgeInsets_.right,
            std::max(image.height, title.height) + contentEdgeInsets_.top + contentEdgeInsets_.bottom};
}

void UIButton::layoutSubviews() {
    const CGRect room = inset(bounds(), contentEdgeInsets_);
    const CGSize image = imageSize();
    const CGSize naturalTitle = titleLabel_.intrinsicContentSize();
    const CGSize title{std::clamp(room.size.width - image.width, 0.0, naturalTitle.width),
                       std::min(naturalTitle.height, room.size.height)};
    const bool fromRight =
        effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    const ContentHorizontalAlignment last =
        fromRight ? ContentHorizontalAlignment::leading : ContentHorizontalAlignment::trailing;
    double x = room.minX();
    const double spare = room.size.width - image.width - title.width;
    if (contentHorizontalAlignment_ == ContentHorizontalAlignment::center)
        x += spare / 2;
    else if (contentHorizontalAlignment_ == ContentHorizontalAlignment::right ||
             contentHorizontalAlignment_ == last)
        x += spare;
    const double imageX = fromRight ? x + title.width : x;
    const double titleX = fromRight ? x : x + image.width;
    imageView_.setLayoutFrame({{imageX, room.midY() - image.height / 2}, image});
    titleLabel_.setLayoutFrame({{titleX, room.midY() - title.height / 2}, title});
}

void UIButton::stateChanged() {
    const double alpha = !isEnabled() ? disabledAlpha : isHighlighted() ? pressedAlpha : 1;
    titleLabel_.setAlpha(alpha);
    imageView_.setAlpha(alpha);
}

void UIButton::tintColorDidChange() {
    if (!titleColor_)
        titleLabel_.setTextColor(tintColor());
}

} // namespace sela
