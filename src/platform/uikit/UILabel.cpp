#include "platform/uikit/UILabel.h"

#include "platform/uikit/TextMeasurer.h"

#include <algorithm>

namespace sela {

bool TextContent::isTruncated(CGSize size) const {
    const TextMeasurer& measurer = TextMeasurer::current();
    const double height = measurer.size(text, size.width, 0).height;
    const double shownHeight = measurer.size(text, size.width, maximumLines).height;
    return height > shownHeight || (maximumLines != 1 && height > size.height + 1);
}

UILabel::UILabel(const CGRect& frame) : UILabel(std::string_view()) {
    setFrame(frame);
}

UILabel::UILabel(std::string_view name)
    : UIView(name), font_(UIFont::systemFont(17)), textColor_(UIColor::dynamic({0, 0, 0, 1}, {1, 1, 1, 1})) {
    setUserInteractionEnabled(false);
    setAccessibilityRole(AccessibilityRole::staticText);
}

template<class T>
void UILabel::change(T& value, const T& newValue) {
    if (value == newValue)
        return;
    value = newValue;
    setNeedsDisplay();
    invalidateIntrinsicContentSize();
}

void UILabel::setText(std::string_view text) {
    change(text_, NSAttributedString(text));
}

void UILabel::setAttributedText(const NSAttributedString& text) {
    change(text_, text);
}

void UILabel::setFont(const UIFont& font) {
    change(font_, font);
}

void UILabel::setTextColor(const UIColor& color) {
    if (color == textColor_)
        return;
    textColor_ = color;
    setNeedsDisplay();
}

void UILabel::setTextAlignment(NSTextAlignment alignment) {
    if (alignment == textAlignment_)
        return;
    textAlignment_ = alignment;
    setNeedsDisplay();
}

void UILabel::setNumberOfLines(int lines) {
    change(numberOfLines_, lines);
}

void UILabel::setAdjustsFontSizeToFitWidth(bool adjusts) {
    change(adjustsFontSizeToFitWidth_, adjusts);
}

void UILabel::setMinimumScaleFactor(double factor) {
    change(minimumScaleFactor_, factor);
}

NSAttributedString UILabel::resolvedText(double scale) const {
    NSAttributedString resolved;
    for (const NSAttributedString::Run& run : text_.runs()) {
        const UIFont font = run.attributes.font.value_or(font_);
        resolved.append({run.text,
                         {.foregroundColor = run.attributes.foregroundColor.value_or(textColor_),
                          .font = scale == 1 ? font : font.withSize(font.size() * scale),
                          .givesWay = run.attributes.givesWay}});
    }
    return resolved;
}

NSAttributedString UILabel::displayedText() const {
    NSAttributedString text = resolvedText(1);
    const bool givesWay =
        std::ranges::any_of(text.runs(), [](const auto& run) { return run.attributes.givesWay; });
    if (!adjustsFontSizeToFitWidth_ || numberOfLines_ != 1 || givesWay)
        return text;
    const auto widthOf = [](const NSAttributedString& shown) {
        return TextMeasurer::current().size(shown, TextMeasurer::unlimitedWidth, 1).width;
    };
    const double width = widthOf(text);
    if (width <= bounds().size.width)
        return text;
    // Sizes of fonts are rounded, so that the width does not follow them exactly.
    double scale = bounds().size.width / width;
    while (scale > minimumScaleFactor_ && widthOf(resolvedText(scale)) > bounds().size.width)
        scale *= 0.98;
    return resolvedText(std::max(minimumScaleFactor_, scale));
}

NSTextAlignment UILabel::displayedTextAlignment() const {
    if (textAlignment_ != NSTextAlignment::natural)
        return textAlignment_;
    const bool fromRight =
        effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    return fromRight ? NSTextAlignment::right : NSTextAlignment::left;
}

ViewContent UILabel::content() const {
    return TextContent{displayedText(), font_, numberOfLines_, displayedTextAlignment()};
}

CGSize UILabel::intrinsicContentSize() const {
    return sizeThatFits({TextMeasurer::unlimitedWidth, 0});
}

double UILabel::intrinsicHeight(double width) const {
    return sizeThatFits({std::max(width, 0.0), TextMeasurer::unlimitedWidth}).height;
}

CGSize UILabel::sizeThatFits(CGSize size) const {
    return TextMeasurer::current().size(resolvedText(1), size.width, numberOfLines_);
}

} // namespace sela
