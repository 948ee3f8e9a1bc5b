#include "vault/Import.h"

#include "store/SharedFolder.h"
#include "support/FileManagerWrapper.h"
#include "support/TemporaryHome.h"
#include "vault/ContentComparison.h"
#include "vault/ImportPlace.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>

namespace sela {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST(ImportPlace, NamesAreSafeAndKeepTheirExtension) {
    const std::string longName(300, 'n');
    const std::pair<std::string, std::string> cases[] = {
        {"a.jpg", "a.jpg"},
        {"", "_"},
        {".", "_."},
        {"..", "_.."},
        {".hidden", "_.hidden"},
        {"a/b", "a_b"},
        {"../../etc", "_.._.._etc"},
        {"a\nb\x1B", "a_b_"},
        {"本 é", "本 é"},
        {"a\u202Egpj.mp4", "a_gpj.mp4"},
        {"שלום\u200F.jpg", "שלום\u200F.jpg"},
        {"\xFF", "\xEF\xBF\xBD"},
        {longName + ".jpg", std::string(251, 'n') + ".jpg"},
        {"." + longName, "_." + std::string(253, 'n')},
        {"本." + std::string(253, 'n'), "本." + std::string(251, 'n')},
        {"é" + longName, "é" + std::string(253, 'n')},
    };
    for (const auto& [text, name] : cases) {
        EXPECT_EQ(safeFileName(text), name);
        EXPECT_LE(safeFileName(text).size(), 255u);
    }
}

TEST(ImportPlace, FurtherAttemptsAreNumberedBeforeTheExtension) {
    const SharedItem item{"1.5a.jpg", {"A"}, false, "a.jpg"};
    EXPECT_EQ(importName(item, 1), "a.jpg");
    EXPECT_EQ(importName(item, 2), "a (2).jpg");
    EXPECT_EQ(importName({"1.5.jpg", {}, false, std::nullopt}, 3), "1.5 (3).jpg");
    EXPECT_EQ(importName({"x", {}, false, std::string(255, 'n')}, 12), std::string(250, 'n') + " (12)");
}

class ImportTest : public testing::Test {
protected:
    TemporaryHome home;
    const URL into = URL::fileURL((home.path() / "into").string());

    void SetUp() override { home.provision(); }

    fs::path items() const { return home.container() / "Items"; }

    SharedItem record(const std::string& fileName, const std::string& preferredName,
                      const std::vector<std::string>& albums = {"Trips", "Rome"}, bool fake = false) const {
        home.write("data/sela/groups/group.sela.vault/Items/" + fileName, "content of " + fileName);
        const SharedItem item{fileName, albums, fake, preferredName};
        const std::string key = SharedItemLedger::key(item);
        const std::optional<Data> old = sharedDefaults()->data(sharedItemsKey);
        EXPECT_FALSE(sharedDefaults()->setData(
            sharedItemsKey, *SharedItemLedger::adding(old ? *old : toData("{}"), key, item)));
        return item;
    }

    static std::vector<SharedItemLedger::Entry> ledger() {
        const std::optional<Data> data = sharedDefaults()->data(sharedItemsKey);
        return data ? SharedItemLedger::decode(*data).value() : std::vector<SharedItemLedger::Entry>();
    }

    Import::Report import(bool keep = false, bool prune = false) const {
        const Result<Import::Report> report = Import({into, keep, prune}).run();
        EXPECT_TRUE(report) << (report ? "" : report.error()->localizedDescription());
        return report ? report.value() : Import::Report();
    }

    /// Every file below the import's folder, as "path: content".
    std::vector<std::string> placed() const {
        std::vector<std::string> found;
        if (fs::exists(into.path()))
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(into.path()))
                if (entry.is_regular_file())
                    found.push_back(fs::relative(entry.path(), into.path()).string() + ": " +
                                    contentOf(entry.path()));
        std::ranges::sort(found);
        return found;
    }
};

