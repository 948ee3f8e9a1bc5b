#pragma once

#include "platform/media/UIImage.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace sela {

/// A button of a navigation bar, in the plain style: an image and what a tap does. Main thread only.
class UIBarButtonItem {
public:
    /// Calls `action` of `target`, which must outlive the item.
    template<class Target, class Owner>
    UIBarButtonItem(std::optional<UIImage> image, Target* target, void (Owner::*action)(UIBarButtonItem&))
        : image_(std::move(image)),
          action_([target, action](UIBarButtonItem& item) { (target->*action)(item); }) {}

    const std::optional<UIImage>& image() const { return image_; }

    /// What a tap on it does.
    void performAction() { action_(*this); }

private:
    std::optional<UIImage> image_;
    std::function<void(UIBarButtonItem&)> action_;
};

/// What a controller puts into its navigation controller's bar. Main thread only.
class UINavigationItem {
public:
    /// Null when there is none.
    UIBarButtonItem* leftBarButtonItem() const { return leftBarButtonItem_.get(); }
    void setLeftBarButtonItem(std::unique_ptr<UIBarButtonItem> item) { leftBarButtonItem_ = std::move(item); }

private:
    std::unique_ptr<UIBarButtonItem> leftBarButtonItem_;
};

} // namespace sela
