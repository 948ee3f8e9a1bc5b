#pragma once

#include "platform/foundation/URL.h"
#include "platform/foundation/UserDefaults.h"

#include <optional>
#include <string_view>

namespace sela {

/// The two places that the programs of the group share. Looked up at each call; any thread.

/// The root of the group's container; absent while the main application has not provisioned the group.
/// Neither creates nor checks anything inside.
std::optional<URL> sharedFolderUrl();

/// The group's settings; absent when they cannot be opened (the reason is logged).
std::optional<UserDefaults> sharedDefaults(UserDefaults::Patience patience = UserDefaults::longPatience);

/// The same for callers that report the reason to the user.
Result<UserDefaults> openSharedDefaults(UserDefaults::Patience patience = UserDefaults::longPatience);

/// Begins a transaction on the group's settings; the error when that fails.
Result<SettingsTransaction> changeSharedDefaults();

/// Folders of the container.
inline constexpr std::string_view itemsFolderName = "Items";
inline constexpr std::string_view albumThumbnailsFolderName = "AlbumThumbnails";

/// Keys of the settings.
inline constexpr std::string_view sharedAlbumsKey = "sharedAlbums";
inline constexpr std::string_view sharedPasswordKey = "sharedPassword";
inline constexpr std::string_view sharedFakePasswordKey = "sharedFakePassword";
inline constexpr std::string_view sharedItemsKey = "sharedItems";

/// The key under which an unreadable ledger is kept when a new one replaces it: this prefix and the time.
inline constexpr std::string_view unreadableItemsKeyPrefix = "sharedItems.unreadable.";

} // namespace sela
