#include "vault/Import.h"

#include "store/ItemsLock.h"
#include "store/SharedFolder.h"
#include "support/DiskWrapper.h"
#include "support/TemporaryHome.h"

#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>

namespace sela {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class ImportTest : public testing::Test {
protected:
    TemporaryHome home;
    const fs::path into = home.path() / "into";

    ImportTest() { home.provision(); }

    /// Records a file for each of these albums and names.
    void record(const std::vector<std::pair<std::string, std::string>>& files) const {
        std::vector<SharedItemLedger::Entry> entries;
        for (const auto& [album, name] : files) {
            const SharedItem item{std::to_string(entries.size()) + ".5.jpg", {album}, false, name};
            home.write("data/sela/groups/group.sela.vault/Items/" + item.fileName, name);
            entries.emplace_back(SharedItemLedger::key(item), item);
        }
        EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, *SharedItemLedger::encode(entries)));
    }

    Import::Report import(bool prune = false) const {
        return Import({.into = URL::fileURL(into.string()), .prune = prune}).run().value();
    }
};

/// Another disk, of another system, that is full for the files of one name.
class ForeignDisk : public DiskWrapper {
    int link(const std::string&, const std::string&) override { return -EXDEV; }
    int mkdir(const std::string& path, mode_t mode) override {
        return path.find(':') == std::string::npos ? DiskWrapper::mkdir(path, mode) : -EINVAL;
    }
    int rename(const std::string& from, const std::string& to, unsigned flags) override {
        if (to.ends_with("full.jpg"))
            return -ENOSPC;
        return to.find_first_of(":?") == std::string::npos ? DiskWrapper::rename(from, to, flags) : -EINVAL;
    }
};

TEST_F(ImportTest, AFileThatTheTargetRefusesKeepsItsEntryAndTheOthersGoOnUnderNamesThatItHolds) {
    record({{"A", "what?.jpg"}, {"B: c", "1.jpg"}, {"A", "full.jpg"}});
    {
        const ForeignDisk disk;
        const Import::Report report = import();
        EXPECT_THAT(report.imported,
                    ElementsAre(EndsWith("vault/B_ c/1.jpg"), EndsWith("vault/A/what_.jpg")));
        EXPECT_THAT(report.left, ElementsAre(EndsWith("full.jpg: No space left on device")));
    }
    EXPECT_EQ(contentOf(into / "vault/A/what_.jpg"), "what?.jpg");
    EXPECT_THAT(import().imported, ElementsAre(EndsWith("vault/A/full.jpg")));
    EXPECT_THAT(import().imported, IsEmpty());
}

TEST_F(ImportTest, FilesOfOneNameAreNumberedAcrossBatches) {
    record(std::vector(600, std::pair<std::string, std::string>("A", "a.jpg")));
    EXPECT_EQ(import().imported.size(), 600u);
    EXPECT_TRUE(fs::exists(into / "vault/A/a (600).jpg"));
    EXPECT_TRUE(fs::is_empty(home.container() / "Items"));
}

TEST_F(ImportTest, OneThatIsStoppedTellsWhatItImportedAndTheNextGoesOn) {
    record(std::vector(600, std::pair<std::string, std::string>("A", "a.jpg")));
    int asked = 0;
    const Import::Report stopped =
        Import({.into = URL::fileURL(into.string()), .isStopped = [&] { return ++asked > 1000; }})
            .run()
            .value();
    EXPECT_GT(stopped.imported.size(), 300u);
    EXPECT_GT(stopped.waiting, 0u);
    EXPECT_EQ(stopped.imported.size() + stopped.waiting, 600u);
    EXPECT_EQ(import().imported.size(), stopped.waiting);
    EXPECT_TRUE(fs::exists(into / "vault/A/a (600).jpg"));
    EXPECT_TRUE(fs::is_empty(home.container() / "Items"));
}

TEST_F(ImportTest, AFileThatCannotBeRemovedFromItemsIsImportedAllTheSame) {
    record({{"A", "a.jpg"}});
    const class : public DiskWrapper {
        int unlink(const std::string& path) override {
            return path.ends_with("/Items/0.5.jpg") ? -EACCES : DiskWrapper::unlink(path);
        }
    } disk;
    const Import::Report report = import();
    EXPECT_THAT(report.imported, ElementsAre(EndsWith("vault/A/a.jpg")));
    EXPECT_THAT(report.left, IsEmpty());
    EXPECT_THAT(report.problems, ElementsAre(EndsWith("cannot be removed: Permission denied")));
}

TEST_F(ImportTest, NothingIsPrunedWhileSomebodyShares) {
    record({{"A", "a.jpg"}});
    const fs::path old = home.write("data/sela/groups/group.sela.vault/Items/old.jpg", "x");
    fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(25));
    {
        const ItemsLock saving = ItemsLock::forSaving(URL::fileURL(old.parent_path().string()));
        const Import::Report report = import(true);
        EXPECT_THAT(report.unrecorded, ElementsAre("old.jpg"));
        EXPECT_THAT(report.left, IsEmpty());
        EXPECT_THAT(report.problems, ElementsAre("no file is pruned: something is being shared"));
    }
    EXPECT_THAT(import(true).pruned, ElementsAre("old.jpg"));
}

} // namespace
} // namespace sela
