#pragma once

#include "platform/foundation/URL.h"
#include "platform/foundation/UserDefaults.h"

#include <optional>
#include <string_view>

namespace sela {

/// The two places that the programs of the group share. Looked up afresh at each call; any thread.

/// The root of the group's container; absent while the main application has not provisioned the group. Makes
/// and checks nothing inside.
std::optional<URL> sharedFolderUrl();

/// The group's settings; absent when they cannot be opened (the reason is logged).
std::optional<UserDefaults> sharedDefaults(UserDefaults::Patience patience = UserDefaults::longPatience);

/// The same for whoever tells a person the reason.
Result<UserDefaults> openSharedDefaults(UserDefaults::Patience patience = UserDefaults::longPatience);

/// Begins changes to the group's settings that are one step; or why they cannot be changed.
Result<SettingsTransaction> changeSharedDefaults();

/// Folders of the container.
inline constexpr std::string_view itemsFolderName = "Items";
inline constexpr std::string_view albumThumbnailsFolderName = "AlbumThumbnails";

/// Keys of the settings.
inline constexpr std::string_view sharedAlbumsKey = "sharedAlbums";
inline constexpr std::string_view sharedPasswordKey = "sharedPassword";
inline constexpr std::string_view sharedFakePasswordKey = "sharedFakePassword";
inline constexpr std::string_view sharedItemsKey = "sharedItems";

/// Where a ledger that could not be read is kept when a fresh one takes its place: this and the time.
inline constexpr std::string_view unreadableItemsKeyPrefix = "sharedItems.unreadable.";

} // namespace sela
