#include "unlock/AlbumTree.h"

#include <string>
#include <unordered_map>
#include <utility>

namespace sela {

namespace {

/// The element at an index; null when that is out of range.
template<class List>
auto* elementAt(List& list, int index) {
    const auto place = static_cast<std::size_t>(index);
    return index >= 0 && place < list.size() ? &list[place] : nullptr;
}

} // namespace

void AlbumTree::load(std::optional<std::vector<SharedAlbum>> catalogue, bool fake) {
    sharedAlbumManagerAlbumNil_ = !catalogue;
    parentAlbums_.clear();
    childAlbums_.clear();
    showAlbums_.clear();
    showChild_.clear();
    if (!catalogue)
        return;
    std::erase_if(*catalogue, [&](const SharedAlbum& album) { return album.fake != fake; });

    std::unordered_map<std::string, std::size_t> sections;
    for (SharedAlbum& album : *catalogue) {
        if (album.namePath.size() != 1)
            continue;
        sections[album.namePath.front()] = parentAlbums_.size();
        showAlbums_.push_back({album});
        parentAlbums_.push_back(std::move(album));
    }
    childAlbums_.resize(parentAlbums_.size());
    showChild_.resize(parentAlbums_.size());
    for (SharedAlbum& album : *catalogue) {
        if (album.namePath.size() != 2)
            continue;
        if (const auto parent = sections.find(album.namePath.front()); parent != sections.end())
            childAlbums_[parent->second].push_back(std::move(album));
    }
}

const SharedAlbum* AlbumTree::album(int section, int row) const {
    const auto* const rows = elementAt(showAlbums_, section);
    return rows ? elementAt(*rows, row) : nullptr;
}

bool AlbumTree::hasChildren(int section) const {
    const auto* const children = elementAt(childAlbums_, section);
    return children && !children->empty();
}

bool AlbumTree::toggleChildren(int section) {
    if (!hasChildren(section))
        return false;
    const auto place = static_cast<std::size_t>(section);
    showChild_[place].flip();
    std::vector<SharedAlbum>& rows = showAlbums_[place];
    rows.assign(1, parentAlbums_[place]);
    if (showChild_[place])
        rows.insert(rows.end(), childAlbums_[place].begin(), childAlbums_[place].end());
    return true;
}

void AlbumTree::clearPassword(int section) {
    if (SharedAlbum* const parent = elementAt(parentAlbums_, section))
        parent->password.reset();
}

} // namespace sela
