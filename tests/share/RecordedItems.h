#pragma once

#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"

#include <vector>

namespace sela {

/// The records of the group's ledger in their order; none when there is no ledger or it cannot be decoded.
inline std::vector<SharedItem> recordedItems() {
    std::vector<SharedItem> items;
    if (const std::optional<Data> data = sharedDefaults()->data(sharedItemsKey)) {
        const auto entries = SharedItemLedger::decode(*data);
        if (entries)
            for (const auto& [key, item] : entries.value())
                items.push_back(item);
    }
    return items;
}

} // namespace sela
