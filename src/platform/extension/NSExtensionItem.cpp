#include "platform/extension/NSExtensionItem.h"

namespace sela {

void NSExtensionItem::append(const Attachments& more) {
    const std::lock_guard lock(mutex_);
    Attachments all = attachments_ ? *attachments_ : Attachments();
    all.insert(all.end(), more.begin(), more.end());
    attachments_ = std::make_shared<const Attachments>(std::move(all));
}

} // namespace sela
