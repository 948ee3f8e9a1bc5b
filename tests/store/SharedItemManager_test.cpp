#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "store/ItemsLock.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "store/SharedItemManager.h"
#include "support/DiskWrapper.h"
#include "support/LockedSettings.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"
#include "support/VirtualMainLoop.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <thread>

namespace sela {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int64_t block = 2'097'152;

/// Saves items into a group of its own and notes each call of the completion.
class SharedItemManagerTest : public testing::Test {
protected:
    TemporaryHome home;
    LogCapture log;
    VirtualMainLoop loop;
    ScopedMainQueue scope{loop};
    std::vector<std::string> calls; ///< "ok" or the error's description
    bool calledOnMain = false;

    SharedItemManager::Completion noting() {
        return [this, mainThread = std::this_thread::get_id()](const ErrorRef& error) {
            calls.push_back(error ? error->localizedDescription() : "ok");
            calledOnMain = std::this_thread::get_id() == mainThread;
        };
    }

    static SharedItem item(const std::string& name) { return {name, {"Trips"}, false, name}; }

    fs::path items() const { return home.container() / "Items"; }

    void saveFile(const std::string& name, std::string_view content) {
        const fs::path source = home.write("source/" + name, content);
        SharedItemManager::saveItem(item(name), URL::fileURL(source.string()), noting());
        loop.runUntilIdle();
    }

    static std::string ledger() {
        const std::optional<Data> data = sharedDefaults()->data(sharedItemsKey);
        return data ? std::string(asText(*data)) : "none";
    }

