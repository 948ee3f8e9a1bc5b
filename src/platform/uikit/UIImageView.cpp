#include "platform/uikit/UIImageView.h"

#include <algorithm>
#include <utility>

namespace sela {

UIImageView::UIImageView(const CGRect& frame) : UIImageView(std::string_view()) {
    setFrame(frame);
}

UIImageView::UIImageView(std::string_view name, std::optional<UIImage> image)
    : UIView(name), image_(std::move(image)) {
    setUserInteractionEnabled(false);
    setAccessibilityRole(AccessibilityRole::image);
    if (image_)
        setFrame({0, 0, image_->width(), image_->height()});
}

void UIImageView::setImage(std::optional<UIImage> image) {
    const CGSize former = intrinsicContentSize();
    image_ = std::move(image);
    setNeedsDisplay();
    if (intrinsicContentSize() != former)
        invalidateIntrinsicContentSize();
}

void UIImageView::setAlwaysDrawsTemplate(bool always) {
    alwaysDrawsTemplate_ = always;
    setNeedsDisplay();
}

ViewContent UIImageView::content() const {
    if (!image_)
        return {};
    const bool isTemplate =
        alwaysDrawsTemplate_ || image_->renderingMode() == UIImage::RenderingMode::alwaysTemplate;
    return ImageContent{*image_, imageRect(), isTemplate, tintColor(), drawsFlipped()};
}

/// Whether the picture is drawn mirrored.
bool UIImageView::drawsFlipped() const {
    return image_ && image_->flipsForRightToLeftLayoutDirection() &&
           effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
}

/// Where the whole picture is drawn, in own coordinates.
CGRect UIImageView::imageRect() const {
    const CGRect bounds = this->bounds();
    if (!image_ || image_->width() <= 0 || image_->height() <= 0)
        return {bounds.center(), {}};
    const double horizontal = bounds.size.width / image_->width();
    const double vertical = bounds.size.height / image_->height();
    CGSize size = bounds.size;
    const auto scaled = [&](double scale) { size = {image_->width() * scale, image_->height() * scale}; };
    switch (contentMode()) {
    case ContentMode::scaleToFill:
        break;
    case ContentMode::scaleAspectFit:
        scaled(std::min(horizontal, vertical));
        break;
    case ContentMode::scaleAspectFill:
        scaled(std::max(horizontal, vertical));
        break;
    case ContentMode::center:
        scaled(1);
        break;
    }
    return {{bounds.midX() - size.width / 2, bounds.midY() - size.height / 2}, size};
}

CGSize UIImageView::intrinsicContentSize() const {
    if (!image_)
        return {noIntrinsicMetric, noIntrinsicMetric};
    return {image_->width(), image_->height()};
}

void UIImageView::tintColorDidChange() {
    setNeedsDisplay();
}

} // namespace sela
