#include "vault/Publishing.h"

#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/SharedAlbum.h"
#include "store/SharedFolder.h"
#include "store/StoreConst.h"

#include <set>
#include <string_view>

namespace sela {

namespace {

/// Far above any real catalogue (100,000 albums take about 15 MB) and cover.
constexpr std::int64_t largestCatalogue = 256 << 20;
constexpr std::int64_t largestCover = 64 << 20;

ErrorRef notProvisioned() {
    return ShareExtensionError::make("the group is not provisioned; run \"sela-vault init\" first");
}

std::set<std::string> coverNames(const std::vector<SharedAlbum>& albums) {
    std::set<std::string> names;
    for (const SharedAlbum& album : albums)
        if (album.thumbNailName && isSinglePathComponent(*album.thumbNailName))
            names.insert(*album.thumbNailName);
    return names;
}

ErrorRef copyCovers(const std::set<std::string>& names, const URL& from, const URL& to,
                    std::vector<std::string>& warnings) {
    FileManager& files = FileManager::defaultManager();
    for (const std::string& name : names) {
        const Result<Data> cover =
            files.contentsOfFile(from.appendingPathComponent(name).path(), largestCover);
        if (!cover) {
            warnings.push_back("cover " + name + ": " + cover.error()->localizedDescription());
            continue;
        }
        if (ErrorRef error = files.writeAtomically(cover.value(), to.appendingPathComponent(name)))
            return error;
    }
    return nullptr;
}

ErrorRef removeOtherCovers(const std::set<std::string>& names, const URL& folder) {
    FileManager& files = FileManager::defaultManager();
    const Result<std::vector<std::string>> present = files.contentsOfDirectory(folder.path());
    if (!present)
        return present.error();
    for (const std::string& name : present.value())
        if (!names.contains(name))
            if (ErrorRef error = files.removeItem(folder.appendingPathComponent(name).path()))
                return error;
    return nullptr;
}

ErrorRef store(const Publication& publication, const Data& catalogue) {
    std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return ShareExtensionError::make("UserDefaults is nil");
    return defaults->transaction([&]() -> ErrorRef {
        if (ErrorRef error = defaults->setData(sharedAlbumsKey, catalogue))
            return error;
        if (publication.passcode)
            if (ErrorRef error = defaults->setString(sharedPasswordKey, *publication.passcode))
                return error;
        if (publication.decoyPasscode)
            return defaults->setString(sharedFakePasswordKey, *publication.decoyPasscode);
        return nullptr;
    });
}

} // namespace

ErrorRef provisionGroup() {
    FileManager& files = FileManager::defaultManager();
    const std::optional<URL> container = files.provisioningURL(StoreConst::shared().groupId);
    if (!container)
        return ShareExtensionError::make("there is no place for the group \"" + StoreConst::shared().groupId +
                                         "\"");
    for (const std::string_view folder : {itemsFolderName, albumThumbnailsFolderName})
        if (ErrorRef error = files.createDirectory(container->appendingPathComponent(folder).path()))
            return error;
    return nullptr;
}

ErrorRef publish(const Publication& publication, std::vector<std::string>& warnings) {
    const std::optional<URL> container = sharedFolderUrl();
    if (!container)
        return notProvisioned();
    FileManager& files = FileManager::defaultManager();
    const Result<Data> catalogue = files.contentsOfFile(publication.cataloguePath, largestCatalogue);
    if (!catalogue)
        return catalogue.error();
    const Result<std::vector<SharedAlbum>> albums = decodeJSONArray<SharedAlbum>(catalogue.value());
    if (!albums)
        return albums.error();
    const std::set<std::string> covers = coverNames(albums.value());
    const URL coversFolder = container->appendingPathComponent(albumThumbnailsFolderName);
    if (publication.coversFolder) {
        if (ErrorRef error = files.createDirectory(coversFolder.path()))
            return error;
        const URL source = URL::fileURL(*publication.coversFolder);
        if (ErrorRef error = copyCovers(covers, source, coversFolder, warnings))
            return error;
    }
    if (ErrorRef error = store(publication, catalogue.value()))
        return error;
    return publication.coversFolder ? removeOtherCovers(covers, coversFolder) : nullptr;
}

} // namespace sela
