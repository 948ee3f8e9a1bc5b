#include "vault/Publishing.h"

#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/SharedAlbum.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "vault/PublicationRules.h"
#include "vault/VaultPlace.h"

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

/// Checks the new values together with the stored ones, and adds to the warnings.
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

/// The names of covers that are valid file names; a warning for each other one.
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

void warnOfMissingCovers(const std::set<std::string>& names, const URL& folder, std::string_view problem,
                         PublicationWarnings& warnings) {
    for (const std::string& name : names)
        if (!FileManager::defaultManager().fileExists(folder.appendingPathComponent(name).path()))
            warnings.push_back("cover " + name + ": " + std::string(problem));
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

ErrorRef store(const Publication& publication, const std::optional<Data>& catalogue) {
    Result<SettingsTransaction> settings = changeSharedDefaults();
    if (!settings)
        return settings.error();
    if (catalogue)
        settings.value().setData(sharedAlbumsKey, *catalogue);
    if (publication.passcode)
        settings.value().setString(sharedPasswordKey, publication.passcode->exposed());
    if (publication.decoyPasscode)
        settings.value().setString(sharedFakePasswordKey, publication.decoyPasscode->exposed());
    return settings.value().commit();
}

/// A catalogue that may be published, as text and decoded.
struct CheckedCatalogue {
    Data text;
    std::vector<SharedAlbum> albums;
};

Result<CheckedCatalogue> readCatalogue(const std::string& path) {
    Result<Data> text = FileManager::defaultManager().contentsOfFile(path, largestCatalogue);
    if (!text)
        return text.error();
    Result<std::vector<SharedAlbum>> albums = decodeJSONArray<SharedAlbum>(text.value());
    if (!albums)
        return ShareExtensionError::make(path + ": " + albums.error()->localizedDescription());
    if (ErrorRef problem = problemWithPasswords(albums.value()))
        return problem;
    return CheckedCatalogue{std::move(text.value()), std::move(albums.value())};
}

/// Copies the covers into the group, or reports those that are missing.
ErrorRef publishCovers(const Publication& publication, const std::set<std::string>& covers, const URL& folder,
                       PublicationWarnings& warnings) {
    if (!publication.coversFolder) {
        warnOfMissingCovers(covers, folder, "not published; give its folder with --covers", warnings);
        return nullptr;
    }
    const URL source = URL::fileURL(*publication.coversFolder);
    if (publication.checkOnly) {
        warnOfMissingCovers(covers, source, "not in the folder of covers", warnings);
        return nullptr;
    }
    if (ErrorRef error = FileManager::defaultManager().createDirectory(folder.path()))
        return error;
    return copyCovers(covers, source, folder, warnings);
}

} // namespace

Result<ProvisionedGroup> provisionGroup() {
    FileManager& files = FileManager::defaultManager();
    const Result<URL> container = vaultPlace();
    if (!container)
        return container.error();
    const bool isNew = !files.fileExists(container.value().path());
    for (const std::string_view folder : {itemsFolderName, albumThumbnailsFolderName})
        if (ErrorRef error = files.createDirectory(container.value().appendingPathComponent(folder).path()))
            return error;
    files.closeToOthers(container.value().path());
    return ProvisionedGroup{container.value().path(), isNew};
}

Result<PublicationWarnings> publish(const Publication& publication) {
    const Result<URL> container = vaultContainer();
    if (!container)
        return container.error();
    const URL coversFolder = container.value().appendingPathComponent(albumThumbnailsFolderName);
    PublicationWarnings warnings;
    std::optional<Data> catalogue;
    std::set<std::string> covers;
    if (ErrorRef problem = checkPasscodes(publication, warnings))
        return problem;
    if (publication.cataloguePath) {
        Result<CheckedCatalogue> checked = readCatalogue(*publication.cataloguePath);
        if (!checked)
            return checked.error();
        append(warnings, warningsOfAlbums(checked.value().albums));
        covers = coverNames(checked.value().albums, warnings);
        catalogue = std::move(checked.value().text);
        if (ErrorRef error = publishCovers(publication, covers, coversFolder, warnings))
            return error;
    }
    if (publication.checkOnly)
        return warnings;
    if (ErrorRef error = store(publication, catalogue))
        return error;
    if (catalogue && publication.coversFolder)
        if (ErrorRef error = removeOtherCovers(covers, coversFolder))
            return error;
    return warnings;
}

ErrorRef clearDecoyPasscode() {
    Result<UserDefaults> defaults = openSharedDefaults();
    return defaults ? defaults.value().removeObject(sharedFakePasswordKey) : defaults.error();
}

} // namespace sela
