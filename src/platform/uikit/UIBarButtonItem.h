#pragma once

#include "platform/media/UIImage.h"

#include <functional>
#include <optional>

namespace sela {

/// A button of a navigation bar: an image and what a tap does. Main thread only.
class UIBarButtonItem {
public:
    enum class Style { plain };

    /// Calls `action` of `target`, which must outlive the item.
    template<class Target, class Owner>
    UIBarButtonItem(std::optional<UIImage> image, Style style, Target* target,
                    void (Owner::*action)(UIBarButtonItem&))
        : image_(std::move(image)), style_(style),
          action_([target, action](UIBarButtonItem& item) { (target->*action)(item); }) {}

    const std::optional<UIImage>& image() const { return image_; }
    Style style() const { return style_; }

    /// What a tap on it does.
    void performAction() { action_(*this); }

private:
    std::optional<UIImage> image_;
    Style style_;
    std::function<void(UIBarButtonItem&)> action_;
};

} // namespace sela
