#include "vault/Catalogue.h"

#include "store/AlbumPath.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "vault/PublicationRules.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sela {

namespace {

Catalogue::Name nameOf(const SharedAlbum& album) {
    return {album.namePath, album.fake};
}

bool isAtOrBelow(const std::vector<std::string>& path, const std::vector<std::string>& above) {
    return path.size() >= above.size() && std::equal(above.begin(), above.end(), path.begin());
}

std::string encoded(const std::vector<SharedAlbum>& albums) {
    JSONWriter writer;
    writer.beginArray();
    for (const SharedAlbum& album : albums)
        writeJSONRecord(writer, album);
    writer.endArray();
    return writer.text();
}

} // namespace

ErrorRef noSuchAlbum(const Catalogue::Name& name) {
    return ShareExtensionError::make("there is no album " + albumPathText(name.path) +
                                     (name.fake ? " in the decoy vault" : ""));
}

Result<Catalogue> Catalogue::decode(const Result<std::optional<Data>>& albums,
                                    const Result<std::optional<Data>>& ledger) {
    if (!albums)
        return albums.error();
    if (!ledger)
        return ledger.error();
    Catalogue catalogue;
    if (albums.value()) {
        Result<std::vector<SharedAlbum>> decoded = decodeJSONArray<SharedAlbum>(*albums.value());
        if (!decoded)
            return ShareExtensionError::make(
                "the published catalogue: " + decoded.error()->localizedDescription() +
                "; \"sela-vault publish\" puts another in its place");
        catalogue.albums_ = std::move(decoded.value());
    }
    if (ledger.value()) {
        Result<std::vector<SharedItemLedger::Entry>> decoded = SharedItemLedger::decode(*ledger.value());
        if (!decoded)
            return ShareExtensionError::make("the ledger: " + decoded.error()->localizedDescription());
        catalogue.ledger_ = std::move(decoded.value());
    }
    return catalogue;
}

Result<Catalogue> Catalogue::published() {
    const Result<UserDefaults> defaults = openSharedDefaults();
    if (!defaults)
        return defaults.error();
    return decode(defaults.value().readData(sharedAlbumsKey), defaults.value().readData(sharedItemsKey));
}

ErrorRef Catalogue::change(const std::function<ErrorRef(Catalogue&)>& edit) {
    Result<SettingsTransaction> settings = changeSharedDefaults();
    if (!settings)
        return settings.error();
    Result<Catalogue> catalogue =
        decode(settings.value().readData(sharedAlbumsKey), settings.value().readData(sharedItemsKey));
    if (!catalogue)
        return catalogue.error();
    if (ErrorRef error = edit(catalogue.value()))
        return error;
    settings.value().setData(sharedAlbumsKey, asData(encoded(catalogue.value().albums())));
    return settings.value().commit();
}

std::size_t Catalogue::waiting(const Name& name) const {
    return static_cast<std::size_t>(std::ranges::count_if(ledger_, [&](const SharedItemLedger::Entry& entry) {
        return entry.second.fake == name.fake && isAtOrBelow(entry.second.albumNames, name.path);
    }));
}

std::size_t Catalogue::waitingElsewhere() const {
    return static_cast<std::size_t>(std::ranges::count_if(ledger_, [&](const SharedItemLedger::Entry& entry) {
        return std::ranges::none_of(albums_, [&item = entry.second](const SharedAlbum& album) {
            return album.fake == item.fake && isAtOrBelow(item.albumNames, album.namePath);
        });
    }));
}

SharedAlbum* Catalogue::find(const Name& name) {
    const auto found = std::ranges::find(albums_, name, nameOf);
    return found == albums_.end() ? nullptr : &*found;
}

ErrorRef Catalogue::add(SharedAlbum album) {
    if (find(nameOf(album)))
        return ShareExtensionError::make("there is an album " + albumPathText(album.namePath) + " already");
    if (ErrorRef problem = problemWithName(album.namePath.back()))
        return problem;
    Name parent = nameOf(album);
    parent.path.pop_back();
    if (!parent.path.empty() && !find(parent))
        return noSuchAlbum(parent);
    albums_.push_back(std::move(album));
    return nullptr;
}

ErrorRef Catalogue::rename(const Name& name, const std::string& newName) {
    Name renamed = name;
    renamed.path.back() = newName;
    if (!find(name))
        return noSuchAlbum(name);
    if (find(renamed))
        return ShareExtensionError::make("there is an album " + albumPathText(renamed.path) + " already");
    if (ErrorRef problem = problemWithName(newName))
        return problem;
    for (SharedAlbum& album : albums_)
        if (album.fake == name.fake && isAtOrBelow(album.namePath, name.path))
            album.namePath[name.path.size() - 1] = newName;
    return nullptr;
}

ErrorRef Catalogue::remove(const Name& name) {
    const std::size_t removed = std::erase_if(albums_, [&](const SharedAlbum& album) {
        return album.fake == name.fake && isAtOrBelow(album.namePath, name.path);
    });
    return removed == 0 ? noSuchAlbum(name) : nullptr;
}

} // namespace sela
