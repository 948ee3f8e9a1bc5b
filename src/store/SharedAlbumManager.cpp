#include "store/SharedAlbumManager.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "store/SharedFolder.h"
#include "store/StoreConst.h"

namespace sela {

namespace {

/// Covers are shown 40 points wide; four pixels a point is more than any screen has today.
constexpr int coverSidePixels = 160;

std::optional<Secret> sharedSecret(std::string_view key) {
    const std::optional<UserDefaults> defaults = sharedDefaults(UserDefaults::shortPatience);
    return defaults ? defaults->string(key) : std::nullopt;
}

} // namespace

bool SharedAlbumManager::isBusy(UserDefaults::Patience patience) {
    return UserDefaults::areBusy(StoreConst::shared().groupId, patience);
}

std::optional<std::vector<SharedAlbum>> SharedAlbumManager::getAlbums() {
    const std::optional<UserDefaults> defaults = sharedDefaults(UserDefaults::shortPatience);
    if (!defaults)
        return std::nullopt;
    const std::optional<Data> catalogue = defaults->data(sharedAlbumsKey);
    if (!catalogue)
        return std::nullopt;
    Result<std::vector<SharedAlbum>> albums = decodeJSONArray<SharedAlbum>(*catalogue);
    if (!albums) {
        NSLog("SharedAlbumManager: getAlbums error = " + albums.error()->localizedDescription());
        return std::nullopt;
    }
    return std::move(albums.value());
}

std::optional<Secret> SharedAlbumManager::sharedPassword() {
    return sharedSecret(sharedPasswordKey);
}

std::optional<Secret> SharedAlbumManager::sharedFakePassword() {
    return sharedSecret(sharedFakePasswordKey);
}

std::optional<UIImage> SharedAlbumManager::thumbnail(const std::optional<std::string>& fileName) {
    const std::optional<URL> folder = sharedFolderUrl();
    if (!folder || !fileName || !isSinglePathComponent(*fileName))
        return std::nullopt;
    const URL file =
        folder->appendingPathComponent(albumThumbnailsFolderName).appendingPathComponent(*fileName);
    return UIImage::contentsOfFile(file.path(), PictureBounds::filling(coverSidePixels));
}

} // namespace sela
