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
    explicit UIImageView(std::optional<UIImage> image);

    const std::optional<UIImage>& image() const { return image_; }
    void setImage(std::optional<UIImage> image);

    /// Whether the picture is drawn as a stencil filled with `tintColor`: an image that is a template, or an
    /// owner (a button) that draws every image so.
    bool drawsTemplate() const;
    void setAlwaysDrawsTemplate(bool always);

    /// Whether the picture is drawn mirrored: one that flips, in a view that is read from the right.
    bool drawsFlipped() const;

    /// Where a picture of `image`'s size is drawn, in own coordinates; it may exceed the bounds.
    CGRect imageRect() const;

    /// The image's size; no natural size without one.
    CGSize intrinsicContentSize() const override;

protected:
    void tintColorDidChange() override;

private:
    std::optional<UIImage> image_;
    bool alwaysDrawsTemplate_ = false;
};

} // namespace sela
