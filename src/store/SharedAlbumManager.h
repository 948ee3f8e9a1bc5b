#pragma once

#include "platform/foundation/UserDefaults.h"
#include "platform/media/UIImage.h"
#include "store/SharedAlbum.h"

#include <optional>
#include <string>
#include <vector>

namespace sela {

/// Reads what the main application publishes. Without state: every call reads the shared store again, so that
/// it sees all changes. Any thread; since it is mostly the main one, a call waits a tenth of a second only
/// for a lock on the settings.
class SharedAlbumManager {
public:
    /// Whether another program keeps the settings locked for longer than this, so that nothing published can
    /// be read now, though it may exist.
    static bool isBusy(UserDefaults::Patience patience);

    /// The catalogue, normal and decoy albums mixed, in the main application's order. Absent when nothing is
    /// published or the settings cannot be opened, or when it cannot be decoded (which is logged); an empty
    /// catalogue is an empty list.
    static std::optional<std::vector<SharedAlbum>> getAlbums();

    /// The vault passcode as it is stored; absent when there is none.
    static std::optional<Secret> sharedPassword();

    /// The decoy passcode as it is stored; absent when there is none.
    static std::optional<Secret> sharedFakePassword();

    /// The cover of that file name in "AlbumThumbnails"; absent without a name or a container, when the name
    /// is no single path component, and when there is no such picture. Blocks while the picture is decoded.
    static std::optional<UIImage> thumbnail(const std::optional<std::string>& fileName);
};

} // namespace sela
