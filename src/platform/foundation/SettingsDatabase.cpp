#include "platform/foundation/SettingsDatabase.h"

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/SystemCall.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <map>
#include <sqlite3.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace sela {

namespace {

/// The format that this version writes, in the file's user_version; 0 stands for a file nobody stamped.
constexpr std::int64_t formatVersion = 1;

/// How long one program waits for another to let go of the file, in even steps: SQLite's own waits grow, so
/// that of many programs those that came first get the file last.
constexpr std::chrono::milliseconds lockStep{5};
constexpr int mostLockSteps = 2000;

int waitForLock(void*, int stepsBefore) {
    if (stepsBefore >= mostLockSteps)
        return 0;
    std::this_thread::sleep_for(lockStep);
    return 1;
}

constexpr std::string_view sqliteErrorDomain = "SQLite";

constexpr const char* tableCountQuery =
    "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = 'settings'";

} // namespace

/// A prepared statement that ends with its scope.
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

Result<std::shared_ptr<SettingsDatabase>> SettingsDatabase::open(const std::string& path) {
    // One object per file for the life of the process: SQLite's locks are dropped when a second connection of
    // the same process is closed behind its back.
    static std::mutex mutex;
    static auto* const databases = new std::map<std::string, std::shared_ptr<SettingsDatabase>>;
    std::shared_ptr<SettingsDatabase> database;
    {
        const std::lock_guard lock(mutex);
        std::shared_ptr<SettingsDatabase>& known = (*databases)[path];
        if (!known)
            known = std::make_shared<SettingsDatabase>(path);
        database = known;
    }
    const std::lock_guard lock(database->mutex_);
    if (ErrorRef error = database->connect())
        return error;
    return database;
}

SettingsDatabase::SettingsDatabase(std::string path) : path_(std::move(path)) {}

SettingsDatabase::~SettingsDatabase() {
    disconnect();
}

Result<std::optional<Data>> SettingsDatabase::read(std::string_view key, std::string_view kind) {
    const std::lock_guard lock(mutex_);
    const Result<bool> any = holdsSettings();
    if (!any)
        return any.error();
    if (!any.value())
        return std::optional<Data>();
    // By the rows alone, here and below: there are few, and one that a damaged index does not lead to is
    // there all the same.
    Statement statement(connection_, "SELECT value FROM settings NOT INDEXED WHERE key = ?1 AND kind = ?2");
    statement.bind(1, key);
    statement.bind(2, kind);
    switch (statement.step()) {
    case SQLITE_ROW:
        return std::optional(statement.column(0));
    case SQLITE_DONE:
        return std::optional<Data>();
    default:
        return failure("read a setting");
    }
}

Result<std::vector<std::string>> SettingsDatabase::keys(std::string_view prefix) {
    const std::lock_guard lock(mutex_);
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
        return failure("list the settings");
    return found;
}

ErrorRef SettingsDatabase::write(std::string_view key, std::string_view kind, DataView value) {
    const std::lock_guard lock(mutex_);
    if (!inTransaction_)
        return transaction([&] { return write(key, kind, value); });
    if (ErrorRef error = create())
        return error;
    Statement statement(connection_,
                        "INSERT INTO settings(key, kind, value) VALUES(?1, ?2, ?3) "
                        "ON CONFLICT(key) DO UPDATE SET kind = excluded.kind, value = excluded.value");
    statement.bind(1, key);
    statement.bind(2, kind);
    statement.bind(3, value);
    if (statement.step() != SQLITE_DONE)
        return failure("store a setting");
    return checkStored(key, kind, value);
}

ErrorRef SettingsDatabase::checkStored(std::string_view key, std::string_view kind, DataView value) {
    // The same through the index and by the rows, and the only one: a damaged index doubles what it hides,
    // and may lead to the row of another key.
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
        return noted(std::make_shared<NSError>(sqliteErrorDomain, SQLITE_CORRUPT,
                                               path_ + ": what was stored cannot be read back"));
    default:
        return failure("read a setting back");
    }
}

ErrorRef SettingsDatabase::remove(std::string_view key) {
    const std::lock_guard lock(mutex_);
    const Result<bool> any = holdsSettings();
    if (!any || !any.value())
        return any.error();
    if (!inTransaction_)
        return transaction([&] { return remove(key); });
    Statement statement(connection_, "DELETE FROM settings NOT INDEXED WHERE key = ?1");
    statement.bind(1, key);
    return statement.step() == SQLITE_DONE ? nullptr : failure("remove a setting");
}

ErrorRef SettingsDatabase::transaction(const std::function<ErrorRef()>& body) {
    const std::lock_guard lock(mutex_);
    if (ErrorRef error = create())
        return error;
    if (ErrorRef error = execute("BEGIN IMMEDIATE"))
        return error;
    inTransaction_ = true;
    ErrorRef error = flushJournalOfOthers();
    if (!error)
        error = body();
    inTransaction_ = false;
    const ErrorRef failureInside = std::exchange(transactionFailure_, nullptr);
    if (!error)
        error = failureInside;
    if (!error)
        error = execute("COMMIT");
    if (error && !sqlite3_get_autocommit(connection_))
        execute("ROLLBACK");
    return error;
}

