#include "platform/foundation/UserDefaults.h"

#include "support/LogCapture.h"
#include "support/TemporaryHome.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <random>
#include <rapidcheck/gtest.h>
#include <sqlite3.h>

namespace sela {
namespace {

namespace fs = std::filesystem;

constexpr const char* suite = "group.sela.vault";

/// A connection that acts as another program's.
void executeSQL(const fs::path& file, const char* sql) {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
    char* message = nullptr;
    sqlite3_exec(connection, sql, nullptr, nullptr, &message);
    EXPECT_EQ(message, nullptr) << message;
    sqlite3_close(connection);
}

class UserDefaultsTest : public testing::Test {
protected:
    TemporaryHome home;
    LogCapture log;

    static UserDefaults open() {
        std::optional<UserDefaults> defaults = UserDefaults::withSuiteName(suite);
        EXPECT_TRUE(defaults);
        return std::move(*defaults);
    }
    static SettingsTransaction begin() { return std::move(SettingsTransaction::begin(open()).value()); }
};

TEST_F(UserDefaultsTest, ValuesAreKeptByKind) {
    EXPECT_FALSE(open().setString("text", "pässwörd"));
    EXPECT_FALSE(open().setData("data", asData(std::string_view("\0\xFF", 2))));
    EXPECT_FALSE(open().setData("nothing", {}));
    EXPECT_EQ(open().string("text"), "pässwörd");
    EXPECT_EQ(open().data("data"), toData(std::string_view("\0\xFF", 2)));
    EXPECT_EQ(open().data("nothing"), Data());
    EXPECT_FALSE(open().data("text")) << "a text is no data";
    EXPECT_FALSE(open().string("data")) << "data are no text";
}

TEST_F(UserDefaultsTest, KeysAreFoundByTheirStart) {
    for (const char* const key : {"b.2", "b.1", "b", "a", "%"})
        EXPECT_FALSE(open().setString(key, "x"));
    EXPECT_THAT(open().keys("b.").value(), testing::ElementsAre("b.1", "b.2"));
    EXPECT_THAT(open().keys("%").value(), testing::ElementsAre("%"));
}

TEST_F(UserDefaultsTest, ATransactionIsKeptWholeOrNotAtAll) {
    EXPECT_FALSE(open().setString("a", "1"));
    EXPECT_FALSE(open().setData("b", asData("1")));
    for (const bool committed : {false, true}) {
        SettingsTransaction settings = begin();
        settings.removeObject("a");
        settings.setData("b", asData("2"));
        EXPECT_EQ(settings.readData("b").value(), toData("2"));
        EXPECT_EQ(open().data("b"), toData("1")) << "nobody else sees it before its end";
        if (committed) {
            EXPECT_FALSE(settings.commit());
        }
    }
    EXPECT_FALSE(open().string("a"));
    EXPECT_EQ(open().data("b"), toData("2"));
}

TEST_F(UserDefaultsTest, AFailureInsideATransactionUndoesItEvenIfNobodyLooks) {
    EXPECT_FALSE(open().setString("a", "1"));
    // Like a disk error, the second one rolls back the whole transaction inside SQLite.
    executeSQL(home.settingsFile(),
               "DROP TABLE settings;"
               "CREATE TABLE settings(key TEXT PRIMARY KEY, kind TEXT, value BLOB,"
               " one TEXT AS (iif(key = 'bad', 'a', key)) UNIQUE ON CONFLICT ABORT,"
               " two TEXT AS (iif(key = 'worse', 'a', key)) UNIQUE ON CONFLICT ROLLBACK)");
    EXPECT_FALSE(open().setString("a", "1"));
    for (const char* const key : {"bad", "worse"}) {
        SettingsTransaction settings = begin();
        settings.setString("a", "2");
        settings.setString(key, "x");
        EXPECT_FALSE(settings.readData("a"));
        settings.setString("a", "3");
        settings.removeObject("a");
        const ErrorRef error = settings.commit();
        ASSERT_TRUE(error);
        EXPECT_THAT(error->localizedDescription(), testing::HasSubstr("UNIQUE"));
        EXPECT_EQ(open().string("a"), "1");
    }
}

TEST_F(UserDefaultsTest, UnusableSettingsDoNotOpenAndSayWhy) {
    const fs::path file = home.settingsFile();
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[&] { std::ofstream(file) << std::string(5000, 'x'); }, "not a database"},
        {[&] { fs::create_directory(file); }, "unable to open"},
        {[&] { executeSQL(file, "CREATE TABLE settings(key, kind, value); PRAGMA user_version = 2"); },
         "format 2 is later than this program's format 1"},
    };
    fs::create_directories(file.parent_path());
    for (const auto& [spoil, reason] : cases) {
        fs::remove_all(file);
        spoil();
        EXPECT_FALSE(UserDefaults::withSuiteName(suite)) << reason;
        EXPECT_THAT(log.lines().back(), testing::HasSubstr(reason));
    }
    EXPECT_FALSE(UserDefaults::withSuiteName("../escape"));
}

