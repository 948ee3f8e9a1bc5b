#pragma once

#include "faults/TracedProcess.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace sela {

/// What a disk may hold of a folder after a power cut. Records what traced processes change below the folder,
/// and makes the states that are possible behind any of the changes: all that was flushed, and of the rest
/// anything, in any order. Only a flush of a file keeps its content, only a flush of a folder its entries.
class RecordedDisk : public SystemCallObserver {
public:
    /// What stands below `root` now counts as flushed.
    explicit RecordedDisk(std::filesystem::path root);

    /// Takes part in deciding about the calls; may be null.
    SystemCallObserver* companion = nullptr;

    Intervention entering(const TracedCall& call) override;
    void left(const TracedCall& call, std::int64_t result) override;

    std::size_t changes() const { return changes_.size(); }

    /// What survives of the changes that were not flushed.
    enum class Survival { nothing, everything, start, some };

    struct State;

    /// The state after a power cut behind so many changes. With `start` and `some` the last write that
    /// survives of a file may be torn.
    State state(std::size_t changes, Survival contents, Survival entries, std::mt19937& chance) const;

    /// Replaces what stands below the root by a state.
    void restore(const State& state) const;

private:
    struct Entry {
        bool isFolder = false;
        std::size_t file = 0;
    };
    using Entries = std::map<std::string, Entry>;

    struct Change {
        enum class Kind { write, extend, resize, flushFile, entries, flushFolder };
        Kind kind;
        std::size_t file = 0;
        std::int64_t offset = 0;                 ///< or the new length
        std::shared_ptr<const std::string> data; ///< of a write
        std::string folder;                      ///< its path
        /// Names of the folder and what they lead to from then on; one step of the disk.
        std::vector<std::pair<std::string, std::optional<Entry>>> renamed;
    };

    struct File {
        std::string flushed;
        std::vector<const Change*> pending;
    };
    struct Folder {
        Entries flushed;
        std::vector<const Change*> pending;
    };

    static std::string contentOf(const File& file, Survival survival, std::mt19937& chance);
    static Entries entriesOf(const Folder& folder, Survival survival, std::mt19937& chance);
    void scan(const std::filesystem::path& folder);
    void opened(const TracedCall& call, std::int64_t descriptor);
    void written(const TracedCall& call, std::int64_t count);
    void sized(const TracedCall& call, Change::Kind kind, std::uint64_t length);
    void flushed(const TracedCall& call);
    void linked(const std::string& path, const std::optional<Entry>& entry);
    void renamed(const std::string& from, const std::string& to);
    std::optional<std::size_t> fileOf(const TracedCall& call) const;
    bool isBelowRoot(const std::string& path) const;

    const std::filesystem::path root_;
    std::vector<std::string> initialContents_;
    std::map<std::string, Entries> initialFolders_;
    std::vector<Change> changes_;
    std::map<std::string, Entry> present_; ///< what running programs see, by path
    std::map<std::uint64_t, std::size_t> fileByInode_;
    std::size_t fileCount_ = 0;
};

/// The files of a state by their paths; folders have no content. Two names of one file are told apart by
/// `file`.
struct RecordedDisk::State {
    struct Item {
        bool isFolder = false;
        std::size_t file = 0;
        std::string content;
    };
    std::map<std::string, Item> items; ///< folders come before what is in them
};

} // namespace sela
