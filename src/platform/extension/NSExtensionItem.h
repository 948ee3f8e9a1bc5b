#pragma once

#include "platform/extension/NSItemProvider.h"
#include "platform/extension/NSObject.h"

#include <memory>
#include <optional>
#include <vector>

namespace sela {

/// One input item of a share request: a group of attachments; absent when the item has no such list. Not
/// changed once the request has started, so any thread may read it.
class NSExtensionItem : public NSObject {
public:
    std::optional<std::vector<std::shared_ptr<NSItemProvider>>> attachments;
};

} // namespace sela
