#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sela {

class SettingsDatabase;

/// The settings that the programs of a group share: texts and data by key, in one SQLite file,
/// `<config>/sela/<suiteName>.sqlite3` (docs/formats.md describes it).
///
/// A handle is opened at each use and thrown away; the connection behind it is kept for the life of the
/// process. Thread-safe: operations of one process take turns, those of several are kept apart by the file's
/// locks, waiting up to ten seconds for each other.
class UserDefaults {
public:
    /// Opens the settings of a suite. Absent (and the reason logged) when they cannot be used: the file is
    /// unreadable, no database, locked for too long, or of a later format. A file that does not exist is no
    /// failure: it holds nothing, and the first value stored makes it.
    static std::optional<UserDefaults> withSuiteName(std::string_view suiteName);

    /// The data under a key; absent when there is none, when a text stands there, or when reading fails
    /// (which is logged).
    std::optional<Data> data(std::string_view key) const;

    /// The same for whoever must not take a failure for an absent value: its error, or the data if there are
    /// any.
    Result<std::optional<Data>> readData(std::string_view key) const;

    /// The text under a key; absent when there is none, when data stand there, or when reading fails (which
    /// is logged).
    std::optional<std::string> string(std::string_view key) const;

    /// The keys that hold a value and begin with `prefix`, sorted by their bytes; or why they cannot be read.
    Result<std::vector<std::string>> keys(std::string_view prefix) const;

    /// Stores a value under a key in place of what was there. On return without an error it is on the disk.
    ErrorRef setData(std::string_view key, DataView value);
    ErrorRef setString(std::string_view key, std::string_view value);

    /// Removes the value under a key, if there is one.
    ErrorRef removeObject(std::string_view key);

    /// Runs `body` on the calling thread as one step: nobody else changes the settings meanwhile, and either
    /// all that it stored is on the disk afterwards or nothing is. Nothing is kept when `body` returns an
    /// error, or when any reading or storing inside failed, even if the body took no notice. Returns that
    /// error; null when the step is done. `body` must not wait for another thread that uses the settings.
    ErrorRef transaction(const std::function<ErrorRef()>& body);

private:
    explicit UserDefaults(std::shared_ptr<SettingsDatabase> database) : database_(std::move(database)) {}

    std::shared_ptr<SettingsDatabase> database_;
};

} // namespace sela