TEST_F(ImportTest, FilesComeIntoTheirAlbumsAndLeaveTheGroup) {
    record("1.5a.jpg", "a.jpg");
    record("2.5b.mov", "b.mov", {"Default Album"}, true);
    EXPECT_THAT(import().imported, SizeIs(2));
    EXPECT_THAT(placed(), ElementsAre("decoy/Default Album/b.mov: content of 2.5b.mov",
                                      "vault/Trips/Rome/a.jpg: content of 1.5a.jpg"));
    EXPECT_THAT(ledger(), IsEmpty());
    EXPECT_TRUE(fs::is_empty(items()));
    EXPECT_THAT(import().imported, IsEmpty());
}

TEST_F(ImportTest, NothingIsEverOverwritten) {
    home.write("into/vault/Trips/Rome/a.jpg", "older");
    fs::create_symlink("nowhere", home.path() / "into/vault/Trips/Rome/a (2).jpg");
    record("1.5a.jpg", "a.jpg");
    record("2.5a.jpg", "a.jpg");
    import();
    EXPECT_THAT(placed(), ElementsAre("vault/Trips/Rome/a (3).jpg: content of 1.5a.jpg",
                                      "vault/Trips/Rome/a (4).jpg: content of 2.5a.jpg",
                                      "vault/Trips/Rome/a.jpg: older"));
}

TEST_F(ImportTest, KeepingCopiesAndLeavesEverything) {
    record("1.5a.jpg", "a.jpg");
    import(true);
    EXPECT_THAT(placed(), ElementsAre("vault/Trips/Rome/a.jpg: content of 1.5a.jpg"));
    EXPECT_THAT(ledger(), SizeIs(1));
    EXPECT_FALSE(hasSameContent(into, into).value()) << "folders are no files";
    home.write("into/vault/Trips/Rome/a.jpg", "changed by the user");
    EXPECT_EQ(contentOf(items() / "1.5a.jpg"), "content of 1.5a.jpg") << "the copy was the same file";
}

TEST_F(ImportTest, ALedgerOfSomebodyElseLeadsNowhere) {
    home.write("secret", "secret");
    fs::create_directories(items());
    fs::create_symlink(home.path() / "secret", items() / "link.jpg");
    const SharedItem evil[] = {{"../../../../../secret", {"A"}, false, "x"},
                               {"link.jpg", {"A"}, false, "x"},
                               {"missing.jpg", {"A"}, false, "x"}};
    std::vector<SharedItemLedger::Entry> entries;
    for (const SharedItem& item : evil)
        entries.emplace_back(item.fileName, item);
    EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, *SharedItemLedger::encode(entries)));
    record("1.5a.jpg", "../../a.jpg", {"..", "/etc", "."});
    const Import::Report report = import();
    EXPECT_THAT(report.problems, ElementsAre(HasSubstr("leads elsewhere"), HasSubstr("not a file"),
                                             HasSubstr("No such file")));
    EXPECT_THAT(placed(), ElementsAre("vault/_../_etc/_./_.._.._a.jpg: content of 1.5a.jpg"));
    EXPECT_THAT(ledger(), SizeIs(3)) << "what could not be imported stays recorded";
}

TEST_F(ImportTest, EntriesWithTheSameKeyAreBothImported) {
    const SharedItem first = record("1.5a.jpg", "a.jpg");
    SharedItem second = record("2.5b.jpg", "b.jpg");
    EXPECT_FALSE(
        sharedDefaults()->setData(sharedItemsKey, *SharedItemLedger::encode({{"k", first}, {"k", second}})));
    import();
    EXPECT_THAT(placed(), SizeIs(2));
    EXPECT_THAT(ledger(), IsEmpty());
}

TEST_F(ImportTest, UnrecordedFilesAreToldAndPrunedWhenOld) {
    home.write("data/sela/groups/group.sela.vault/Items/young.jpg", "x");
    const fs::path old = home.write("data/sela/groups/group.sela.vault/Items/old.jpg", "x");
    fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(25));
    EXPECT_THAT(import().unrecorded, ElementsAre("old.jpg", "young.jpg"));
    const Import::Report report = import(false, true);
    EXPECT_THAT(report.pruned, ElementsAre("old.jpg"));
    EXPECT_THAT(report.unrecorded, ElementsAre("young.jpg"));
}

