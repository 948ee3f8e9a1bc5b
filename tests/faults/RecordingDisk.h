#pragma once

#include "support/DiskWrapper.h"

#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace sela {

/// Records the changes below a folder while this lives, and constructs the states that the disk may be in
/// after a power cut at any point: all that was flushed, and any subset of the rest, in any order. Only an
/// fsync of a file makes its content durable, only an fsync of a folder its entries.
class RecordingDisk : public DiskWrapper {
public:
    /// The present content of `root` counts as flushed.
    explicit RecordingDisk(const std::filesystem::path& root);

    std::size_t changes() const { return changes_.size(); }

    /// What survives of the changes that were not flushed.
    enum class Survival { nothing, everything, some };

    /// A file's bytes, or a folder's entries by name, each the number of another object.
    struct Object {
        bool isFolder = false;
        std::string bytes;
        std::map<std::string, std::size_t> entries;

        bool operator==(const Object&) const = default;
    };

    /// The root is the first of them; some may have no entry any more.
    using State = std::vector<Object>;

    /// The state after a power cut after this many changes. With `some` a write that survives may be torn at
    /// the end of a sector.
    State stateAfter(std::size_t changes, Survival contents, Survival entries, std::mt19937& chance) const;

    /// Replaces the content of the root by a state.
    void restore(const State& state) const;

    int open(const std::string& path, int flags, mode_t mode) override;
    std::int64_t pwrite(int descriptor, DataView bytes, std::int64_t offset) override;
    std::int64_t copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) override;
    int ftruncate(int descriptor, std::int64_t length) override;
    int fallocate(int descriptor, std::int64_t length) override;
    int fsync(int descriptor) override;
    int fdatasync(int descriptor) override;
    int mkdir(const std::string& path, mode_t mode) override;
    int link(const std::string& from, const std::string& to) override;
    int rename(const std::string& from, const std::string& to, unsigned flags) override;
    int unlink(const std::string& path) override;

private:
    struct Change {
        enum class Kind { write, extend, resize, entries, flush };
        Kind kind;
        std::size_t object;
        std::size_t offset = 0; ///< or the new length
        std::string bytes;
        /// Names in a folder and the objects that they refer to from then on; one atomic change.
        std::vector<std::pair<std::string, std::optional<std::size_t>>> entries;
    };

    static void apply(const Change& change, Object& object, std::size_t bytes);
    std::size_t scan(const std::filesystem::path& path);
    std::size_t made(const std::string& path, bool isFolder);
    void setEntry(const std::string& path, std::optional<std::size_t> object);
    int recorded(int result, int descriptor, Change::Kind kind, std::int64_t length = 0);

    const std::filesystem::path root_;
    State initial_;
    std::vector<Change> changes_;
    std::map<std::string, std::size_t> present_; ///< what running programs see, by path
    std::map<int, std::size_t> open_;            ///< by descriptor
};

} // namespace sela