    static std::string ledgerOf(const std::vector<std::string>& names) {
        std::vector<SharedItemLedger::Entry> entries;
        entries.reserve(names.size());
        for (const std::string& name : names)
            entries.emplace_back(SharedItemLedger::key(item(name)), item(name));
        return std::string(asText(*SharedItemLedger::encode(entries)));
    }
};

TEST_F(SharedItemManagerTest, WhatTheSystemDoesNotCopyIsReadAndWritten) {
    class NoCopying : public DiskWrapper {
    public:
        int answer = 0;
        std::int64_t copyFileRange(int, int, std::int64_t, std::int64_t) override { return answer; }
    };
    home.provision();
    NoCopying disk;
    const std::string content = patternedBytes(block + 5000);
    for (const int answer : {0, -EXDEV, -EIO}) {
        disk.answer = answer;
        saveFile(std::to_string(answer) + ".jpg", content);
        EXPECT_EQ(calls.back(), "ok");
        EXPECT_TRUE(contentOf(items() / (std::to_string(answer) + ".jpg")) == content) << answer;
    }
}

TEST_F(SharedItemManagerTest, ItemsIsLockedUntilTheItemIsRecorded) {
    /// Asks at each flush of the settings.
    class Asking : public DiskWrapper {
    public:
        explicit Asking(URL items) : items_(std::move(items)) {}
        int asked = 0;
        int fdatasync(int descriptor) override {
            ++asked;
            EXPECT_FALSE(ItemsLock::forRemoving(items_));
            return DiskWrapper::fdatasync(descriptor);
        }

    private:
        const URL items_;
    };
    home.provision();
    const URL folder = URL::fileURL(items().string());
    Asking disk(folder);
    saveFile("a.jpg", "x");
    SharedItemManager::saveItem(item("b.jpg"), asData("x"), noting());
    EXPECT_GT(disk.asked, 3);
    EXPECT_TRUE(ItemsLock::forRemoving(folder));
}

TEST_F(SharedItemManagerTest, TheMainQueueGoesOnWhileSettingsAreLockedAndEndsNotBefore) {
    home.provision();
    saveFile("a.jpg", "x");
    const LockedSettings settings(30);
    bool isLockedMeanwhile = false;
    const std::function<void()> look = [&] {
        isLockedMeanwhile |= settings.met() > 0 && !ItemsLock::forRemoving(URL::fileURL(items().string()));
        if (calls.size() == 1)
            loop.async(look);
    };
    loop.async(look);
    saveFile("b.jpg", "x");
    EXPECT_TRUE(isLockedMeanwhile);
    EXPECT_THAT(calls, ElementsAre("ok", "ok"));
    EXPECT_EQ(ledger(), ledgerOf({"a.jpg", "b.jpg"}));
}

TEST_F(SharedItemManagerTest, AnUnreadableLedgerIsReplacedThoughSettingsAreLockedInBetween) {
    home.provision();
    ASSERT_EQ(sharedDefaults()->setData(sharedItemsKey, toData("no ledger")), nullptr);
    std::optional<LockedSettings> settings;
    std::vector<bool> errors;
    SharedItemManager::saveItem(item("a.jpg"), URL::fileURL(home.write("source/a.jpg", "x").string()),
                                [&](const ErrorRef& error) {
                                    errors.push_back(error != nullptr);
                                    if (error)
                                        settings.emplace(30);
                                });
    loop.runPending();
    EXPECT_THAT(errors, ElementsAre(true, false));
    EXPECT_EQ(ledger(), ledgerOf({"a.jpg"}));
}

TEST_F(SharedItemManagerTest, EachBlockIsLoggedAndProgressIsAFraction) {
    home.provision();
    const fs::path source = home.write("a.mov", patternedBytes(block + 10));
    std::vector<float> fractions;
    SharedItemManager::copyItem(
        URL::fileURL(source.string()), URL::fileURL((home.path() / "copy").string()),
        [&](float fraction) {
            EXPECT_TRUE(calls.empty());
            fractions.push_back(fraction);
        },
        noting());
    loop.runUntilIdle();
    const auto size = static_cast<float>(block + 10);
    EXPECT_THAT(fractions, ElementsAre(static_cast<float>(block) / size, 1.0f, 1.0f));
    EXPECT_THAT(log.lines(), ElementsAre("copyItem: readBytes = 2097152, totalReadBytes = 2097152",
                                         "copyItem: readBytes = 10, totalReadBytes = 2097162",
                                         "copyItem: readBytes = 0, totalReadBytes = 2097162"));
    EXPECT_THAT(calls, ElementsAre("ok"));
}

TEST_F(SharedItemManagerTest, AnEmptyFileIsNeitherReportedNorRecorded) {
    home.provision();
    saveFile("empty.jpg", "");
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(fs::exists(items() / "empty.jpg"));
    EXPECT_EQ(ledger(), "none");
}

TEST_F(SharedItemManagerTest, ChecksComeInTheirOrder) {
    saveFile("a.txt", "x");
    EXPECT_THAT(calls, ElementsAre("Unsupported file"));
    saveFile("a.jpg", "x");
    EXPECT_THAT(calls, ElementsAre("Unsupported file", "Shared folder is nil"));
    EXPECT_THAT(log.lines(), ElementsAre("saveItem: file extension is not supported a.txt",
                                         "SharedItemManager, shared folder is nil"));
    EXPECT_FALSE(fs::exists(home.path() / "data"));
    EXPECT_FALSE(fs::exists(home.path() / "config"));
    home.write("config/sela/group.sela.vault.sqlite3", std::string(2000, 'x'));
    saveFile("a.txt", "x");
    EXPECT_EQ(calls.back(), "UserDefaults is nil");
    EXPECT_EQ(log.lines().back(), "saveItem: userDefaults is nil");
}

TEST_F(SharedItemManagerTest, ItemsThatCannotBeMadeAreNeverReported) {
    home.provision();
    fs::create_symlink("/proc/nowhere/at/all", items());
    saveFile("a.jpg", "x");
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("saveItem: failed to create dir = " + items().string()));
}

TEST_F(SharedItemManagerTest, AFileThatExistsIsLeftAndCountsAsSaved) {
    home.provision();
    saveFile("a.jpg", "first");
    saveFile("a.jpg", "second");
    SharedItemManager::saveItem(item("a.jpg"), asData("third"), noting());
    EXPECT_THAT(calls, ElementsAre("ok", "ok", "ok"));
    EXPECT_EQ(contentOf(items() / "a.jpg"), "first");
    EXPECT_EQ(log.lines().back(), "File already exists, fileName = a.jpg");
    EXPECT_EQ(ledger(), ledgerOf({"a.jpg"}));
}

TEST_F(SharedItemManagerTest, StreamsThatCannotBeMadeAreReportedInTheBackground) {
    home.provision();
    SharedItemManager::saveItem(item("a.jpg"), URL::fileURL((home.path() / "missing").string()), noting());
    loop.runUntilIdle();
    EXPECT_THAT(calls, ElementsAre("failed to create stream"));
    EXPECT_FALSE(calledOnMain);
    EXPECT_FALSE(fs::exists(items() / "a.jpg")) << "a missing source left a destination";
    fs::create_symlink(home.path() / "nowhere", items() / "dangling.jpg");
    saveFile("dangling.jpg", "x");
    EXPECT_EQ(calls.back(), "failed to create stream");
    EXPECT_FALSE(fs::exists(home.path() / "nowhere"));
    EXPECT_EQ(ledger(), "none");
}

