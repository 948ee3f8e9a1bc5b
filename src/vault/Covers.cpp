#include "vault/Covers.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/TimeText.h"
#include "platform/media/UIImage.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "vault/Catalogue.h"
#include "vault/VaultPlace.h"

#include <optional>
#include <set>

namespace sela {

namespace {

/// Enough for every screen: the picker draws covers at 160 pixels.
constexpr int coverSide = 512;
constexpr double coverQuality = 0.9;
constexpr double secondsToBePublished = 3600;

std::optional<URL> coversFolder() {
    const std::optional<URL> container = sharedFolderUrl();
    return container ? std::optional(container->appendingPathComponent(albumThumbnailsFolderName))
                     : std::nullopt;
}

} // namespace

Result<std::string> storeCover(const std::string& path) {
    const Result<URL> container = vaultContainer();
    if (!container)
        return container.error();
    const URL folder = container.value().appendingPathComponent(albumThumbnailsFolderName);
    FileManager& files = FileManager::defaultManager();
    if (const Result<FileManager::RegularFile> file = files.openRegularFile(path); !file)
        return file.error();
    const std::optional<EncodedImage> jpeg =
        UIImage::jpegDataOfFile(path, PictureBounds::filling(coverSide), coverQuality);
    if (!jpeg)
        return ShareExtensionError::make(path + " is no picture that can be shown");
    std::string name = uniqueTimeText() + ".jpg";
    if (ErrorRef error = files.createDirectory(folder.path()))
        return error;
    if (ErrorRef error = files.writeAtomically(jpeg->bytes(), folder.appendingPathComponent(name)))
        return error;
    return name;
}

Result<std::vector<std::string>> unusedCovers() {
    const std::optional<URL> folder = coversFolder();
    FileManager& files = FileManager::defaultManager();
    if (!folder || !files.fileExists(folder->path()))
        return std::vector<std::string>();
    // The files are listed first, so that a cover that is published in between counts as published.
    Result<std::vector<std::string>> names = files.contentsOfDirectory(folder->path());
    if (!names)
        return names;
    const Result<Catalogue> catalogue = Catalogue::published();
    if (!catalogue)
        return catalogue.error();
    std::set<std::string_view> used;
    for (const SharedAlbum& album : catalogue.value().albums())
        if (album.thumbNailName)
            used.insert(*album.thumbNailName);
    std::erase_if(names.value(), [&](const std::string& name) {
        const Result<FileAttributes> attributes =
            files.attributesOfEntry(folder->appendingPathComponent(name).path());
        return used.contains(name) || !attributes ||
               secondsSince1970() - attributes.value().modificationDate < secondsToBePublished;
    });
    return names;
}

Result<std::vector<std::string>> removeUnusedCovers() {
    Result<std::vector<std::string>> names = unusedCovers();
    if (names)
        for (const std::string& name : names.value())
            if (ErrorRef error = FileManager::defaultManager().removeItem(
                    coversFolder()->appendingPathComponent(name).path()))
                return error;
    return names;
}

} // namespace sela
