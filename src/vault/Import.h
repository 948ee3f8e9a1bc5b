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

/// Takes what the ledger records out of the group's container and into albums below a folder. One thread.
///
/// May be killed at any point and run again: no file is lost, none is imported twice, none is overwritten.
/// Files go in batches: their places are noted in the settings; each gets its place in its album; the folders
/// are flushed; all leave the ledger in one step; then they leave "Items". A file that cannot be placed keeps
/// its entry, and the others go on.
class Import {
public:
    struct Options {
        URL into;          ///< made if missing
        bool keep = false; ///< copy only: the ledger and "Items" stay as they are
        /// Remove files of "Items" that nobody recorded and that are older than a day. While an unreadable
        /// ledger is kept in the settings nothing is removed: it may know them. Nor while somebody shares.
        bool prune = false;
        bool dropMissing = false; ///< take entries whose file is missing out of the ledger

        /// Told which entry comes next, from 1 on, and how many there are.
        std::function<void(std::size_t entry, std::size_t count)> progress = {};
    };

    /// What became of the entries and files; each line is for a person.
    struct Report {
        std::vector<std::string> imported; ///< paths
        std::vector<std::string> dropped;  ///< names of missing files whose entries were dropped
        std::vector<std::string> problems; ///< entries that stay in the ledger, and whatever else went wrong
        std::vector<std::string> unrecorded; ///< names in "Items" that no entry knows
        std::vector<std::string> pruned;
    };

    explicit Import(Options options) : options_(std::move(options)) {}

    /// Imports everything. The error when nothing could be begun: no group, settings or ledger that cannot be
    /// read, another import that is running.
    Result<Report> run();

private:
    using Entry = SharedItemLedger::Entry;

    /// An entry whose file has a place to go to.
    struct Placement {
        Entry entry;
        URL source;
        URL target;
        NameForm form = NameForm::own; ///< of the target's name
    };

    /// What is imported in one go.
    struct Batch {
        std::vector<Placement> placements;
        std::int64_t bytes = 0;
        std::vector<Entry> missing; ///< entries to be dropped
    };

    /// Finishes what an import that was stopped had placed.
    ErrorRef recover();

    /// Null when every entry was imported or has its line in the report; otherwise why nothing can go on.
    ErrorRef importAll(std::vector<Entry> entries);

    /// Finds the entry's file and its place, and puts them into the batch.
    ErrorRef plan(const Entry& entry, Batch& batch);
    Result<URL> makeFolder(const SharedItem& item);
    URL freePlace(const URL& folder, const SharedItem& item);

    /// Imports a batch; entries that are to be planned anew are added to `again`.
    ErrorRef finish(const Batch& batch, std::vector<Entry>& again);

    /// Puts the files in place and returns those that are; the folders are not flushed yet.
    std::vector<Placement> putInPlace(const Batch& batch, std::vector<Entry>& again);
    ErrorRef putAt(const URL& source, const URL& target);
    ErrorRef copyTo(const URL& source, const URL& target);

    /// Flushes the folders of these, takes their entries and others out of the ledger, and their files out of
    /// "Items".
    ErrorRef takeOut(const std::vector<Placement>& placed, const std::vector<Entry>& missing);
    ErrorRef findUnrecorded();

    URL temporaryCopy() const;
    URL itemURL(const std::string& fileName) const;
    void addProblem(const SharedItem& item, const ErrorRef& error);

    const Options options_;
    DefaultAlbum defaultAlbum_;
    std::optional<URL> container_;
    Report report_;
    NameForm form_ = NameForm::own;       ///< what the target turned out to hold
    std::set<std::string> madeFolders_;   ///< made and flushed by this run
    std::map<std::string, int> attempts_; ///< how many numbers of a path were tried
    bool journalNoted_ = false;
};

} // namespace sela
