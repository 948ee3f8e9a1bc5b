#include "ui/SelaShareExtensionAlbumCell.h"
#include "unlock/SelaSharedAlbumPassCheck.h"
#include "unlock/UnlockTest.h"

#include <gmock/gmock.h>

#include <numbers>

namespace sela {
namespace {

using testing::ElementsAre;

/// A picker that shows its albums: A with the children x and y, L locked with the child z, and C.
class AlbumTableTest : public UnlockTest {
protected:
    AlbumTableTest() {
        publishPasscode("");
        publishAlbums({album({"A"}), album({"A", "x"}), album({"L"}, false, "2468"),
                       album({"L", "z"}, false, "1"), album({"A", "y"}), album({"C"})});
        openPicker();
    }

    SelaShareExtensionAlbumCell& cell(int section, int row) {
        update();
        UITableViewCell* const found = table().cellForRow({.row = row, .section = section});
        if (!found)
            throw std::runtime_error("the row is out of view");
        return dynamic_cast<SelaShareExtensionAlbumCell&>(*found);
    }

    std::vector<std::string> titles() {
        std::vector<std::string> texts;
        for (const IndexPath& row : table().indexPathsForVisibleRows())
            texts.push_back(cell(row.section, row.row).titleLabel().text());
        return texts;
    }

    bool isUnfolded(int section) {
        const CGAffineTransform& turn = cell(section, 0).showChildButton().imageView().transform();
        EXPECT_TRUE(turn.isIdentity() || turn == CGAffineTransform::rotation(std::numbers::pi));
        return !turn.isIdentity();
    }

    void toggle(int section) {
        EXPECT_TRUE(tap(cell(section, 0).showChildButton()));
        settle();
    }
};

TEST_F(AlbumTableTest, GoingBackFromTheCheckLeavesTheAlbumLocked) {
    const std::function<void()> waysBack[] = {
        [&] { tap("backButton"); }, [&] { top().navigationItem().leftBarButtonItem()->performAction(); },
        [&] { navigation_->popViewController(true); }};
    for (const auto& goBack : waysBack) {
        toggle(1);
        type("246");
        goBack();
        settle();
        EXPECT_EQ(&top(), picker_.get());
        EXPECT_THAT(titles(), ElementsAre("A", "L", "C"));
        EXPECT_FALSE(cell(1, 0).lockIcon().isHidden());
    }
}

TEST_F(AlbumTableTest, ACheckThatOutlivesItsPickerChangesNothing) {
    toggle(1);
    const auto check = std::static_pointer_cast<SelaSharedAlbumPassCheck>(top().shared_from_this());
    const CommonUIViewController::Callback report = check->callback();
    const std::weak_ptr<SelaShareExtensionAlbumsVc> gone = picker_;
    picker_.reset();
    navigation_->popViewController(false);
    navigation_->popViewController(false);
    settle();
    ASSERT_TRUE(gone.expired());
    report(true);
}

TEST_F(AlbumTableTest, RowsThatAreNotThereAreBlankAndCannotBeChosen) {
    for (const IndexPath& indexPath :
         {IndexPath{.row = 0, .section = 3}, IndexPath{.row = 1, .section = 2}}) {
        auto& blank = static_cast<SelaShareExtensionAlbumCell&>(picker_->cellForRow(table(), indexPath));
        EXPECT_FALSE(blank.thumbnailView().image());
        EXPECT_EQ(blank.titleLabel().text(), "");
        picker_->didSelectRow(table(), indexPath);
    }
    EXPECT_TRUE(opener_->titles.empty());
    EXPECT_EQ(&top(), picker_.get());
}

TEST_F(AlbumTableTest, ACellThatServesAgainShowsNothingOfItsFormerRow) {
    std::vector<SharedAlbum> albums;
    for (int i = 0; i < 40; ++i) {
        albums.push_back(album({std::to_string(i)}, false, i % 3 == 0 ? std::optional("1") : std::nullopt));
        if (i % 2 == 0)
            albums.push_back(album({std::to_string(i), "child"}));
    }
    publishAlbums(albums);
    openPicker();
    toggle(2);
    for (const double offset : {0.0, 300.0, 1000.0, 700.0, 55.0, 0.0}) {
        table().setContentOffset({0, offset});
        for (const IndexPath& row : table().indexPathsForVisibleRows()) {
            SelaShareExtensionAlbumCell& shown = cell(row.section, row.row);
            const SharedAlbum& expected = *picker_->albums().album(row.section, row.row);
            EXPECT_EQ(shown.titleLabel().text(), expected.namePath.back());
            EXPECT_EQ(shown.lockIcon().isHidden(), !expected.password);
            EXPECT_EQ(shown.showChildButton().isHidden(), row.row > 0 || row.section % 2 == 1);
            EXPECT_EQ(shown.thumbnailView().frame().minX(), row.row == 0 ? 30 : 48);
            EXPECT_EQ(shown.titleLabel().frame().maxX(),
                      table().bounds().size.width - (shown.showChildButton().isHidden() ? 0 : 55));
            if (row.row == 0) {
                EXPECT_EQ(isUnfolded(row.section), row.section == 2);
            }
        }
    }
    EXPECT_LE(table().cellCount(), table().indexPathsForVisibleRows().size() + 2);
}

} // namespace
} // namespace sela
