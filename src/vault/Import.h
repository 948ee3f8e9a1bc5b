#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"
#include "store/DefaultAlbum.h"
#include "store/SharedItemLedger.h"
#include "vault/ImportPlace.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sela {

/// Moves the files that the ledger records from the group's container to albums below a folder. One thread.
///
/// May be killed at any point and run again: no file is lost, none is imported twice, none is overwritten.
/// Files are imported in batches: their targets are noted in the settings; each is linked or copied to its
/// target; the folders are flushed; all entries are removed from the ledger in one transaction; then the
/// files are unlinked from "Items". A file that cannot be placed keeps its entry, and the others go on.
class Import {
public:
    struct Options {
        URL into;          ///< made if missing; refused inside the container
        bool keep = false; ///< copy only: the ledger and "Items" stay as they are
        /// Remove unrecorded files of "Items" that are older than a day. Nothing is removed while an
        /// unreadable ledger is kept in the settings or these are missing, since a ledger that is kept or
        /// lost may record them, nor while a share is saving.
        bool prune = false;
        bool dropMissing = false; ///< remove entries whose file is missing from the ledger

        /// Called with the number of the next entry, from 1 on, and the number of entries.
        std::function<void(std::size_t entry, std::size_t count)> progress = {};

        /// Asked before each file and after each block of one that is copied; once it is true the import ends
        /// in order, with the file under way.
        std::function<bool()> isStopped = [] { return false; };
    };

    /// The outcome for the entries and files; each line is for the user.
    struct Report {
        std::vector<std::string> imported; ///< paths
        std::vector<std::string> dropped;  ///< names of missing files whose entries were dropped
        std::vector<std::string> left;     ///< entries that stay since their files cannot be imported
        std::size_t waiting = 0;           ///< entries that were not finished, since the import ended early
        std::vector<std::string> problems; ///< what else could not be done
        ErrorRef failure; ///< why the import could not go on, which is among the problems; mostly null
        std::vector<std::string> unrecorded; ///< names in "Items" that no entry has
        std::vector<std::string> pruned;

        bool isComplete() const { return left.empty() && problems.empty(); }
    };

    explicit Import(Options options) : options_(std::move(options)) {}

    /// Imports everything. The error when it could not begin: no group, a target inside its container,
    /// settings or ledger that cannot be read, another import that is running.
    Result<Report> run();

private:
    using Entry = SharedItemLedger::Entry;

    /// An entry whose file has a target.
    struct Placement {
        Entry entry;
        URL source;
        URL target;
        NameForm form = NameForm::own; ///< of the target's name
    };

    /// The files that are imported together.
    struct Batch {
        std::vector<Placement> placements;
        std::int64_t bytes = 0;
        std::vector<Entry> missing; ///< entries to be dropped
    };

    /// Finishes the files that an interrupted import had placed.
    ErrorRef recover();

    /// Null when every entry was imported or has its line in the report; otherwise why the import cannot go
    /// on.
    ErrorRef importAll(std::vector<Entry> entries);

    /// Finds the entry's file and its target, and adds them to the batch.
    ErrorRef plan(const Entry& entry, Batch& batch);
    Result<URL> makeFolder(const SharedItem& item);
    URL freePlace(const URL& folder, const SharedItem& item);

    /// Imports a batch; entries that must be planned again are added to `again`.
    ErrorRef finish(const Batch& batch, std::vector<Entry>& again);

    /// Puts the files in place and returns those that are; the folders are not flushed yet.
    std::vector<Placement> putInPlace(const Batch& batch, std::vector<Entry>& again);
    ErrorRef putAt(const URL& source, const URL& target);
    ErrorRef copyTo(const URL& source, const URL& target);

    /// Flushes the folders of these, removes their entries and the missing ones from the ledger, and unlinks
    /// their files from "Items".
    ErrorRef takeOut(const std::vector<Placement>& placed, const std::vector<Entry>& missing);

    /// Reports the files of "Items" that no entry has, and removes those that are to be pruned.
    ErrorRef findUnrecorded();
    Result<std::string> obstacleToPruning(bool isLocked) const;

    URL temporaryCopy() const;
    URL itemURL(const std::string& fileName) const;
    void addLeft(const SharedItem& item, const ErrorRef& error);

    const Options options_;
    DefaultAlbum defaultAlbum_;
    std::optional<URL> container_;
    Report report_;
    NameForm form_ = NameForm::own;       ///< the names that the target turned out to allow
    std::set<std::string> madeFolders_;   ///< made and flushed by this run
    std::map<std::string, int> attempts_; ///< how many numbers of a path were tried
    bool journalNoted_ = false;
};

} // namespace sela
