#include "unlock/AlbumCovers.h"

#include "support/BitmapFile.h"
#include "ui/SelaShareExtensionAlbumCell.h"
#include "unlock/UnlockTest.h"

namespace sela {
namespace {

class AlbumCoversTest : public UnlockTest {
protected:
    void publishCover(const std::string& fileName, int width) {
        home_.provision();
        home_.write("data/sela/groups/group.sela.vault/AlbumThumbnails/" + fileName,
                    bitmapFile(width, 10, ~0U));
    }

    static SharedAlbum covered(const std::string& name, const std::string& fileName, bool locked = false) {
        return {{name}, false, locked ? std::optional(Secret("1")) : std::nullopt, fileName};
    }

    /// An asset's name, the width of a decoded cover, or "none".
    std::string thumbnail(int section) {
        auto* const cell = table().cellForRow({.row = 0, .section = section});
        const auto& image = static_cast<SelaShareExtensionAlbumCell&>(*cell).thumbnailView().image();
        if (!image)
            return "none";
        return image->pixels() ? std::to_string(image->pixels()->width) : image->assetName();
    }
};

TEST_F(AlbumCoversTest, ARowShowsItsAlbumsCoverUnlessThatIsLockedOrMissing) {
    publishCover("a.jpg", 20);
    publishCover("b.jpg", 30);
    publishAlbums({covered("A", "a.jpg"), covered("Locked", "a.jpg", true), covered("B", "b.jpg"),
                   covered("Missing", "c.jpg"), covered("Outside", "../a.jpg"), album({"Bare"})});
    publishPasscode("");
    openPicker();
    int section = 0;
    for (const char* const shown : {"20", "EmptyFolder", "30", "EmptyFolder", "EmptyFolder", "EmptyFolder"})
        EXPECT_EQ(thumbnail(section++), shown);
}

TEST_F(AlbumCoversTest, NoFrameWaitsForACoverAndAKnownOneIsThereAtOnce) {
    publishCover("a.jpg", 20);
    publishAlbums({covered("A", "a.jpg")});
    publishPasscode("1");
    openPicker();
    EXPECT_EQ(table().cellCount(), 0U) << "there are no rows behind the keypad";
    picker_->onKeyTouched(button("button1"));
    window_.prepareFrame();
    EXPECT_EQ(thumbnail(0), "none");
    update();
    EXPECT_EQ(thumbnail(0), "20");
    table().reloadData();
    window_.prepareFrame();
    EXPECT_EQ(thumbnail(0), "20");
}

TEST_F(AlbumCoversTest, CoversComeForTheRowsInViewWhereverTheTableStands) {
    std::vector<SharedAlbum> albums;
    for (int i = 0; i < 30; ++i) {
        const std::string name = std::to_string(i);
        publishCover(name, i + 1);
        albums.push_back(covered(name, name));
    }
    publishAlbums(albums);
    publishPasscode("");
    openPicker();
    for (const int first : {0, 20, 10}) {
        table().setContentOffset({0, first * 55.0});
        window_.prepareFrame();
        update();
        for (const IndexPath& row : table().indexPathsForVisibleRows())
            EXPECT_EQ(thumbnail(row.section), std::to_string(row.section + 1));
    }
}

TEST_F(AlbumCoversTest, KeepsTheCoversAskedForLast) {
    const auto covers = std::make_shared<AlbumCovers>();
    const auto load = [&](const std::string& fileName) {
        bool arrived = false;
        covers->load(fileName, [&] { arrived = true; });
        EXPECT_TRUE(covers->isLoading());
        loop_.runPending();
        EXPECT_TRUE(arrived);
        EXPECT_FALSE(covers->isLoading());
    };
    for (std::size_t i = 0; i < AlbumCovers::capacity; ++i)
        load(std::to_string(i));
    ASSERT_TRUE(covers->cover("0"));
    EXPECT_FALSE(covers->cover("0")->image);
    load("one more");
    EXPECT_TRUE(covers->cover("0"));
    EXPECT_FALSE(covers->cover("1"));
    EXPECT_TRUE(covers->cover("one more"));
}

TEST_F(AlbumCoversTest, WhoHasGoneHearsNothing) {
    auto covers = std::make_shared<AlbumCovers>();
    covers->load("a.jpg", [] { ADD_FAILURE() << "called for nobody"; });
    covers.reset();
    loop_.runPending();

    publishAlbums({covered("A", "a.jpg")});
    publishPasscode("");
    openPicker();
    picker_->cellForRow(table(), {.row = 0, .section = 0});
    navigation_->popViewController(false);
    picker_.reset();
    loop_.runPending();
}

} // namespace
} // namespace sela
