#pragma once

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"

#include <optional>
#include <string>

namespace sela {

/// A button of the system type: an image, then (in the reading direction) a title, in the tint colour; while
/// pressed both fade. The image keeps its size where there is too little room for it. Title and image are
/// shown by its two subviews. Main thread only.
class UIButton : public UIControl {
public:
    enum class ContentHorizontalAlignment { center, left, right, leading, trailing };

    explicit UIButton(const CGRect& frame = {});
    explicit UIButton(std::string_view name);

    /// The plain title, empty for none; an attributed title, when set, is shown instead.
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);
    const std::optional<NSAttributedString>& attributedTitle() const { return attributedTitle_; }
    void setAttributedTitle(std::optional<NSAttributedString> title);

    /// The colour of the plain title; none: the tint colour.
    void setTitleColor(const std::optional<UIColor>& color);

    /// The system font of 15 points at first.
    void setTitleFont(const UIFont& font);

    /// Drawn in the tint colour.
    void setImage(std::optional<UIImage> image);

    /// The label of the title (its font is chosen here; the system font of 15 points at first) and the view
    /// of the image.
    UILabel& titleLabel() { return titleLabel_; }
    const UILabel& titleLabel() const { return titleLabel_; }
    UIImageView& imageView() { return imageView_; }
    const UIImageView& imageView() const { return imageView_; }

    /// Room between the bounds and the content.
    const UIEdgeInsets& contentEdgeInsets() const { return contentEdgeInsets_; }
    void setContentEdgeInsets(const UIEdgeInsets& insets);

    ContentHorizontalAlignment contentHorizontalAlignment() const { return contentHorizontalAlignment_; }
    void setContentHorizontalAlignment(ContentHorizontalAlignment alignment);

    /// Image and title side by side, with the insets.
    CGSize intrinsicContentSize() const override;

    /// The title and the image.
    std::vector<const UIView*> contentViews() const override { return {&titleLabel_, &imageView_}; }
    void layoutSubviews() override;

protected:
    void stateChanged() override;
    void tintColorDidChange() override;

private:
    void titleChanged();
    void contentChanged();
    CGSize imageSize() const;

    UILabel titleLabel_;
    UIImageView imageView_;
    std::string title_;
    std::optional<NSAttributedString> attributedTitle_;
    std::optional<UIColor> titleColor_;
    UIEdgeInsets contentEdgeInsets_;
    ContentHorizontalAlignment contentHorizontalAlignment_ = ContentHorizontalAlignment::center;
};

} // namespace sela