TEST_F(ImportTest, NothingIsPrunedWhileAnUnreadableLedgerMayKnowIt) {
    const fs::path old = home.write("data/sela/groups/group.sela.vault/Items/old.jpg", "x");
    fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(25));
    EXPECT_FALSE(sharedDefaults()->setData(std::string(unreadableItemsKeyPrefix) + "1.5", asData("damaged")));
    EXPECT_THAT(import(false, true).unrecorded, ElementsAre("old.jpg"));
    EXPECT_TRUE(fs::exists(old));
}

TEST_F(ImportTest, AnUnreadableLedgerStopsTheImportAndStays) {
    home.write("data/sela/groups/group.sela.vault/Items/1.5a.jpg", "x");
    EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, asData("not JSON")));
    EXPECT_TRUE(Import({into, false, true}).run().error());
    EXPECT_EQ(sharedDefaults()->data(sharedItemsKey), toData("not JSON"));
    EXPECT_TRUE(fs::exists(items() / "1.5a.jpg"));
}

/// A file system that cannot give a file a second name, as between two disks.
class NoLinks : public FileManagerWrapper {
public:
    ErrorRef linkItem(const std::string&, const std::string&) override {
        return NSError::posix(EXDEV, "link");
    }
};

TEST_F(ImportTest, FilesAreCopiedToAnotherDisk) {
    record("1.5a.jpg", "a.jpg");
    const NoLinks files;
    import();
    EXPECT_THAT(placed(), ElementsAre("vault/Trips/Rome/a.jpg: content of 1.5a.jpg"));
    EXPECT_THAT(ledger(), IsEmpty());
    EXPECT_TRUE(fs::is_empty(items()));
}

/// Stops the import for good at the n-th change to the disk, as a kill does: that change and all later ones
/// fail.
class StopsAt : public FileManagerWrapper {
public:
    StopsAt(int changes, bool links) : left_(changes), links_(links) {}

    bool stopped() const { return left_ < 0; }

    ErrorRef linkItem(const std::string& from, const std::string& to) override {
        if (!links_)
            return NSError::posix(EXDEV, "link");
        return refused() ? error() : FileManagerWrapper::linkItem(from, to);
    }
    ErrorRef moveItem(const std::string& from, const std::string& to) override {
        return refused() ? error() : FileManagerWrapper::moveItem(from, to);
    }
    ErrorRef removeItem(const std::string& path) override {
        return refused() ? error() : FileManagerWrapper::removeItem(path);
    }
    ErrorRef createDirectory(const std::string& path) override {
        return refused() ? error() : FileManagerWrapper::createDirectory(path);
    }

private:
    bool refused() { return --left_ < 0; }
    static ErrorRef error() { return NSError::posix(EIO, "stopped"); }

    int left_;
    bool links_;
};

TEST_F(ImportTest, AnImportThatStopsAnywhereIsFinishedByTheNext) {
    for (const bool links : {true, false}) {
        bool stopped = true;
        for (int changes = 0; stopped; ++changes) {
            fs::remove_all(into.path());
            fs::remove_all(items());
            record("1.5a.jpg", "a.jpg");
            record("2.5a.jpg", "a.jpg");
            {
                StopsAt files(changes, links);
                (void)Import({into, false, false}).run();
                stopped = files.stopped();
            }
            import();
            EXPECT_THAT(placed(), ElementsAre("vault/Trips/Rome/a (2).jpg: content of 2.5a.jpg",
                                              "vault/Trips/Rome/a.jpg: content of 1.5a.jpg"))
                << "stopped after " << changes << " changes, links " << links;
            EXPECT_THAT(ledger(), IsEmpty());
            EXPECT_TRUE(fs::is_empty(items()));
        }
    }
}

} // namespace
} // namespace sela
