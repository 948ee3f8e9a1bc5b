#include "host/VaultState.h"

#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"

namespace sela {

VaultState vaultState() {
    if (!sharedFolderUrl())
        return VaultState::absent;
    if (SharedAlbumManager::isBusy(UserDefaults::Patience::zero()))
        return VaultState::busy;
    const Result<UserDefaults> settings = openSharedDefaults();
    if (!settings)
        return VaultState::unreadable;
    const Result<std::optional<Data>> published = settings.value().readData(sharedAlbumsKey);
    if (!published)
        return VaultState::unreadable;
    if (!published.value())
        return VaultState::withoutAlbums;
    const std::optional<std::vector<SharedAlbum>> albums = SharedAlbumManager::getAlbums();
    if (!albums)
        return VaultState::unreadable;
    if (albums->empty())
        return VaultState::withoutAlbums;
    return SharedAlbumManager::sharedPassword() ? VaultState::ready : VaultState::withoutPasscode;
}

} // namespace sela
