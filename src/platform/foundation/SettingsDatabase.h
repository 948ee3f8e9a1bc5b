#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct sqlite3;

namespace sela {

/// A connection to the SQLite file behind `UserDefaults`. Used by one thread at a time; there may be any
/// number for one file.
class SettingsDatabase {
public:
    /// A connection to the file at `path`, which waits for each lock as long as `patience` lasts; the error
    /// when the file cannot be used. Without a file there is no error, and it is made when a transaction
    /// begins.
    static Result<std::unique_ptr<SettingsDatabase>> open(const std::string& path,
                                                          std::chrono::milliseconds patience);

    /// Whether an error means that waiting for another's lock timed out.
    static bool isBusy(const ErrorRef& error);

    /// Keeps a connection for the next `open`, in place of one that was kept before, unless something failed
    /// in it. A connection knows what it flushed, and need not flush it again.
    static void giveBack(std::unique_ptr<SettingsDatabase> database);

    explicit SettingsDatabase(std::string path) : path_(std::move(path)) {}
    ~SettingsDatabase();
    SettingsDatabase(const SettingsDatabase&) = delete;
    SettingsDatabase& operator=(const SettingsDatabase&) = delete;

    /// Whether there is a file with its table in it; the error when that cannot be determined.
    Result<bool> holdsSettings();

    /// Null when something can be read at this moment, or when there is no file.
    ErrorRef checkReadable();

    /// The value of this kind ("text" or "data") under a key.
    Result<std::optional<Data>> read(std::string_view key, std::string_view kind);

    /// The keys that begin with `prefix`, sorted by their bytes.
    Result<std::vector<std::string>> keys(std::string_view prefix);

    /// Reads the whole file; the error says the first thing that is wrong with it.
    ErrorRef checkIntegrity();

    /// Begins a transaction, making the file if it is missing. No one else can store anything until its end.
    ErrorRef begin();

    /// Stores or removes a value inside a transaction.
    ErrorRef write(std::string_view key, std::string_view kind, DataView value);
    ErrorRef remove(std::string_view key);

    /// Commits the transaction durably; rolls it back when there is a `failure`, or one of the commit, which
    /// is returned.
    ErrorRef end(ErrorRef failure);

    /// Rolls back a transaction, if one has begun.
    void rollBack();

private:
    struct Statement;

    static int waitForLock(void* database, int stepsBefore);

    /// Connects to the file if it exists.
    ErrorRef connect();
    ErrorRef checkFormat();
    void distrustSchema();
    ErrorRef createFile();
    ErrorRef createTable();

    bool isConnectedToFile() const;

    ErrorRef execute(const char* sql);
    Result<std::int64_t> readInteger(const char* sql);

    /// Flushes the journal when another program has stored something since the last time. If that was killed
    /// between truncating the journal and flushing it, a power cut could bring the old journal back with
    /// parts of the next one in it.
    ErrorRef flushJournalOfOthers();

    /// Reads back what was just stored: with a damaged index a row may be stored but never found again.
    ErrorRef checkStored(std::string_view key, std::string_view kind, DataView value);

    /// The error of the connection's last failed call.
    ErrorRef failure(std::string_view what);

    const std::string path_;
    sqlite3* connection_ = nullptr;
    std::chrono::milliseconds patience_{0};
    unsigned long long device_ = 0;
    unsigned long long inode_ = 0;
    bool tableSeen_ = false;
    bool failed_ = false;
    std::optional<std::int64_t> journalFlushedAt_; ///< the connection's data_version then
};

} // namespace sela
