#include "faults/RecordingDisk.h"

#include "support/TemporaryHome.h"

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <unistd.h>

namespace sela {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t sectorSize = 512;

std::pair<std::string, std::string> folderAndName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return {path.substr(0, slash), path.substr(slash + 1)};
}

/// Which of this many changes survive, in order.
std::vector<bool> survivors(std::size_t count, RecordingDisk::Survival survival, std::mt19937& chance) {
    using enum RecordingDisk::Survival;
    std::vector<bool> kept(count, survival == everything);
    if (survival == some)
        std::generate(kept.begin(), kept.end(), [&] { return chance() % 2 == 0; });
    return kept;
}

} // namespace

RecordingDisk::RecordingDisk(const fs::path& root) : root_(root) {
    scan(root);
}

std::size_t RecordingDisk::scan(const fs::path& path) {
    const std::size_t number = initial_.size();
    present_[path.string()] = number;
    initial_.push_back({fs::is_directory(path), {}, {}});
    if (!initial_[number].isFolder)
        initial_[number].bytes = contentOf(path);
    else
        for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
            const std::size_t below = scan(entry.path());
            initial_[number].entries[entry.path().filename().string()] = below;
        }
    return number;
}

std::size_t RecordingDisk::made(const std::string& path, bool isFolder) {
    // Its content consists of changes only.
    initial_.push_back({isFolder, {}, {}});
    setEntry(path, initial_.size() - 1);
    return initial_.size() - 1;
}

void RecordingDisk::setEntry(const std::string& path, std::optional<std::size_t> object) {
    const auto [folder, name] = folderAndName(path);
    if (object)
        present_[path] = *object;
    else
        present_.erase(path);
    changes_.push_back({Change::Kind::entries, present_.at(folder), 0, {}, {{name, object}}});
}

int RecordingDisk::recorded(int result, int descriptor, Change::Kind kind, std::int64_t length) {
    if (const auto file = open_.find(descriptor); result == 0 && file != open_.end())
        changes_.push_back({kind, file->second, static_cast<std::size_t>(length), {}, {}});
    return result;
}

int RecordingDisk::open(const std::string& path, int flags, mode_t mode) {
    const bool existed = present_.contains(path);
    const int descriptor = DiskWrapper::open(path, flags, mode);
    if (descriptor < 0)
        return descriptor;
    open_.erase(descriptor); // of a file that was closed
    if (!path.starts_with(root_.string()))
        return descriptor;
    open_[descriptor] = existed ? present_[path] : made(path, false);
    if (existed && flags & O_TRUNC)
        recorded(0, descriptor, Change::Kind::resize);
    return descriptor;
}

std::int64_t RecordingDisk::pwrite(int descriptor, DataView bytes, std::int64_t offset) {
    const std::int64_t count = DiskWrapper::pwrite(descriptor, bytes, offset);
    if (const auto file = open_.find(descriptor); count > 0 && file != open_.end())
        changes_.push_back({Change::Kind::write,
                            file->second,
                            static_cast<std::size_t>(offset),
                            std::string(asText(bytes.first(static_cast<std::size_t>(count)))),
                            {}});
    return count;
}

std::int64_t RecordingDisk::copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) {
    const std::int64_t count = DiskWrapper::copyFileRange(from, to, offset, length);
    if (const auto file = open_.find(to); count > 0 && file != open_.end()) {
        std::string bytes(static_cast<std::size_t>(count), 0);
        EXPECT_EQ(::pread(from, bytes.data(), bytes.size(), ::lseek(from, 0, SEEK_CUR) - count), count);
        changes_.push_back(
            {Change::Kind::write, file->second, static_cast<std::size_t>(offset), std::move(bytes), {}});
    }
    return count;
}

int RecordingDisk::ftruncate(int descriptor, std::int64_t length) {
    return recorded(DiskWrapper::ftruncate(descriptor, length), descriptor, Change::Kind::resize, length);
}

int RecordingDisk::fallocate(int descriptor, std::int64_t length) {
    return recorded(DiskWrapper::fallocate(descriptor, length), descriptor, Change::Kind::extend, length);
}

