#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"
#include "store/SharedItemLedger.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sela {

/// Takes what the ledger records out of the group's container and into albums below a folder. One thread.
///
/// May be killed at any point and run again: no file is lost, none is imported twice, none is overwritten. A
/// file first gets its place in its album, then leaves the ledger, then leaves "Items"; which file is under
/// way, and to where, is noted in the settings before.
class Import {
public:
    struct Options {
        URL into;          ///< made if missing
        bool keep = false; ///< copy only: the ledger and "Items" stay as they are
        /// Remove files of "Items" that nobody recorded and that are older than a day. While an unreadable
        /// ledger is kept in the settings nothing is removed: it may know them.
        bool prune = false;
    };

    /// What became of the entries and files; each line is for a person.
    struct Report {
        std::vector<std::string> imported;
        std::vector<std::string> problems;   ///< entries that stay in the ledger, and why
        std::vector<std::string> unrecorded; ///< names in "Items" that no entry knows
        std::vector<std::string> pruned;
    };

    explicit Import(Options options) : options_(std::move(options)) {}

    /// Imports everything. The error when nothing could be begun: no group, settings or ledger that cannot be
    /// read, another import that is running.
    Result<Report> run();

private:
    /// A file on its way: what the settings note under "importJournal".
    struct Journal;

    ErrorRef recover();

    /// Finishes what the journal notes, if the file got to its place.
    ErrorRef finish(const Journal& journal, const URL& target);
    ErrorRef importEntry(const SharedItemLedger::Entry& entry);
    Result<URL> place(const SharedItemLedger::Entry& entry, const URL& source, const URL& folder);
    ErrorRef putAt(const URL& source, const URL& target);
    URL temporaryCopy() const;
    ErrorRef copyTo(const URL& source, const URL& target);
    ErrorRef noteJournal(const Journal& journal);
    ErrorRef takeOutOfLedger(const SharedItemLedger::Entry& entry);
    ErrorRef findUnrecorded();
    URL itemURL(const std::string& fileName) const;

    const Options options_;
    std::optional<URL> container_;
    Report report_;
    std::set<std::string> madeFolders_; ///< made and brought to the disk by this run
    bool journalNoted_ = false;         ///< a file is on its way, and the settings say so
};

} // namespace sela
