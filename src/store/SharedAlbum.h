#pragma once

#include "platform/foundation/JSONRecords.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// One album of the catalogue that the main application publishes. A value.
struct SharedAlbum {
    std::vector<std::string> namePath;        ///< names from the top level down to the album itself
    bool fake = false;                        ///< whether it belongs to the decoy vault
    std::optional<Secret> password;           ///< the album's own password
    std::optional<std::string> thumbNailName; ///< its cover's file name in "AlbumThumbnails"

    bool operator==(const SharedAlbum&) const = default;

    static constexpr auto jsonMembers() {
        return std::array<JSONMember<SharedAlbum>, 4>{{{"namePath", &SharedAlbum::namePath},
                                                       {"fake", &SharedAlbum::fake},
                                                       {"password", &SharedAlbum::password},
                                                       {"thumbNailName", &SharedAlbum::thumbNailName}}};
    }
};

} // namespace sela
