#pragma once

#include <string_view>

namespace sela {

/// What the main application has published, as far as a share request depends on it.
enum class VaultState {
    absent,          ///< the group was not provisioned
    busy,            ///< another program has the settings locked
    unreadable,      ///< the settings, or the catalogue in them, cannot be read
    withoutAlbums,   ///< there is no catalogue, or nothing in it
    withoutPasscode, ///< there are albums, which nothing opens
    ready,
};

/// What a terminal is told of the two that the user can mend.
inline constexpr std::string_view noVaultText = "there is no vault yet; \"sela-vault init\" makes one";
inline constexpr std::string_view unreadableVaultText =
    "the vault's settings cannot be read; \"sela-vault doctor\" says why";

/// The state now. Waits for a lock as briefly as `SharedAlbumManager`. Main thread.
VaultState vaultState();

} // namespace sela
