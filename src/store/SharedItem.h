#pragma once

#include "platform/foundation/JSONRecords.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// One record of the ledger: a file that was copied into "Items" and waits for the main application. A value.
struct SharedItem {
    std::string fileName;                     ///< the file's name inside "Items", unique per item
    std::vector<std::string> albumNames;      ///< path of the target album from the top level down
    bool fake = false;                        ///< whether the item belongs to the decoy vault
    std::optional<std::string> preferredName; ///< the source file's own name, to be shown in the vault

    bool operator==(const SharedItem&) const = default;

    static constexpr auto jsonMembers() {
        return std::array<JSONMember<SharedItem>, 4>{{{"fileName", &SharedItem::fileName},
                                                      {"albumNames", &SharedItem::albumNames},
                                                      {"fake", &SharedItem::fake},
                                                      {"preferredName", &SharedItem::preferredName}}};
    }
};

} // namespace sela