TEST_F(UserDefaultsTest, SettingsThatAnotherProgramMadeAreReadAndWritten) {
    fs::create_directories(home.settingsFile().parent_path());
    executeSQL(
        home.settingsFile(),
        "CREATE TABLE settings(key TEXT PRIMARY KEY, kind TEXT NOT NULL CHECK(kind IN ('text','data')), "
        "value BLOB NOT NULL); INSERT INTO settings VALUES('a', 'text', 'written as text'); "
        "INSERT INTO settings VALUES('b', 'data', X'5B5D')");
    EXPECT_EQ(open().string("a"), "written as text");
    EXPECT_EQ(open().data("b"), toData("[]"));
    EXPECT_FALSE(open().setString("c", "x"));
    EXPECT_EQ(open().string("c"), "x");
}

TEST_F(UserDefaultsTest, ADamagedIndexHidesNothingAndWhatItWouldHideIsNotStored) {
    const std::string keys[] = {"b", "d", "f", "h", "k", "m", "p"};
    for (const std::string& key : keys)
        ASSERT_FALSE(open().setString(key, "1"));
    const std::string whole = contentOf(home.settingsFile());
    std::mt19937 chance(5);
    int refused = 0;
    for (int i = 0; i < 60; ++i) {
        // The index is stored after the table; its only lower-case letters are its keys.
        std::string damaged = whole;
        for (auto byte = damaged.begin() + std::ptrdiff_t{2} * 65'536; byte != damaged.end(); ++byte)
            if (*byte >= 'a' && *byte <= 'z')
                *byte = static_cast<char>('a' + chance() % 26);
        fs::rename(home.write("damaged", damaged), home.settingsFile());
        for (const std::string& stored : keys)
            EXPECT_EQ(open().string(stored), "1") << i;
        EXPECT_THAT(open().keys("").value(), testing::ElementsAreArray(keys));
        const std::string key(1, static_cast<char>('a' + chance() % 26));
        if (open().setString(key, "2"))
            ++refused;
        else
            EXPECT_EQ(open().string(key), "2") << i;
        EXPECT_EQ(contentOf(home.settingsFile()) == damaged, open().string(key) != "2") << i;
    }
    EXPECT_GT(refused, 0);
}

TEST_F(UserDefaultsTest, NoFileAndAnEmptyOneHoldNothingAndCanBeUsed) {
    for (const bool exists : {false, true}) {
        if (exists)
            home.write("config/sela/group.sela.vault.sqlite3", "");
        EXPECT_FALSE(open().string("a"));
        EXPECT_TRUE(open().readData("a")) << "nothing is no failure";
        EXPECT_FALSE(open().removeObject("a"));
        EXPECT_EQ(fs::is_empty(home.path()), !exists) << "reading made something";
    }
    EXPECT_FALSE(open().setString("a", "1"));
    EXPECT_EQ(open().string("a"), "1");
}

TEST_F(UserDefaultsTest, AFileThatIsReplacedIsSeen) {
    EXPECT_FALSE(open().setString("a", "1"));
    fs::rename(home.settingsFile(), home.path() / "moved");
    EXPECT_FALSE(open().string("a"));
    EXPECT_FALSE(open().setString("a", "2"));
    EXPECT_EQ(open().string("a"), "2");
    fs::rename(home.path() / "moved", home.settingsFile());
    EXPECT_EQ(open().string("a"), "1");
    EXPECT_FALSE(open().setString("b", "3"));
    EXPECT_THAT(contentOf(home.settingsFile()), testing::HasSubstr("btext3"));
}

TEST_F(UserDefaultsTest, ALockHeldForTooLongIsAnErrorAndChangesNothing) {
    EXPECT_FALSE(open().setString("a", "1"));
    constexpr UserDefaults::Patience patience{20};
    UserDefaults defaults = std::move(UserDefaults::open(suite, patience).value());
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(home.settingsFile().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_TRUE(isBusy(defaults.setString("a", "2")));
    EXPECT_TRUE(UserDefaults::areBusy(suite, patience)) << "nothing can be read either";
    sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_FALSE(UserDefaults::areBusy(suite, patience));
    EXPECT_EQ(open().string("a"), "1");
}

RC_GTEST_PROP(UserDefaultsProperty, BehavesLikeAMap, ()) {
    const TemporaryHome home;
    std::map<std::string, std::string> model;
    std::optional<UserDefaults> defaults = UserDefaults::withSuiteName(suite);
    const int steps = *rc::gen::inRange(1, 20);
    for (int i = 0; i < steps; ++i) {
        const std::string key = *rc::gen::element<std::string>("a", "b", "");
        const std::string value = *rc::gen::string<std::string>();
        if (*rc::gen::arbitrary<bool>()) {
            RC_ASSERT(!defaults->setString(key, value));
            model[key] = value;
        } else {
            RC_ASSERT(!defaults->removeObject(key));
            model.erase(key);
        }
        for (const char* const asked : {"a", "b", ""}) {
            const auto known = model.find(asked);
            const auto expected = known == model.end() ? std::nullopt : std::optional(known->second);
            RC_ASSERT(UserDefaults::withSuiteName(suite)->string(asked) == expected);
        }
    }
}

} // namespace
} // namespace sela
