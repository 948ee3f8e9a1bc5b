#pragma once

#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"

#include <functional>
#include <optional>
#include <utility>

namespace sela {

/// A view that shows a title or an image over its whole area and reports taps. It has no pressed and no
/// disabled look. Main thread only.
class AUIButton : public UIView {
public:
    using Callback = std::function<void(AUIButton& button)>;

    explicit AUIButton(std::string_view name = {});

    /// Construction with a frame or from an archive is not supported: both stop the process.
    explicit AUIButton(const CGRect& frame);
    explicit AUIButton(const NSCoder& coder);

    /// Both fill the button and are hidden until its user sets one and shows it.
    UILabel& titleLabel() { return titleLabel_; }
    const UILabel& titleLabel() const { return titleLabel_; }
    UIImageView& imageView() { return imageView_; }
    const UIImageView& imageView() const { return imageView_; }

    /// Called on every tap; empty for nothing.
    const Callback& callback() const { return callback_; }
    void setCallback(Callback callback) { callback_ = std::move(callback); }

    /// The image's tint. Setting a colour applies it to the title's text and to the image; setting none
    /// changes nothing.
    UIColor tintColor() const override;
    void setTintColor(const std::optional<UIColor>& color) override;

private:
    void onTapped(UITapGestureRecognizer& recognizer);

    UILabel titleLabel_{"titleLabel"};
    UIImageView imageView_{"imageView"};
    Callback callback_;
};

} // namespace sela
