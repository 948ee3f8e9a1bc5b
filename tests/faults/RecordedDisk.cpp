#include "faults/RecordedDisk.h"

#include "support/TemporaryHome.h"

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <utility>

namespace sela {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t pageSize = 4096;
constexpr std::size_t sectorSize = 512;

std::string memoryOf(pid_t thread, std::uint64_t address, std::size_t size) {
    std::string bytes(size, '\0');
    const iovec here{bytes.data(), size};
    const iovec there{reinterpret_cast<void*>(address), size};
    const ssize_t count = ::process_vm_readv(thread, &here, 1, &there, 1, 0);
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return bytes;
}

std::string textOf(pid_t thread, std::uint64_t address) {
    std::string text;
    while (true) {
        const std::string part = memoryOf(thread, address, pageSize - address % pageSize);
        const std::size_t end = part.find('\0');
        text += part.substr(0, end);
        if (part.empty() || end != std::string::npos)
            return text;
        address += part.size();
    }
}

std::string descriptorPath(pid_t thread, std::uint64_t descriptor) {
    return "/proc/" + std::to_string(thread) + "/fd/" + std::to_string(static_cast<int>(descriptor));
}

std::string openPath(pid_t thread, std::uint64_t descriptor) {
    std::error_code ignored;
    return fs::read_symlink(descriptorPath(thread, descriptor), ignored).string();
}

std::int64_t position(pid_t thread, std::uint64_t descriptor) {
    std::ifstream info("/proc/" + std::to_string(thread) + "/fdinfo/" +
                       std::to_string(static_cast<int>(descriptor)));
    std::string label;
    std::int64_t offset = 0;
    info >> label >> offset;
    return offset;
}

std::pair<std::string, std::string> folderAndName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return {path.substr(0, slash), path.substr(slash + 1)};
}

} // namespace

RecordedDisk::RecordedDisk(fs::path root) : root_(std::move(root)) {
    scan(root_);
}

void RecordedDisk::scan(const fs::path& folder) {
    Entries& entries = initialFolders_[folder.string()];
    for (const fs::directory_entry& found : fs::directory_iterator(folder)) {
        Entry entry{found.is_directory(), 0};
        if (entry.isFolder) {
            scan(found.path());
        } else {
            struct stat status = {};
            ::stat(found.path().c_str(), &status);
            const auto [known, isNew] = fileByInode_.emplace(status.st_ino, fileCount_);
            if (isNew) {
                initialContents_.push_back(sela::contentOf(found.path()));
                ++fileCount_;
            }
            entry.file = known->second;
        }
        present_[found.path().string()] = entry;
        entries[found.path().filename().string()] = entry;
    }
}

bool RecordedDisk::isBelowRoot(const std::string& path) const {
    return path.starts_with(root_.string() + "/");
}

Intervention RecordedDisk::entering(const TracedCall& call) {
    return companion ? companion->entering(call) : Intervention();
}

void RecordedDisk::left(const TracedCall& call, std::int64_t result) {
    if (result < 0)
        return;
    const auto& [first, second, third, fourth, fifth, sixth] = call.arguments;
    const auto text = [&](std::uint64_t address) { return textOf(call.thread, address); };
    switch (call.number) {
    case SYS_openat:
        return opened(call, result);
    case SYS_write:
    case SYS_pwrite64:
        return written(call, result);
    case SYS_ftruncate:
        return sized(call, Change::Kind::resize, second);
    case SYS_fallocate:
        return sized(call, Change::Kind::extend, third + fourth);
    case SYS_fsync:
    case SYS_fdatasync:
        return flushed(call);
    case SYS_mkdir:
        return linked(text(first), Entry{true, 0});
    case SYS_link:
        return linked(text(second),
                      present_.contains(text(first)) ? std::optional(present_[text(first)]) : std::nullopt);
    case SYS_unlink:
        return linked(text(first), std::nullopt);
    case SYS_rename:
        return renamed(text(first), text(second));
    case SYS_renameat2:
        return renamed(text(second), text(fourth));
    default:
        return;
    }
}

