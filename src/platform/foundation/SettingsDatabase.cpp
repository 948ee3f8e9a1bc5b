#include "platform/foundation/SettingsDatabase.h"

#include "platform/foundation/Disk.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/SQLiteDisk.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <mutex>
#include <sqlite3.h>
#include <system_error>
#include <thread>
#include <utility>

namespace sela {

namespace {

/// The format that this version writes, in the file's user_version; 0 for a file without a version.
constexpr std::int64_t formatVersion = 1;

/// The wait for another program's lock is in equal steps: SQLite's own waits grow, so that of many programs
/// those that came first get the lock last.
constexpr std::chrono::milliseconds lockStep{5};

constexpr std::string_view sqliteErrorDomain = "SQLite";

constexpr const char* tableCountQuery =
    "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = 'settings'";

} // namespace

/// A prepared statement that is finalized with its scope.
struct SettingsDatabase::Statement {
    Statement(sqlite3* connection, const char* sql) {
        result = sqlite3_prepare_v2(connection, sql, -1, &handle, nullptr);
    }
    ~Statement() { sqlite3_finalize(handle); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    void bind(int index, std::string_view text) {
        sqlite3_bind_text64(handle, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
    void bind(int index, DataView bytes) {
        // A null pointer would be stored as NULL, but an empty value is a value.
        const void* const start = bytes.empty() ? "" : static_cast<const void*>(bytes.data());
        sqlite3_bind_blob64(handle, index, start, bytes.size(), SQLITE_STATIC);
    }
    int step() { return result == SQLITE_OK ? sqlite3_step(handle) : result; }
    Data column(int index) const {
        const auto* const start = static_cast<const std::byte*>(sqlite3_column_blob(handle, index));
        return Data(start, start + sqlite3_column_bytes(handle, index));
    }

    sqlite3_stmt* handle = nullptr;
    int result;
};

namespace {

/// The connection that was given back last.
struct KeptConnection {
    std::mutex mutex;
    std::unique_ptr<SettingsDatabase> database;
};

KeptConnection& kept() {
    // Never destroyed: threads may use the settings until the process ends.
    static auto* const connection = new KeptConnection;
    return *connection;
}

} // namespace

Result<std::unique_ptr<SettingsDatabase>> SettingsDatabase::open(const std::string& path,
                                                                 std::chrono::milliseconds patience) {
    std::unique_ptr<SettingsDatabase> database;
    {
        const std::lock_guard lock(kept().mutex);
        database = std::move(kept().database);
    }
    const bool fits = database && database->path_ == path && database->isConnectedToFile();
    if (!fits)
        database = std::make_unique<SettingsDatabase>(path);
    database->patience_ = patience;
    if (ErrorRef error = fits ? nullptr : database->connect())
        return error;
    return database;
}

void SettingsDatabase::giveBack(std::unique_ptr<SettingsDatabase> database) {
    if (!database || database->failed_)
        return;
    // Its cached pages hold passcodes, and are read again when needed. There are none without a file.
    if (database->connection_)
        sqlite3_db_release_memory(database->connection_);
    const std::lock_guard lock(kept().mutex);
    kept().database.swap(database);
}

SettingsDatabase::~SettingsDatabase() {
    sqlite3_close(connection_);
}

bool SettingsDatabase::isBusy(const ErrorRef& error) {
    const auto* const known = dynamic_cast<const NSError*>(error.get());
    return known && known->domain() == sqliteErrorDomain && known->code() == SQLITE_BUSY;
}

int SettingsDatabase::waitForLock(void* database, int stepsBefore) {
    if (lockStep * stepsBefore >= static_cast<SettingsDatabase*>(database)->patience_)
        return 0;
    std::this_thread::sleep_for(lockStep);
    return 1;
}

ErrorRef SettingsDatabase::checkReadable() {
    return connection_ ? readInteger(tableCountQuery).error() : nullptr;
}

Result<std::optional<Data>> SettingsDatabase::read(std::string_view key, std::string_view kind) {
    const Result<bool> any = holdsSettings();
    if (!any)
        return any.error();
    if (!any.value())
        return std::optional<Data>();
    // By a scan of the rows, here and below: there are few, and a damaged index does not hide any of them.
    Statement statement(connection_, "SELECT value FROM settings NOT INDEXED WHERE key = ?1 AND kind = ?2");
    statement.bind(1, key);
    statement.bind(2, kind);
    switch (statement.step()) {
    case SQLITE_ROW:
        return std::optional(statement.column(0));
    case SQLITE_DONE:
        return std::optional<Data>();
    default:
        return failure("a setting cannot be read");
    }
}

Result<std::vector<std::string>> SettingsDatabase::keys(std::string_view prefix) {
    std::vector<std::string> found;
    const Result<bool> any = holdsSettings();
    if (!any)
        return any.error();
    if (!any.value())
        return found;
    Statement statement(
        connection_,
        "SELECT key FROM settings NOT INDEXED WHERE substr(key, 1, length(?1)) = ?1 ORDER BY key");
    statement.bind(1, prefix);
    int result = statement.step();
    for (; result == SQLITE_ROW; result = statement.step())
        found.emplace_back(asText(statement.column(0)));
    if (result != SQLITE_DONE)
        return failure("the settings cannot be listed");
    return found;
}

ErrorRef SettingsDatabase::checkIntegrity() {
    const Result<bool> any = holdsSettings();
    if (!any || !any.value())
        return any.error();
    Statement statement(connection_, "PRAGMA integrity_check(1)");
    if (statement.step() != SQLITE_ROW)
        return failure("the settings cannot be checked");
    const std::string problem(asText(statement.column(0)));
    if (problem == "ok")
        return nullptr;
    return std::make_shared<NSError>(NSCocoaErrorDomain, NSCoderReadCorruptError, path_ + ": " + problem);
}

ErrorRef SettingsDatabase::begin() {
    if (!connection_)
        if (ErrorRef error = createFile())
            return error;
    const Result<bool> made = holdsSettings();
    if (!made)
        return made.error();
    if (!made.value())
        if (ErrorRef error = createTable())
            return error;
    if (ErrorRef error = execute("BEGIN IMMEDIATE"))
        return error;
    ErrorRef error = flushJournalOfOthers();
    return error ? end(error) : nullptr;
}

ErrorRef SettingsDatabase::end(ErrorRef failure) {
    if (!failure)
        failure = execute("COMMIT");
    if (failure)
        rollBack();
    return failure;
}

void SettingsDatabase::rollBack() {
    // After some failures SQLite has done so already.
    if (!sqlite3_get_autocommit(connection_))
        execute("ROLLBACK");
}

ErrorRef SettingsDatabase::write(std::string_view key, std::string_view kind, DataView value) {
    Statement statement(connection_,
                        "INSERT INTO settings(key, kind, value) VALUES(?1, ?2, ?3) "
                        "ON CONFLICT(key) DO UPDATE SET kind = excluded.kind, value = excluded.value");
    statement.bind(1, key);
    statement.bind(2, kind);
    statement.bind(3, value);
    if (statement.step() != SQLITE_DONE)
        return failure("a setting cannot be stored");
    return checkStored(key, kind, value);
}

ErrorRef SettingsDatabase::remove(std::string_view key) {
    const Result<bool> any = holdsSettings();
    if (!any || !any.value())
        return any.error();
    Statement statement(connection_, "DELETE FROM settings NOT INDEXED WHERE key = ?1");
    statement.bind(1, key);
    return statement.step() == SQLITE_DONE ? nullptr : failure("a setting cannot be removed");
}

ErrorRef SettingsDatabase::checkStored(std::string_view key, std::string_view kind, DataView value) {
    // The row must be found both through the index and by a scan, and only once: with a damaged index a
    // hidden row is stored twice, or the row of another key is found.
    Statement statement(connection_,
                        "SELECT 1 FROM settings WHERE key = ?1 AND kind = ?2 AND value = ?3 AND rowid = "
                        "(SELECT CASE count(*) WHEN 1 THEN max(rowid) END FROM settings NOT INDEXED "
                        "WHERE key = ?1)");
    statement.bind(1, key);
    statement.bind(2, kind);
    statement.bind(3, value);
    switch (statement.step()) {
    case SQLITE_ROW:
        return nullptr;
    case SQLITE_DONE:
        failed_ = true;
        return std::make_shared<NSError>(sqliteErrorDomain, SQLITE_CORRUPT,
                                         path_ + ": what was stored cannot be read back");
    default:
        return failure("a setting cannot be read back");
    }
}

ErrorRef SettingsDatabase::flushJournalOfOthers() {
    const Result<std::int64_t> version = readInteger("PRAGMA data_version");
    if (!version)
        return version.error();
    if (version.value() == journalFlushedAt_)
        return nullptr;
    const std::string path = path_ + "-journal";
    const FileDescriptor journal(Disk::inUse().open(path, O_RDONLY | O_NOFOLLOW));
    const int result = journal.isOpen() ? Disk::inUse().fdatasync(journal.get()) : journal.get();
    if (result < 0 && result != -ENOENT)
        return NSError::posix(-result, path);
    journalFlushedAt_ = version.value();
    return nullptr;
}

ErrorRef SettingsDatabase::connect() {
    struct stat status = {};
    if (const int result = Disk::inUse().stat(path_, status); result < 0)
        return result == -ENOENT ? nullptr : NSError::posix(-result, path_);
    FileManager::defaultManager().closeToOthers(path_);
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;
    const int result = sqlite3_open_v2(path_.c_str(), &connection_, flags, sqliteDiskName());
    ErrorRef error = result == SQLITE_OK ? checkFormat() : failure("the settings cannot be opened");
    if (error)
        sqlite3_close(std::exchange(connection_, nullptr));
    device_ = status.st_dev;
    inode_ = status.st_ino;
    return error;
}

void SettingsDatabase::distrustSchema() {
    // Other programs write the file too: a view in place of the table, or a trigger on it, could run
    // arbitrary SQL, even without end.
    for (const int feature :
         {SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_TRUSTED_SCHEMA})
        sqlite3_db_config(connection_, feature, 0, nullptr);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

ErrorRef SettingsDatabase::checkFormat() {
    distrustSchema();
    sqlite3_busy_handler(connection_, waitForLock, this);
    const Result<std::int64_t> version = readInteger("PRAGMA user_version");
    if (!version)
        return version.error();
    if (version.value() > formatVersion)
        return std::make_shared<NSError>(sqliteErrorDomain, SQLITE_MISMATCH,
                                         path_ + ": format " + std::to_string(version.value()) +
                                             " is later than this program's format " +
                                             std::to_string(formatVersion));
    // A rollback journal that is truncated rather than deleted: with synchronous FULL the truncation is
    // flushed, so a committed transaction survives a power cut, and no file is made and removed for each one.
    // secure_delete overwrites removed values, whatever the library's default is.
    for (const char* const sql : {"PRAGMA journal_mode = TRUNCATE", "PRAGMA synchronous = FULL",
                                  "PRAGMA temp_store = MEMORY", "PRAGMA secure_delete = ON"})
        if (ErrorRef error = execute(sql))
            return error;
    return nullptr;
}

ErrorRef SettingsDatabase::createFile() {
    const std::string folder = URL::fileURL(path_).deletingLastPathComponent().path();
    FileManager& files = FileManager::defaultManager();
    if (ErrorRef error = files.createDirectory(folder))
        return error;
    // Made here, since a connection makes none: a file that is removed while a connection is open must not
    // reappear empty.
    const FileDescriptor file(Disk::inUse().open(path_, O_RDWR | O_CREAT | O_NOFOLLOW, 0600));
    if (!file.isOpen())
        return NSError::posix(-file.get(), path_);
    if (ErrorRef error = files.synchronizeDirectory(folder))
        return error;
    return connect();
}

ErrorRef SettingsDatabase::createTable() {
    // Large pages: the ledger is one long value, and fewer pages are fewer writes (docs/libraries.md).
    constexpr const char* table = "CREATE TABLE IF NOT EXISTS settings(key TEXT PRIMARY KEY, "
                                  "kind TEXT NOT NULL CHECK(kind IN ('text','data')), value BLOB NOT NULL)";
    for (const char* const sql :
         {"PRAGMA page_size = 65536", "BEGIN IMMEDIATE", table, "PRAGMA user_version = 1", "COMMIT"}) {
        if (ErrorRef error = execute(sql)) {
            rollBack();
            return error;
        }
    }
    return nullptr;
}

Result<bool> SettingsDatabase::holdsSettings() {
    if (!connection_ || tableSeen_)
        return connection_ != nullptr;
    const Result<std::int64_t> tables = readInteger(tableCountQuery);
    if (!tables)
        return tables.error();
    tableSeen_ = tables.value() > 0;
    return tableSeen_;
}

bool SettingsDatabase::isConnectedToFile() const {
    struct stat status = {};
    return connection_ && Disk::inUse().stat(path_, status) == 0 && status.st_dev == device_ &&
           status.st_ino == inode_;
}

ErrorRef SettingsDatabase::execute(const char* sql) {
    if (sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        return failure(sql);
    return nullptr;
}

Result<std::int64_t> SettingsDatabase::readInteger(const char* sql) {
    Statement statement(connection_, sql);
    if (statement.step() != SQLITE_ROW)
        return failure(sql);
    return static_cast<std::int64_t>(sqlite3_column_int64(statement.handle, 0));
}

ErrorRef SettingsDatabase::failure(std::string_view what) {
    failed_ = true;
    const int code = sqlite3_errcode(connection_);
    std::string description = path_ + ": " + std::string(what) + ": " + sqlite3_errmsg(connection_);
    if (const int reason = sqlite3_system_errno(connection_); reason != 0 && code != SQLITE_FULL)
        description += " (" + systemErrorText(reason) + ")";
    return std::make_shared<NSError>(sqliteErrorDomain, code, std::move(description));
}

} // namespace sela
