#pragma once

#include "store/SharedAlbum.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace sela {

/// The albums of one vault as the picker shows them: a section for each top-level album, with its child
/// albums below it while it is unfolded. Four lists of the same length, one element for a section. A value
/// without locks; main thread only.
class AlbumTree {
public:
    /// Rebuilds the lists, all folded, from the albums of a catalogue with this `fake`, in their order; an
    /// absent catalogue leaves them empty. A child belongs to the last top-level album of its parent's name.
    /// Not shown: children whose parent is missing, and paths of no name or of three or more.
    void load(std::optional<std::vector<SharedAlbum>> catalogue, bool fake);

    /// Whether the last catalogue loaded was absent.
    bool sharedAlbumManagerAlbumNil() const { return sharedAlbumManagerAlbumNil_; }

    const std::vector<SharedAlbum>& parentAlbums() const { return parentAlbums_; }
    const std::vector<std::vector<SharedAlbum>>& childAlbums() const { return childAlbums_; }

    /// The rows of each section: the parent, followed by its children while it is unfolded.
    const std::vector<std::vector<SharedAlbum>>& showAlbums() const { return showAlbums_; }

    /// Whether each section is unfolded.
    const std::vector<bool>& showChild() const { return showChild_; }

    /// The album of a row; null when there is no such row.
    const SharedAlbum* album(int section, int row) const;

    /// Whether the section exists and has child albums.
    bool hasChildren(int section) const;

    /// Folds or unfolds a section and returns whether it did; one without children is left as it is.
    bool toggleChildren(int section);

    /// Removes the parent's password; its row shows that from the next toggle on. A section that does not
    /// exist is ignored.
    void clearPassword(int section);

private:
    std::vector<SharedAlbum> parentAlbums_;
    std::vector<std::vector<SharedAlbum>> childAlbums_;
    std::vector<std::vector<SharedAlbum>> showAlbums_;
    std::vector<bool> showChild_;
    bool sharedAlbumManagerAlbumNil_ = false;
};

} // namespace sela