ErrorRef SettingsDatabase::flushJournalOfOthers() {
    const Result<std::int64_t> version = readInteger("PRAGMA data_version");
    if (!version)
        return version.error();
    if (version.value() == journalFlushedAt_)
        return nullptr;
    const std::string path = path_ + "-journal";
    const FileDescriptor journal(
        retryingInterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC); }));
    if (!journal.isOpen() && errno != ENOENT)
        return noted(NSError::posix(errno, path));
    if (journal.isOpen() && retryingInterrupted([&] { return ::fdatasync(journal.get()); }) != 0)
        return noted(NSError::posix(errno, path));
    journalFlushedAt_ = version.value();
    return nullptr;
}

ErrorRef SettingsDatabase::connect() {
    if (inTransaction_ || isConnectedToFile())
        return nullptr;
    disconnect();
    struct stat status = {};
    if (::stat(path_.c_str(), &status) != 0)
        return errno == ENOENT ? nullptr : NSError::posix(errno, path_);
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;
    ErrorRef error;
    if (sqlite3_open_v2(path_.c_str(), &connection_, flags, nullptr) != SQLITE_OK)
        error = failure("open " + path_);
    else
        error = checkFormat();
    if (error) {
        disconnect();
        return error;
    }
    device_ = status.st_dev;
    inode_ = status.st_ino;
    return nullptr;
}

void SettingsDatabase::distrustSchema() {
    // The file is data of others too: a view in place of the table, or a trigger on it, would run what its
    // writer wanted, for ever if need be.
    for (const int feature :
         {SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_TRUSTED_SCHEMA})
        sqlite3_db_config(connection_, feature, 0, nullptr);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

ErrorRef SettingsDatabase::checkFormat() {
    distrustSchema();
    sqlite3_busy_handler(connection_, waitForLock, nullptr);
    const Result<std::int64_t> version = readInteger("PRAGMA user_version");
    if (!version)
        return version.error();
    if (version.value() > formatVersion)
        return std::make_shared<NSError>(sqliteErrorDomain, SQLITE_MISMATCH,
                                         path_ + ": format " + std::to_string(version.value()) +
                                             " is later than this program's format " +
                                             std::to_string(formatVersion));
    // A rollback journal that is truncated rather than deleted: with synchronous FULL its end is flushed, so
    // a committed step survives a power cut, and no file is made and removed at each step.
    if (ErrorRef error = execute("PRAGMA journal_mode = TRUNCATE"))
        return error;
    return execute("PRAGMA synchronous = FULL");
}

ErrorRef SettingsDatabase::create() {
    if (inTransaction_)
        return transactionFailure_;
    if (ErrorRef error = connect())
        return error;
    if (!connection_) {
        const std::string folder = URL::fileURL(path_).deletingLastPathComponent().path();
        if (ErrorRef error = FileManager::defaultManager().createDirectory(folder))
            return error;
        // Made beforehand so that neither the file nor its journal is ever readable by others.
        FileDescriptor file(retryingInterrupted(
            [&] { return ::open(path_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600); }));
        if (!file.isOpen())
            return NSError::posix(errno, path_);
        file.reset();
        if (ErrorRef error = FileManager::defaultManager().synchronizeDirectory(folder))
            return error;
        if (ErrorRef error = connect())
            return error;
    }
    const Result<bool> made = holdsSettings();
    if (!made || made.value())
        return made.error();
    // Large pages: the ledger is one long value, and fewer pages are fewer writes (docs/libraries.md).
    for (const char* const sql : {"PRAGMA page_size = 65536", "BEGIN IMMEDIATE",
                                  "CREATE TABLE IF NOT EXISTS settings(key TEXT PRIMARY KEY, "
                                  "kind TEXT NOT NULL CHECK(kind IN ('text','data')), value BLOB NOT NULL)",
                                  "PRAGMA user_version = 1", "COMMIT"}) {
        if (ErrorRef error = execute(sql)) {
            if (!sqlite3_get_autocommit(connection_))
                execute("ROLLBACK");
            return error;
        }
    }
    return nullptr;
}

Result<bool> SettingsDatabase::holdsSettings() {
    if (transactionFailure_)
        return transactionFailure_;
    if (!connection_ || tableSeen_)
        return connection_ != nullptr;
    const Result<std::int64_t> tables = readInteger(tableCountQuery);
    if (!tables)
        return tables.error();
    tableSeen_ = tables.value() > 0;
    return tableSeen_;
}

void SettingsDatabase::disconnect() {
    tableSeen_ = false;
    journalFlushedAt_.reset();
    sqlite3_close(std::exchange(connection_, nullptr));
}

bool SettingsDatabase::isConnectedToFile() const {
    struct stat status = {};
    return connection_ && ::stat(path_.c_str(), &status) == 0 && status.st_dev == device_ &&
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
    std::string description(what);
    description += ": ";
    description += sqlite3_errmsg(connection_);
    return noted(std::make_shared<NSError>(sqliteErrorDomain, sqlite3_errcode(connection_), description));
}

ErrorRef SettingsDatabase::noted(ErrorRef error) {
    if (inTransaction_ && !transactionFailure_)
        transactionFailure_ = error;
    return error;
}

} // namespace sela
