#pragma once

#include "platform/extension/NSItemProvider.h"
#include "platform/extension/NSObject.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace sela {

/// One input item of a share request: a group of attachments. Any thread may use it.
class NSExtensionItem : public NSObject {
public:
    using Attachments = std::vector<std::shared_ptr<NSItemProvider>>;

    /// An item without a list of attachments.
    NSExtensionItem() = default;

    explicit NSExtensionItem(Attachments attachments)
        : attachments_(std::make_shared<const Attachments>(std::move(attachments))) {}

    /// The list as it is now, which never changes by itself; null when the item has none.
    std::shared_ptr<const Attachments> attachments() const {
        const std::lock_guard lock(mutex_);
        return attachments_;
    }

    /// Appends `more` to the list, which is created where there is none.
    void append(const Attachments& more);

private:
    mutable std::mutex mutex_;
    std::shared_ptr<const Attachments> attachments_;
};

} // namespace sela
