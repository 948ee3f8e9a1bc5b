#pragma once

#include "platform/uikit/UIBarButtonItem.h"

#include <memory>
#include <utility>

namespace sela {

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
