#include "vault/Import.h"

#include "store/SharedFolder.h"
#include "support/FileManagerWrapper.h"
#include "support/TemporaryHome.h"
#include "vault/ImportPlace.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>

namespace sela {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

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

    /// Records a file whose name among the group's files is this.
    void record(const std::string& fileName) const {
        home.write("data/sela/groups/group.sela.vault/Items/" + fileName, "content of " + fileName);
        const SharedItem item{fileName, {"Trips", "Rome"}, false, "a.jpg"};
        const std::string key = SharedItemLedger::key(item);
        const std::optional<Data> old = sharedDefaults()->data(sharedItemsKey);
        EXPECT_FALSE(sharedDefaults()->setData(
            sharedItemsKey, *SharedItemLedger::adding(old ? *old : toData("{}"), key, item)));
    }

    static std::vector<SharedItemLedger::Entry> ledger() {
        const std::optional<Data> data = sharedDefaults()->data(sharedItemsKey);
        return data ? SharedItemLedger::decode(*data).value() : std::vector<SharedItemLedger::Entry>();
    }

    ErrorRef import() const { return Import({into, false, false}).run().error(); }

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
            record("1.5a.jpg");
            record("2.5a.jpg");
            {
                StopsAt files(changes, links);
                import();
                stopped = files.stopped();
            }
            EXPECT_FALSE(import());
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