void RecordedDisk::opened(const TracedCall& call, std::int64_t descriptor) {
    const auto number = static_cast<std::uint64_t>(descriptor);
    const std::string path = openPath(call.thread, number);
    struct stat status = {};
    if (!isBelowRoot(path) || ::stat(descriptorPath(call.thread, number).c_str(), &status) != 0 ||
        !S_ISREG(status.st_mode))
        return;
    if (!present_.contains(path)) {
        fileByInode_[status.st_ino] = fileCount_;
        linked(path, Entry{false, fileCount_++});
    } else if (call.arguments[2] & O_TRUNC) {
        changes_.push_back({Change::Kind::resize, present_[path].file, 0, nullptr, {}, {}});
    }
}

std::optional<std::size_t> RecordedDisk::fileOf(const TracedCall& call) const {
    struct stat status = {};
    if (!isBelowRoot(openPath(call.thread, call.arguments[0])) ||
        ::stat(descriptorPath(call.thread, call.arguments[0]).c_str(), &status) != 0)
        return std::nullopt;
    const auto found = fileByInode_.find(status.st_ino);
    return found == fileByInode_.end() || !S_ISREG(status.st_mode) ? std::nullopt
                                                                   : std::optional(found->second);
}

void RecordedDisk::written(const TracedCall& call, std::int64_t count) {
    const std::optional<std::size_t> file = fileOf(call);
    if (!file)
        return;
    const std::int64_t offset = call.number == SYS_pwrite64
                                    ? static_cast<std::int64_t>(call.arguments[3])
                                    : position(call.thread, call.arguments[0]) - count;
    auto data = std::make_shared<const std::string>(
        memoryOf(call.thread, call.arguments[1], static_cast<std::size_t>(count)));
    changes_.push_back({Change::Kind::write, *file, offset, std::move(data), {}, {}});
}

void RecordedDisk::sized(const TracedCall& call, Change::Kind kind, std::uint64_t length) {
    if (const std::optional<std::size_t> file = fileOf(call))
        changes_.push_back({kind, *file, static_cast<std::int64_t>(length), nullptr, {}, {}});
}

void RecordedDisk::flushed(const TracedCall& call) {
    const std::string path = openPath(call.thread, call.arguments[0]);
    if (const std::optional<std::size_t> file = fileOf(call))
        changes_.push_back({Change::Kind::flushFile, *file, 0, nullptr, {}, {}});
    else if (path == root_.string() || isBelowRoot(path))
        changes_.push_back({Change::Kind::flushFolder, 0, 0, nullptr, path, {}});
}

void RecordedDisk::linked(const std::string& path, const std::optional<Entry>& entry) {
    if (!isBelowRoot(path))
        return;
    if (entry)
        present_[path] = *entry;
    else
        present_.erase(path);
    const auto [folder, name] = folderAndName(path);
    changes_.push_back({Change::Kind::entries, 0, 0, nullptr, folder, {{name, entry}}});
}

void RecordedDisk::renamed(const std::string& from, const std::string& to) {
    const auto found = present_.find(from);
    if (found == present_.end())
        return;
    const Entry entry = found->second;
    if (folderAndName(from).first != folderAndName(to).first) {
        linked(to, entry);
        linked(from, std::nullopt);
        return;
    }
    present_.erase(found);
    linked(to, entry);
    changes_.back().renamed.emplace_back(folderAndName(from).second, std::nullopt);
}

namespace {

/// Which of so many changes survive, in order.
std::vector<bool> survivors(std::size_t count, RecordedDisk::Survival survival, std::mt19937& chance) {
    using enum RecordedDisk::Survival;
    std::vector<bool> kept(count, survival == everything);
    if (survival == start)
        std::fill_n(kept.begin(), chance() % (count + 1), true);
    if (survival == some)
        std::generate(kept.begin(), kept.end(), [&] { return chance() % 2 == 0; });
    return kept;
}

} // namespace

