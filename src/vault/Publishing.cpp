#include "vault/Publishing.h"

#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/SharedAlbum.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "store/StoreConst.h"
#include "vault/PublicationRules.h"

#include <iterator>
#include <set>
#include <string_view>

namespace sela {

namespace {

/// Far above any real catalogue (100,000 albums take about 15 MB) and cover.
constexpr std::int64_t largestCatalogue = 256 << 20;
constexpr std::int64_t largestCover = 64 << 20;

void append(PublicationWarnings& lines, std::vector<std::string> more) {
    lines.insert(lines.end(), std::move_iterator(more.begin()), std::move_iterator(more.end()));
}

ErrorRef notProvisioned() {
    return ShareExtensionError::make("the group is not provisioned; run \"sela-vault init\" first");
}

/// Checks what is published together with what stays, and adds to the warnings.
ErrorRef checkPasscodes(const Publication& publication, PublicationWarnings& warnings) {
    if (!publication.passcode && !publication.decoyPasscode)
        return nullptr;
    const auto vault = publication.passcode ? publication.passcode : SharedAlbumManager::sharedPassword();
    const auto decoy =
        publication.decoyPasscode ? publication.decoyPasscode : SharedAlbumManager::sharedFakePassword();
    if (ErrorRef problem = problemWithPasscodes(vault, decoy))
        return problem;
    if (vault)
        append(warnings, warningsOfPasscodes(*vault, decoy));
    return nullptr;
}

/// The names of covers that can be files' names; a warning for each other one.
std::set<std::string> coverNames(const std::vector<SharedAlbum>& albums, PublicationWarnings& warnings) {
    std::set<std::string> names;
    for (const SharedAlbum& album : albums) {
        if (!album.thumbNailName)
            continue;
        if (isSinglePathComponent(*album.thumbNailName))
            names.insert(*album.thumbNailName);
        else
            warnings.push_back("cover " + *album.thumbNailName + ": no name of a file in the covers' folder");
    }
    return names;
}

void warnOfMissingCovers(const std::set<std::string>& names, const URL& folder,
                         PublicationWarnings& warnings) {
    for (const std::string& name : names)
        if (!FileManager::defaultManager().fileExists(folder.appendingPathComponent(name).path()))
            warnings.push_back("cover " + name + ": not published; give its folder with --covers");
}

ErrorRef copyCovers(const std::set<std::string>& names, const URL& from, const URL& to,
                    PublicationWarnings& warnings) {
    FileManager& files = FileManager::defaultManager();
    for (const std::string& name : names) {
        const Result<Data> cover =
            files.contentsOfFile(from.appendingPathComponent(name).path(), largestCover);
        if (!cover) {
            warnings.push_back(cover.error()->localizedDescription() + "; this cover is not published");
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
    Result<SettingsTransaction> settings = SettingsTransaction::begin(std::move(*defaults));
    if (!settings)
        return settings.error();
    settings.value().setData(sharedAlbumsKey, catalogue);
    if (publication.passcode)
        settings.value().setString(sharedPasswordKey, publication.passcode->exposed());
    if (publication.decoyPasscode)
        settings.value().setString(sharedFakePasswordKey, publication.decoyPasscode->exposed());
    return settings.value().commit();
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

Result<PublicationWarnings> publish(const Publication& publication) {
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
    PublicationWarnings warnings;
    if (ErrorRef problem = problemWithPasswords(albums.value()))
        return problem;
    if (ErrorRef problem = checkPasscodes(publication, warnings))
        return problem;
    append(warnings, warningsOfAlbums(albums.value()));
    const std::set<std::string> covers = coverNames(albums.value(), warnings);
    const URL coversFolder = container->appendingPathComponent(albumThumbnailsFolderName);
    if (publication.coversFolder) {
        if (ErrorRef error = files.createDirectory(coversFolder.path()))
            return error;
        const URL source = URL::fileURL(*publication.coversFolder);
        if (ErrorRef error = copyCovers(covers, source, coversFolder, warnings))
            return error;
    } else {
        warnOfMissingCovers(covers, coversFolder, warnings);
    }
    if (ErrorRef error = store(publication, catalogue.value()))
        return error;
    if (publication.coversFolder)
        if (ErrorRef error = removeOtherCovers(covers, coversFolder))
            return error;
    return warnings;
}

} // namespace sela