constexpr std::int64_t unlimited = std::int64_t(1) << 40;

/// A disk on which so many bytes can be read from files, and written to "Items".
class LimitedDisk : public DiskWrapper {
public:
    std::int64_t readable = unlimited;
    std::int64_t writable = unlimited;

    std::int64_t read(int descriptor, std::span<std::byte> buffer) override {
        if (readable == 0)
            return -EIO;
        const std::int64_t count = DiskWrapper::read(
            descriptor, buffer.first(std::min(buffer.size(), static_cast<std::size_t>(readable))));
        readable -= count;
        return count;
    }
    std::int64_t copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) override {
        const std::int64_t count =
            DiskWrapper::copyFileRange(from, to, offset, std::min({length, readable, writable}));
        if (count > 0) {
            readable -= count;
            writable -= count;
        }
        return count;
    }
    std::int64_t pwrite(int descriptor, DataView bytes, std::int64_t offset) override {
        if (pathOf(descriptor).find("/Items/") == std::string::npos)
            return DiskWrapper::pwrite(descriptor, bytes, offset);
        if (writable == 0)
            return -ENOSPC;
        const std::int64_t count = DiskWrapper::pwrite(
            descriptor, bytes.first(std::min(bytes.size(), static_cast<std::size_t>(writable))), offset);
        writable -= count;
        return count;
    }
};

TEST_F(SharedItemManagerTest, AStreamThatFailsAnywhereRecordsNothingAndLeavesNothing) {
    home.provision();
    LimitedDisk disk;
    const std::string content = patternedBytes(2 * block);
    for (const std::int64_t limit : {std::int64_t(0), block - 1, block, block + 1}) {
        for (const bool reading : {true, false}) {
            calls.clear();
            disk.readable = reading ? limit : unlimited;
            disk.writable = reading ? unlimited : limit;
            saveFile("a.jpg", content);
            EXPECT_THAT(calls, ElementsAre(HasSubstr(reading ? "Input/output error" : "No space left")));
            EXPECT_TRUE(calledOnMain);
            EXPECT_THAT(log.lines().back(),
                        HasSubstr(reading ? "copyItem: read error = " : "copyItem: write error = "));
            EXPECT_FALSE(fs::exists(items() / "a.jpg")) << limit;
            EXPECT_EQ(ledger(), "none");
        }
    }
    disk.readable = disk.writable = unlimited;
    saveFile("a.jpg", content);
    EXPECT_EQ(calls.back(), "ok");
    EXPECT_TRUE(contentOf(items() / "a.jpg") == content);
}

TEST_F(SharedItemManagerTest, AttributesThatCannotBeReadEndTheCopy) {
    class NoAttributes : public DiskWrapper {
        int stat(const std::string& path, struct stat& status) override {
            return path.ends_with("source/a.jpg") ? -EACCES : DiskWrapper::stat(path, status);
        }
    };
    home.provision();
    const NoAttributes files;
    saveFile("a.jpg", "x");
    EXPECT_THAT(calls, ElementsAre(HasSubstr("Permission denied")));
    EXPECT_TRUE(calledOnMain);
    EXPECT_FALSE(fs::exists(items() / "a.jpg"));
}

/// A source whose length is not what its attributes say, as when another program writes it meanwhile.
class ChangingSource : public DiskWrapper {
public:
    std::int64_t claimedSize = 0;

    int stat(const std::string& path, struct stat& status) override {
        const int result = DiskWrapper::stat(path, status);
        if (path.ends_with("source/a.jpg"))
            status.st_size = claimedSize;
        return result;
    }
    int fstat(int descriptor, struct stat& status) override {
        const int result = DiskWrapper::fstat(descriptor, status);
        if (pathOf(descriptor).ends_with("source/a.jpg"))
            status.st_size = claimedSize;
        return result;
    }
};

TEST_F(SharedItemManagerTest, AFileThatGrowsOrShrinksUnderWayIsCopiedToItsEnd) {
    home.provision();
    ChangingSource files;
    const std::string content = patternedBytes(block + 5);
    for (const std::int64_t claimed : {std::int64_t(1), block, 3 * block}) {
        files.claimedSize = claimed;
        fs::remove(items() / "a.jpg");
        calls.clear();
        saveFile("a.jpg", content);
        EXPECT_THAT(calls, ElementsAre("ok"));
        EXPECT_TRUE(contentOf(items() / "a.jpg") == content) << claimed;
    }
}

