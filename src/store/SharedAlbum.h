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
    std::optional<std::string> password;      ///< the album's own password
    std::optional<std::string> thumbNailName; ///< its cover's file name in "AlbumThumbnails"

    bool operator==(const SharedAlbum&) const = default;

    static constexpr auto fields() {
        return std::array{jsonField<&SharedAlbum::namePath>("namePath"),
                          jsonField<&SharedAlbum::fake>("fake"),
                          jsonField<&SharedAlbum::password>("password"),
                          jsonField<&SharedAlbum::thumbNailName>("thumbNailName")};
    }
    static std::span<const JSONField> jsonFields() {
        static constexpr auto all = fields();
        return all;
    }
};

} // namespace sela
