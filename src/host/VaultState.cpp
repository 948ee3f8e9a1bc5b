#include "host/VaultState.h"

#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"

namespace sela {

namespace {

VaultState stateOf(const ErrorRef& error) {
    return isBusy(error) ? VaultState::busy : VaultState::unreadable;
}

/// The state in which something is absent that cannot be read while the vault is busy, either.
VaultState unlessBusy(VaultState state) {
    return SharedAlbumManager::isBusy(UserDefaults::Patience::zero()) ? VaultState::busy : state;
}

} // namespace

VaultState vaultState() {
    if (!sharedFolderUrl())
        return VaultState::absent;
    const Result<UserDefaults> settings = openSharedDefaults(UserDefaults::Patience::zero());
    if (!settings)
        return stateOf(settings.error());
    const Result<std::optional<Data>> published = settings.value().readData(sharedAlbumsKey);
    if (!published)
        return stateOf(published.error());
    if (!published.value())
        return VaultState::withoutAlbums;
    const std::optional<std::vector<SharedAlbum>> albums = SharedAlbumManager::getAlbums();
    if (!albums)
        return unlessBusy(VaultState::unreadable);
    if (albums->empty())
        return VaultState::withoutAlbums;
    return SharedAlbumManager::sharedPassword() ? VaultState::ready : unlessBusy(VaultState::withoutPasscode);
}

} // namespace sela
