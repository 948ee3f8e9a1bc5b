#pragma once

#include "platform/media/UIImage.h"
#include "platform/uikit/UIView.h"

#include <optional>

namespace sela {

/// A view that shows a picture, fitted into its bounds by `contentMode`. Takes no touches unless told to.
/// Main thread only.
class UIImageView : public UIView {
public:
    explicit UIImageView(const CGRect& frame = {});

    /// As large as the image, when there is one.
    explicit UIImageView(std::string_view name, std::optional<UIImage> image = std::nullopt);

    const std::optional<UIImage>& image() const { return image_; }
    void setImage(std::optional<UIImage> image);

    /// Whether every picture, not only one that is a template, is drawn as a stencil filled with `tintColor`,
    /// as a button's is.
    void setAlwaysDrawsTemplate(bool always);

    /// The picture, fitted into the bounds; one that flips is drawn mirrored in a right-to-left view.
    ViewContent content() const override;

    /// The image's size; no natural size without one.
    CGSize intrinsicContentSize() const override;

protected:
    void tintColorDidChange() override;

private:
    CGRect imageRect() const;
    bool drawsFlipped() const;

    std::optional<UIImage> image_;
    bool alwaysDrawsTemplate_ = false;
};

} // namespace sela
