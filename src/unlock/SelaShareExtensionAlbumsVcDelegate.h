#pragma once

#include <string>
#include <vector>

namespace sela {

/// The screen that opened the album picker and gets its choice. Called on the main thread.
class SelaShareExtensionAlbumsVcDelegate {
public:
    virtual ~SelaShareExtensionAlbumsVcDelegate() = default;

    /// Whether the picker was unlocked with the decoy passcode.
    virtual void setFakePasswordMode(bool fakePasswordMode) = 0;

    /// The chosen album's names from the top level down.
    virtual void setSelectedAlbumName(const std::vector<std::string>& selectedAlbumName) = 0;

    /// Called after a choice: shows the chosen album.
    virtual void updateTitle() = 0;
};

} // namespace sela
