#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace sela {

/// The SQLite file behind `UserDefaults`: one connection per process and file, kept open. Thread-safe.
class SettingsDatabase {
public:
    /// The database of the file at `path`, connected if the file exists; the error when it cannot be used.
    static Result<std::shared_ptr<SettingsDatabase>> open(const std::string& path);

    explicit SettingsDatabase(std::string path);
    ~SettingsDatabase();
    SettingsDatabase(const SettingsDatabase&) = delete;
    SettingsDatabase& operator=(const SettingsDatabase&) = delete;

    /// The value of that kind ("text" or "data") under a key.
    Result<std::optional<Data>> read(std::string_view key, std::string_view kind);

    Result<std::vector<std::string>> keys(std::string_view prefix);

    ErrorRef write(std::string_view key, std::string_view kind, DataView value);
    ErrorRef remove(std::string_view key);

    ErrorRef transaction(const std::function<ErrorRef()>& body);

private:
    struct Statement;

    /// Connects to the file if it exists and the connection is not to it already. Without a file there is no
    /// connection and no error.
    ErrorRef connect();
    ErrorRef checkFormat();
    void distrustSchema();

    /// Makes the file and its table where they are missing, then connects.
    ErrorRef create();

    /// Whether there is a file with its table in it; the error when that cannot be told, or when the
    /// transaction around has failed.
    Result<bool> holdsSettings();

    void disconnect();
    bool isConnectedToFile() const;

    ErrorRef execute(const char* sql);
    Result<std::int64_t> readInteger(const char* sql);

    /// Flushes the journal when another program has stored something since the last time. If that was killed
    /// between truncating the journal and flushing it, a power cut could bring the old journal back with
    /// parts of the next one in it.
    ErrorRef flushJournalOfOthers();

    /// Reads back what was just stored: a damaged index takes in a row that nothing finds again.
    ErrorRef checkStored(std::string_view key, std::string_view kind, DataView value);

    /// The error of the connection's last failed call, noted.
    ErrorRef failure(std::string_view what);

    /// Lets a transaction around it fail too.
    ErrorRef noted(ErrorRef error);

    const std::string path_;
    std::recursive_mutex mutex_;
    sqlite3* connection_ = nullptr;
    unsigned long long device_ = 0;
    unsigned long long inode_ = 0;
    bool tableSeen_ = false;
    bool inTransaction_ = false;
    std::optional<std::int64_t> journalFlushedAt_; ///< the connection's data_version then
    /// The first failure inside the transaction. After one nothing more is read or stored in it: SQLite may
    /// have rolled it back already, and what came then would stand on its own.
    ErrorRef transactionFailure_;
};

} // namespace sela
