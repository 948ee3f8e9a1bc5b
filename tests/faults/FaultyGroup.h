#pragma once

#include "platform/foundation/URL.h"
#include "store/SharedItem.h"
#include "store/SharedItemLedger.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace sela {

/// A group in a home of its own, always at the same path, that faults are made to and that is looked at
/// afterwards. Everything that uses the store runs in processes apart (see TracedProcess.h), so that the
/// settings are opened afresh each time; this object only knows what was put in.
class FaultyGroup {
public:
    FaultyGroup();
    ~FaultyGroup();
    FaultyGroup(const FaultyGroup&) = delete;
    FaultyGroup& operator=(const FaultyGroup&) = delete;

    const std::filesystem::path& home() const { return home_; }
    std::filesystem::path settingsFile() const;
    std::filesystem::path into() const { return home_ / "into"; }

    /// Two long records are more than a page of the settings.
    enum class Records { usual, longOnes };

    /// Makes the group anew: provisioned; with `entries`, that many files recorded before.
    void reset(int entries, Records records = Records::usual);

    /// The content of an item: of this size, and of no other item.
    const std::string& content(const std::string& fileName, std::size_t size);

    /// Writes a source of that content, outside of the home.
    URL source(const std::string& fileName, std::size_t size);

    /// The record of a file; a long one where the name tells.
    static SharedItem item(const std::string& fileName);

    // In a process apart:

    /// One save with its main loop; whether it was reported done.
    static bool save(const std::string& fileName, const URL& source);
    static bool saveData(const std::string& fileName, const std::string& bytes);

    /// One import into `into()`; whether it imported everything. Without `links` every file is copied, as to
    /// another disk.
    bool import(bool links = true) const;

    /// Publishes the album catalogue of that number, with its passcode and its cover.
    bool publish(int number) const;

    /// What is wrong with the group, empty for nothing: an entry without its whole file; an entry of before
    /// that went without having been placed by an import; a `saved` item that is not recorded; a `published`
    /// number (0: not known) that is not what readers see, or a catalogue and passcode of different numbers;
    /// and then a share or an import that does not work any more.
    std::string wrong(const std::string& saved, int published);

private:
    std::string wrongNow(const std::string& saved, int published);
    std::string wrongAfterNextRun();
    std::string wrongPublication(int published) const;

    /// The names of items whose content was placed below `into()`; a file there that holds something else is
    /// "torn".
    std::vector<std::string> placed() const;

    std::filesystem::path top_;
    std::filesystem::path home_;
    std::map<std::string, std::string> contents_; ///< by file name
    std::vector<std::string> before_;             ///< names of the files recorded by `reset`
};

} // namespace sela
