#include "store/SharedAlbumManager.h"

#include "store/SharedFolder.h"
#include "support/BitmapFile.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace sela {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SharedAlbumManagerTest : public testing::Test {
protected:
    TemporaryHome home;
    LogCapture log;

    static void publish(std::string_view catalogue) {
        EXPECT_FALSE(sharedDefaults()->setData(sharedAlbumsKey, asData(catalogue)));
    }
};

TEST_F(SharedAlbumManagerTest, NothingPublishedIsNothingAndIsNotLogged) {
    EXPECT_FALSE(SharedAlbumManager::getAlbums());
    EXPECT_FALSE(SharedAlbumManager::sharedPassword());
    EXPECT_FALSE(SharedAlbumManager::sharedFakePassword());
    EXPECT_THAT(log.lines(), IsEmpty());
    publish("[]");
    EXPECT_TRUE(SharedAlbumManager::getAlbums()) << "an empty catalogue is a catalogue, read afresh";
}

TEST_F(SharedAlbumManagerTest, OneBadRecordMakesTheCatalogueUnreadable) {
    publish(R"([{"namePath":["A"],"fake":false},{"namePath":["B"]}])");
    EXPECT_FALSE(SharedAlbumManager::getAlbums());
    EXPECT_THAT(log.lines(),
                ElementsAre(R"(SharedAlbumManager: getAlbums error = JSON: "fake" is missing in record 1)"));
}

TEST_F(SharedAlbumManagerTest, PasscodesAreGivenAsTheyStand) {
    for (const char* const passcode : {"", " 12 ", "123456", "０"}) {
        EXPECT_FALSE(sharedDefaults()->setString(sharedPasswordKey, passcode));
        EXPECT_EQ(SharedAlbumManager::sharedPassword(), passcode);
    }
    EXPECT_FALSE(sharedDefaults()->setData(sharedFakePasswordKey, asData("1234")));
    EXPECT_FALSE(SharedAlbumManager::sharedFakePassword()) << "data are no text";
}

TEST_F(SharedAlbumManagerTest, SettingsThatCannotBeOpenedHoldNothing) {
    home.write("config/sela/group.sela.vault.sqlite3", std::string(2000, 'x'));
    EXPECT_FALSE(SharedAlbumManager::getAlbums());
    EXPECT_FALSE(SharedAlbumManager::sharedPassword());
}

TEST_F(SharedAlbumManagerTest, ACoverIsAFileOfItsFolderOrNothing) {
    EXPECT_FALSE(SharedAlbumManager::thumbnail("c.jpg"));
    home.provision();
    home.write("data/sela/groups/group.sela.vault/AlbumThumbnails/text.jpg", "no picture");
    const std::string picture = bitmapFile(1, 1, ~0U);
    home.write("data/sela/groups/group.sela.vault/outside.jpg", picture);
    home.write("data/sela/groups/group.sela.vault/AlbumThumbnails/cover.jpg", picture);
    const std::optional<UIImage> cover = SharedAlbumManager::thumbnail("cover.jpg");
    ASSERT_TRUE(cover);
    EXPECT_EQ(cover->width(), 1);
    for (const std::optional<std::string>& name : {std::optional<std::string>(),
                                                   {"missing.jpg"},
                                                   {"text.jpg"},
                                                   {"../outside.jpg"},
                                                   {".."},
                                                   {"."},
                                                   {""}})
        EXPECT_FALSE(SharedAlbumManager::thumbnail(name)) << name.value_or("none");
}

} // namespace
} // namespace sela