int RecordingDisk::fsync(int descriptor) {
    return recorded(DiskWrapper::fsync(descriptor), descriptor, Change::Kind::flush);
}

int RecordingDisk::fdatasync(int descriptor) {
    return recorded(DiskWrapper::fdatasync(descriptor), descriptor, Change::Kind::flush);
}

int RecordingDisk::mkdir(const std::string& path, mode_t mode) {
    const int result = DiskWrapper::mkdir(path, mode);
    if (result == 0)
        made(path, true);
    return result;
}

int RecordingDisk::link(const std::string& from, const std::string& to) {
    const int result = DiskWrapper::link(from, to);
    if (result == 0)
        setEntry(to, present_.at(from));
    return result;
}

int RecordingDisk::rename(const std::string& from, const std::string& to, unsigned flags) {
    const int result = DiskWrapper::rename(from, to, flags);
    if (result != 0)
        return result;
    setEntry(to, present_.at(from));
    const bool oneStep = folderAndName(from).first == folderAndName(to).first;
    setEntry(from, std::nullopt);
    if (oneStep) {
        auto removal = std::move(changes_.back().entries.front());
        changes_.pop_back();
        changes_.back().entries.push_back(std::move(removal));
    }
    return result;
}

int RecordingDisk::unlink(const std::string& path) {
    const int result = DiskWrapper::unlink(path);
    if (result == 0)
        setEntry(path, std::nullopt);
    return result;
}

void RecordingDisk::apply(const Change& change, Object& object, std::size_t bytes) {
    std::string& content = object.bytes;
    if (change.kind == Change::Kind::write) {
        content.resize(std::max(content.size(), change.offset + bytes));
        content.replace(change.offset, bytes, change.bytes, 0, bytes);
    } else if (change.kind == Change::Kind::extend) {
        content.resize(std::max(content.size(), change.offset));
    } else if (change.kind == Change::Kind::resize) {
        content.resize(change.offset);
    } else {
        for (const auto& [name, entry] : change.entries) {
            object.entries.erase(name);
            if (entry)
                object.entries[name] = *entry;
        }
    }
}

RecordingDisk::State RecordingDisk::stateAfter(std::size_t changes, Survival contents, Survival entries,
                                               std::mt19937& chance) const {
    State state = initial_;
    std::vector<std::vector<const Change*>> pending(state.size());
    for (const Change& change : std::span(changes_).first(changes)) {
        std::vector<const Change*>& before = pending[change.object];
        if (change.kind != Change::Kind::flush) {
            before.push_back(&change);
            continue;
        }
        for (const Change* const flushed : before)
            apply(*flushed, state[change.object], flushed->bytes.size());
        before.clear();
    }
    for (std::size_t i = 0; i < state.size(); ++i) {
        const Survival survival = state[i].isFolder ? entries : contents;
        const std::vector<bool> kept = survivors(pending[i].size(), survival, chance);
        for (std::size_t j = 0; j < kept.size(); ++j) {
            const std::size_t size = pending[i][j]->bytes.size();
            const bool torn = survival != Survival::everything && chance() % 4 == 0;
            if (kept[j])
                apply(*pending[i][j], state[i],
                      torn ? std::min(size, chance() % (size / sectorSize + 1) * sectorSize) : size);
        }
    }
    return state;
}

void RecordingDisk::restore(const State& state) const {
    fs::remove_all(root_);
    std::map<std::size_t, fs::path> written;
    const std::function<void(std::size_t, const fs::path&)> write = [&](std::size_t number,
                                                                        const fs::path& path) {
        const Object& object = state[number];
        if (object.isFolder) {
            fs::create_directories(path);
            for (const auto& [name, entry] : object.entries)
                write(entry, path / name);
        } else if (const auto [known, isNew] = written.emplace(number, path); !isNew) {
            fs::create_hard_link(known->second, path);
        } else {
            std::ofstream(path, std::ios::binary) << object.bytes;
        }
    };
    write(0, root_);
}

} // namespace sela