TEST_F(SharedItemManagerTest, DataThatCannotBeWrittenAreNotRecorded) {
    home.provision();
    fs::create_directory(items());
    SharedItemManager::saveItem(item(std::string(300, 'x') + ".jpg"), asData("jpeg"), noting());
    EXPECT_THAT(calls, ElementsAre(HasSubstr("File name too long")));
    EXPECT_EQ(ledger(), "none");
    EXPECT_TRUE(fs::is_empty(items()));
}

TEST_F(SharedItemManagerTest, AnUnreadableLedgerIsReportedReplacedAndKeptAside) {
    home.provision();
    const std::string unreadable[] = {"not JSON", "[]", R"({"k":{"fileName":1}})", "", "{\"\xFF\":1}"};
    std::size_t kept = 0;
    for (const std::string& text : unreadable) {
        calls.clear();
        const std::string name = std::to_string(kept) + ".jpg";
        EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, asData(text)));
        SharedItemManager::saveItem(item(name), asData("x"), noting());
        EXPECT_THAT(calls, ElementsAre(HasSubstr("JSON"), "ok"));
        EXPECT_EQ(log.lines().back(), "SharedItemManager, saveItem: falied to decode sharedItemsData");
        EXPECT_EQ(ledger(), ledgerOf({name}));
        const std::vector<std::string> keys = sharedDefaults()->keys(unreadableItemsKeyPrefix).value();
        ASSERT_EQ(keys.size(), ++kept);
        EXPECT_EQ(sharedDefaults()->data(keys.back()), toData(text));
    }
}

TEST_F(SharedItemManagerTest, AtTheFirstOfTwoCallsTheUnreadableLedgerIsStillThere) {
    home.provision();
    EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, asData("not JSON")));
    std::vector<std::string> seen;
    SharedItemManager::saveItem(item("a.jpg"), asData("x"),
                                [&](const ErrorRef&) { seen.push_back(ledger()); });
    EXPECT_THAT(seen, ElementsAre("not JSON", ledgerOf({"a.jpg"})));
}

TEST_F(SharedItemManagerTest, AnItemThatIsRecordedAlreadyIsLoggedAndLeft) {
    home.provision();
    const SharedItem twice{"a.jpg", {"Trips", "2020-\"Rome\""}, true, std::nullopt};
    SharedItemManager::saveItem(twice, asData("x"), noting());
    const std::string before = ledger();
    fs::remove(items() / "a.jpg");
    SharedItemManager::saveItem(twice, asData("x"), noting());
    EXPECT_THAT(calls, ElementsAre("ok", "ok"));
    EXPECT_EQ(ledger(), before);
    EXPECT_EQ(
        log.lines().back(),
        R"(SharedItemManager, saveItem: item already exists, album = ["Trips", "2020-\"Rome\""], fake = true, )"
        R"(file = a.jpg, key = Trips-2020--"Rome"-fakea.jpg])");
}

TEST_F(SharedItemManagerTest, AnItemThatCannotBeEncodedIsReportedByTheStateOfTheLedger) {
    home.provision();
    const SharedItem bad{"a.jpg", {"\xFF"}, false, std::nullopt};
    SharedItemManager::saveItem(bad, asData("x"), noting());
    EXPECT_THAT(calls, ElementsAre("ok"));
    EXPECT_EQ(log.lines().back(), "SharedItemManager, saveItem: falied to encode sharedItemsDictionary");
    EXPECT_EQ(ledger(), "none");
    SharedItemManager::saveItem(item("b.jpg"), asData("x"), noting());
    fs::remove(items() / "a.jpg");
    calls.clear();
    SharedItemManager::saveItem(bad, asData("x"), noting());
    EXPECT_THAT(calls, ElementsAre(HasSubstr("not UTF-8"), "ok"));
    EXPECT_EQ(log.lines().back(), "SharedItemManager, saveItem: falied to encode sharedItemsDictionary 2");
    EXPECT_EQ(ledger(), ledgerOf({"b.jpg"}));
    EXPECT_TRUE(fs::exists(items() / "a.jpg"));
}

} // namespace
} // namespace sela
