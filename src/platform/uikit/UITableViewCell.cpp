#include "platform/uikit/UITableViewCell.h"

namespace sela {

namespace {

constexpr double separatorHeight = 0.5;
constexpr double separatorInset = 15;

} // namespace

UITableViewCell::UITableViewCell(Style, const std::optional<std::string>& reuseIdentifier)
    : UIView({0, 0, 320, 44}), reuseIdentifier_(reuseIdentifier) {
    build();
}

UITableViewCell::UITableViewCell(const NSCoder& coder) : UIView(coder) {
    build();
}

void UITableViewCell::build() {
    setAccessibilityRole(AccessibilityRole::listItem);
    selectionShade_.setBackgroundColor(UIColor::dynamic({0, 0, 0, 0.1}, {1, 1, 1, 0.12}));
    selectionShade_.setUserInteractionEnabled(false);
    selectionShade_.setHidden(true);
    separator_.setBackgroundColor(UIColor::dynamic({0.78, 0.78, 0.8, 1}, {0.28, 0.28, 0.3, 1}));
    separator_.setUserInteractionEnabled(false);
    separator_.setHidden(true);
    addSubview(contentView_);
    addSubview(selectionShade_);
    addSubview(separator_);
}

void UITableViewCell::setSelectionStyle(SelectionStyle style) {
    selectionStyle_ = style;
    updateShade();
}

void UITableViewCell::setShowsSeparator(bool shows) {
    separator_.setHidden(!shows);
}

void UITableViewCell::setSelected(bool selected, bool) {
    selected_ = selected;
    updateShade();
}

void UITableViewCell::setHighlighted(bool highlighted, bool) {
    highlighted_ = highlighted;
    updateShade();
}

void UITableViewCell::prepareForReuse() {
    setSelected(false, false);
    setHighlighted(false, false);
}

void UITableViewCell::updateShade() {
    selectionShade_.setHidden(selectionStyle_ == SelectionStyle::none || !(selected_ || highlighted_));
}

void UITableViewCell::layoutSubviews() {
    const CGRect bounds = this->bounds();
    contentView_.setLayoutFrame(bounds);
    selectionShade_.setLayoutFrame(bounds);
    const bool fromRight =
        effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    separator_.setLayoutFrame({fromRight ? 0 : separatorInset, bounds.maxY() - separatorHeight,
                               bounds.size.width - separatorInset, separatorHeight});
}

} // namespace sela
