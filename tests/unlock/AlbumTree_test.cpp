#include "unlock/AlbumTree.h"

#include "unlock/UnlockTest.h"

#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

namespace sela {
namespace {

using Albums = std::vector<SharedAlbum>;

/// The expected rows of a catalogue, found by searching all of it for each row.
std::vector<Albums> rowsByModel(const Albums& catalogue, bool fake, const std::vector<bool>& unfolded) {
    std::vector<Albums> sections;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const SharedAlbum& parent = catalogue[i];
        const auto isParent = [&](const SharedAlbum& other) {
            return other.fake == fake && other.namePath == parent.namePath;
        };
        if (parent.fake != fake || parent.namePath.size() != 1)
            continue;
        const bool isLast =
            std::none_of(catalogue.begin() + static_cast<std::ptrdiff_t>(i) + 1, catalogue.end(), isParent);
        const bool open = unfolded[sections.size()];
        sections.push_back({parent});
        for (const SharedAlbum& child : catalogue)
            if (open && isLast && child.fake == fake && child.namePath.size() == 2 &&
                child.namePath[0] == parent.namePath[0])
                sections.back().push_back(child);
    }
    return sections;
}

RC_GTEST_PROP(AlbumTreeProperties, ShowsWhatAPlainSearchOfTheCatalogueFinds, ()) {
    const auto name = rc::gen::element<std::string>("A", "B", "C", "");
    Albums catalogue = *rc::gen::container<Albums>(rc::gen::build<SharedAlbum>(
        rc::gen::set(&SharedAlbum::namePath,
                     rc::gen::mapcat(rc::gen::element(0, 1, 1, 1, 2, 2, 2, 3),
                                     [=](int depth) {
                                         return rc::gen::container<std::vector<std::string>>(
                                             static_cast<std::size_t>(depth), name);
                                     })),
        rc::gen::set(&SharedAlbum::fake)));
    for (std::size_t i = 0; i < catalogue.size(); ++i)
        catalogue[i].thumbNailName = std::to_string(i);
    const bool fake = *rc::gen::arbitrary<bool>();

    AlbumTree tree;
    tree.load(catalogue, fake);
    std::vector<bool> unfolded(catalogue.size());
    RC_ASSERT(tree.showAlbums() == rowsByModel(catalogue, fake, unfolded));
    for (const int section : *rc::gen::container<std::vector<int>>(rc::gen::inRange(-1, 12))) {
        const bool known = section >= 0 && static_cast<std::size_t>(section) < tree.parentAlbums().size();
        const auto place = static_cast<std::size_t>(section);
        const bool toggled = tree.toggleChildren(section);
        RC_ASSERT(toggled == (known && !tree.childAlbums()[place].empty()));
        RC_ASSERT(!known == !tree.album(section, 0));
        RC_ASSERT(!tree.album(section, -1) && !tree.album(section, 1000));
        if (!known)
            tree.clearPassword(section);
        if (toggled)
            unfolded[place].flip();
        RC_ASSERT(tree.showAlbums() == rowsByModel(catalogue, fake, unfolded));
    }
    RC_ASSERT(tree.showChild().size() == tree.parentAlbums().size());
}

} // namespace
} // namespace sela
