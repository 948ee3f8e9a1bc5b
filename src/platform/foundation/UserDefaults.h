#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

class SettingsDatabase;

/// Whether an error of the settings means that another program keeps them locked, so that a retry may
/// succeed.
bool isBusy(const ErrorRef& error);

/// The settings that the programs of a group share: texts and data by key, in one SQLite file,
/// `<config>/sela/<suiteName>.sqlite3` (docs/formats.md describes it).
///
/// A handle is opened at each use and discarded; the last connection is kept for the next one. Each handle is
/// used by one thread at a time. Handles, of one process or of several, exclude each other by locks on the
/// file, and wait up to the handle's patience for each lock. A handle must not be used after a fork.
class UserDefaults {
public:
    using Patience = std::chrono::milliseconds;

    /// Far more than other programs need for any change; and what a thread that draws may spend.
    static constexpr Patience longPatience{10'000};
    static constexpr Patience shortPatience{100};

    /// Opens the settings of a suite; the error when they cannot be used: the file is unreadable, no
    /// database, locked for too long, or of a later format. A file that does not exist is no failure: it
    /// holds nothing, and the first value stored makes it.
    static Result<UserDefaults> open(std::string_view suiteName, Patience patience = longPatience);

    /// The same, absent (and the reason logged) when they cannot be used.
    static std::optional<UserDefaults> withSuiteName(std::string_view suiteName,
                                                     Patience patience = longPatience);

    /// Whether another program keeps the settings of a suite locked, so that nothing can be read there, for
    /// longer than this. It may release the lock at any moment.
    static bool areBusy(std::string_view suiteName, Patience patience);

    ~UserDefaults();
    UserDefaults(UserDefaults&&) noexcept;
    UserDefaults& operator=(UserDefaults&&) noexcept;

    /// The data under a key; absent when there is none, when a text stands there, or when reading fails
    /// (which is logged).
    std::optional<Data> data(std::string_view key) const;

    /// The same for callers that must tell a failure from an absent value: the error, or the data if there
    /// are any.
    Result<std::optional<Data>> readData(std::string_view key) const;

    /// The text under a key, which is a passcode in this system; absent when there is none, when data stand
    /// there, or when reading fails (which is logged).
    std::optional<Secret> string(std::string_view key) const;

    /// The keys that hold a value and begin with `prefix`, sorted by their bytes; or why they cannot be read.
    Result<std::vector<std::string>> keys(std::string_view prefix) const;

    /// What is wrong with the file that holds them, all of which is read; null when nothing is.
    ErrorRef checkIntegrity() const;

    /// Stores a value under a key in place of what was there. When it returns without an error, the value is
    /// flushed.
    ErrorRef setData(std::string_view key, DataView value);
    ErrorRef setString(std::string_view key, std::string_view value);

    /// Removes the value under a key, if there is one.
    ErrorRef removeObject(std::string_view key);

private:
    friend class SettingsTransaction;

    explicit UserDefaults(std::unique_ptr<SettingsDatabase> database);

    std::unique_ptr<SettingsDatabase> database_;
};

/// A transaction on the settings: no one else changes them from `begin` to the end, and afterwards either all
/// changes are flushed or none are made. All reads and writes that belong to it go through this object.
///
/// The first failure is kept: after it nothing more is read or stored, and `commit` returns it, so that the
/// calls in between need not be checked one by one. Used by one thread at a time.
class SettingsTransaction {
public:
    /// Begins a transaction and takes over the handle; the error when it cannot begin.
    static Result<SettingsTransaction> begin(UserDefaults settings);

    /// Rolls back what was not committed.
    ~SettingsTransaction();
    SettingsTransaction(SettingsTransaction&&) noexcept = default;
    SettingsTransaction& operator=(SettingsTransaction&&) = delete;

    /// The data under a key as changed by this transaction, if there are any; after a failure, the first
    /// failure.
    Result<std::optional<Data>> readData(std::string_view key);

    void setData(std::string_view key, DataView value);
    void setString(std::string_view key, std::string_view value);
    void removeObject(std::string_view key);

    /// Commits. Null when everything is flushed; otherwise the first failure, and nothing is changed.
    ErrorRef commit();

private:
    explicit SettingsTransaction(UserDefaults settings);

    UserDefaults settings_;
    ErrorRef failure_;
};

} // namespace sela