std::string RecordedDisk::contentOf(const File& file, Survival survival, std::mt19937& chance) {
    std::string content = file.flushed;
    const std::vector<bool> kept = survivors(file.pending.size(), survival, chance);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (!kept[i])
            continue;
        const Change& change = *file.pending[i];
        const auto offset = static_cast<std::size_t>(change.offset);
        if (change.kind == Change::Kind::write) {
            std::string_view data = *change.data;
            const bool torn = survival != Survival::everything && chance() % 4 == 0;
            if (torn)
                data = data.substr(0, chance() % (data.size() / sectorSize + 1) * sectorSize);
            content.resize(std::max(content.size(), offset + data.size()));
            content.replace(offset, data.size(), data);
        } else if (change.kind == Change::Kind::extend) {
            content.resize(std::max(content.size(), offset));
        } else {
            content.resize(offset);
        }
    }
    return content;
}

RecordedDisk::Entries RecordedDisk::entriesOf(const Folder& folder, Survival survival, std::mt19937& chance) {
    Entries entries = folder.flushed;
    const std::vector<bool> kept = survivors(folder.pending.size(), survival, chance);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (!kept[i])
            continue;
        for (const auto& [name, entry] : folder.pending[i]->renamed) {
            if (entry)
                entries[name] = *entry;
            else
                entries.erase(name);
        }
    }
    return entries;
}

RecordedDisk::State RecordedDisk::state(std::size_t changes, Survival contents, Survival entries,
                                        std::mt19937& chance) const {
    std::vector<File> files(fileCount_);
    for (std::size_t i = 0; i < initialContents_.size(); ++i)
        files[i].flushed = initialContents_[i];
    std::map<std::string, Folder> folders;
    for (const auto& [path, initial] : initialFolders_)
        folders[path].flushed = initial;
    for (std::size_t i = 0; i < changes; ++i) {
        const Change& change = changes_[i];
        File* const file = change.file < files.size() ? &files[change.file] : nullptr;
        if (change.kind == Change::Kind::flushFile) {
            file->flushed = contentOf(*file, Survival::everything, chance);
            file->pending.clear();
        } else if (change.kind == Change::Kind::flushFolder) {
            Folder& folder = folders[change.folder];
            folder.flushed = entriesOf(folder, Survival::everything, chance);
            folder.pending.clear();
        } else if (change.kind == Change::Kind::entries) {
            folders[change.folder].pending.push_back(&change);
        } else {
            file->pending.push_back(&change);
        }
    }
    State state;
    std::map<std::size_t, std::string> chosen;
    const std::function<void(const std::string&)> walk = [&](const std::string& path) {
        for (const auto& [name, entry] : entriesOf(folders[path], entries, chance)) {
            const std::string itemPath = path + "/" + name;
            if (!entry.isFolder && !chosen.contains(entry.file))
                chosen[entry.file] = contentOf(files[entry.file], contents, chance);
            state.items[itemPath] = {entry.isFolder, entry.file, entry.isFolder ? "" : chosen[entry.file]};
            if (entry.isFolder)
                walk(itemPath);
        }
    };
    walk(root_.string());
    return state;
}

void RecordedDisk::restore(const State& state) const {
    fs::remove_all(root_);
    fs::create_directories(root_);
    std::map<std::size_t, std::string> firstName;
    for (const auto& [path, item] : state.items) {
        if (item.isFolder) {
            fs::create_directory(path);
        } else if (const auto [known, isNew] = firstName.emplace(item.file, path); !isNew) {
            fs::create_hard_link(known->second, path);
        } else {
            std::ofstream(path, std::ios::binary) << item.content;
        }
    }
}

} // namespace sela
