#pragma once

#include "platform/foundation/Error.h"
#include "store/SharedAlbum.h"
#include "store/SharedItemLedger.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// The published catalogue, read and changed album by album. One thread.
class Catalogue {
public:
    /// The identity of an album: its path, and the vault that it belongs to.
    struct Name {
        std::vector<std::string> path;
        bool fake = false;

        bool operator==(const Name&) const = default;
    };

    /// The catalogue as it is published now; empty before anything is. The error when the settings cannot be
    /// read or the value is no catalogue.
    static Result<Catalogue> published();

    /// Changes the published catalogue in one transaction, which excludes other programs; nothing changes
    /// when `edit` or storing fails.
    static ErrorRef change(const std::function<ErrorRef(Catalogue&)>& edit);

    const std::vector<SharedAlbum>& albums() const { return albums_; }

    /// How many files wait in the ledger for this album, or for one below it.
    std::size_t waiting(const Name& name) const;

    /// How many files wait for no album of the catalogue: for the default album, or for one that is gone.
    std::size_t waitingElsewhere() const;

    /// Null when there is no such album.
    SharedAlbum* find(const Name& name);

    /// Adds an album after the others of its level. The error when it exists already, has no parent,
    /// or must not have its name (`PublicationRules.h`).
    ErrorRef add(SharedAlbum album);

    /// Renames an album and updates the paths of the albums below it. The error when there is no such album,
    /// already one of the new name, or when it must not have that.
    ErrorRef rename(const Name& name, const std::string& newName);

    /// Removes an album and those below it. The error when there is no such album.
    ErrorRef remove(const Name& name);

private:
    static Result<Catalogue> decode(const Result<std::optional<Data>>& albums,
                                    const Result<std::optional<Data>>& ledger);

    std::vector<SharedAlbum> albums_;
    std::vector<SharedItemLedger::Entry> ledger_;
};

/// The error for an album that the catalogue does not have.
ErrorRef noSuchAlbum(const Catalogue::Name& name);

} // namespace sela
