#pragma once

#include "support/LogCapture.h"

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace sela {

/// A group in a home folder of its own, always at the same path, for injecting faults and checking the
/// result.
class FaultyGroup {
public:
    FaultyGroup();
    ~FaultyGroup();
    FaultyGroup(const FaultyGroup&) = delete;
    FaultyGroup& operator=(const FaultyGroup&) = delete;

    const std::filesystem::path& home() const { return home_; }
    std::filesystem::path settingsFile() const { return home_ / "config/sela/group.sela.vault.sqlite3"; }
    std::filesystem::path items() const { return home_ / "data/sela/groups/group.sela.vault/Items"; }

    /// Two long records are more than a page of the settings.
    enum class Records { usual, longOnes };

    /// Creates the group again: provisioned; with `entries`, that many files recorded before and a
    /// publication.
    void reset(int entries, Records records = Records::usual);

    /// The content of an item: of this size, and of no other item.
    const std::string& content(const std::string& fileName, std::size_t size);

    /// Each runs as in a new process, with its main loop. Whether it was reported done.
    bool save(const std::string& fileName, std::size_t size);
    bool saveData(const std::string& fileName, std::size_t size);

    /// Without `links` every file is copied, as to another disk.
    bool import(bool links = true) const;

    /// The album catalogue of that number, with its passcode and its cover.
    bool publish(int number) const;

    /// What is wrong with the group, empty for nothing: an entry without its whole file; an earlier entry
    /// that was removed without having been placed by an import; a `saved` item that is not recorded; a
    /// `published` number (0: not known) that is not what readers see, or a catalogue and passcode of
    /// different numbers; and a share, an import or a publication that does not work afterwards.
    std::string wrong(const std::string& saved, int published);

    /// The same after an operation that ended, or did not end, with success.
    std::string wrongBehind(const struct Operation& operation, bool succeeded);

private:
    /// Adds the file names that the ledger records; what is wrong with it or with one of the files.
    std::string readLedger(std::multiset<std::string>& recorded) const;
    std::string wrongPublication(int published) const;

    /// The names of items whose content was placed by imports; a file with other content is "torn".
    std::multiset<std::string> placed() const;

    LogCapture log_; ///< captures the log
    std::filesystem::path top_;
    std::filesystem::path home_;
    std::map<std::string, std::string> contents_; ///< by file name
    std::set<std::string> before_;                ///< names of the files recorded by `reset`
};

/// An operation of a program on a group.
struct Operation {
    std::string name;
    int entries; ///< recorded before
    FaultyGroup::Records records;
    std::function<bool(FaultyGroup&)> run;
    std::string saves = {}; ///< the item that is recorded when it has succeeded
    int publishes = 0;      ///< the catalogue that is published then
};

/// All of them; saved files have that size.
std::vector<Operation> operations(std::size_t size);

} // namespace sela
