#include "platform/foundation/FileManager.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/Disk.h"
#include "platform/foundation/TimeText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace sela {

namespace {

double secondsOf(const timespec& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

FileAttributes attributesFrom(const struct stat& status) {
    FileAttributes attributes;
    if (S_ISREG(status.st_mode))
        attributes.type = FileAttributes::Type::regular;
    else if (S_ISDIR(status.st_mode))
        attributes.type = FileAttributes::Type::directory;
    else if (S_ISLNK(status.st_mode))
        attributes.type = FileAttributes::Type::symbolicLink;
    attributes.size = status.st_size;
    attributes.device = status.st_dev;
    attributes.inode = status.st_ino;
    attributes.modificationDate = secondsOf(status.st_mtim);
    return attributes;
}

/// Null for the result of a call that succeeded.
ErrorRef errorOf(int result, const std::string& path) {
    return result < 0 ? NSError::posix(-result, path) : nullptr;
}

std::string folderOf(const std::string& path) {
    return URL::fileURL(path).deletingLastPathComponent().path();
}

/// Reserves disk space for a file. Null when it is reserved, or when the file system cannot reserve.
ErrorRef reserve(int descriptor, std::int64_t size, const std::string& path) {
    const int result = size > 0 ? Disk::inUse().fallocate(descriptor, size) : 0;
    return result == -EOPNOTSUPP || result == -ENOSYS ? nullptr : errorOf(result, path);
}

/// Writes all bytes, and tells after each block how many there are, unless that ends it with an error.
ErrorRef writeBlocks(int descriptor, DataView bytes, const std::string& path,
                     const std::function<ErrorRef(std::size_t)>& written) {
    constexpr std::size_t blockSize = 2 << 20;
    for (std::size_t offset = 0; offset < bytes.size();) {
        const DataView block = bytes.subspan(offset, std::min(blockSize, bytes.size() - offset));
        if (ErrorRef error = writeFully(descriptor, block, static_cast<std::int64_t>(offset), path))
            return error;
        offset += block.size();
        if (ErrorRef error = written ? written(offset) : nullptr)
            return error;
    }
    return nullptr;
}

/// Makes one folder; the error when there is none afterwards.
int makeFolder(const std::string& path) {
    const int made = Disk::inUse().mkdir(path, 0700);
    struct stat status = {};
    if (made != -EEXIST)
        return made;
    return Disk::inUse().stat(path, status) == 0 && S_ISDIR(status.st_mode) ? 0 : -ENOTDIR;
}

/// Makes the folder and those above it that are missing.
ErrorRef makeFolders(const std::string& path) {
    std::vector<std::string> missing;
    std::string folder = path;
    int made = makeFolder(folder);
    while (made == -ENOENT && folder != "/") {
        missing.push_back(folder);
        folder = folderOf(folder);
        made = makeFolder(folder);
    }
    for (; made == 0 && !missing.empty(); missing.pop_back()) {
        folder = missing.back();
        made = makeFolder(folder);
    }
    return errorOf(made, folder);
}

std::optional<URL> groupFolder(std::string_view groupId) {
    const std::optional<URL> data = BaseDirectories::data();
    if (!data || !isSinglePathComponent(groupId))
        return std::nullopt;
    return data->appendingPathComponent("sela/groups").appendingPathComponent(groupId);
}

} // namespace

FileManager& FileManager::defaultManager() {
    static FileManager manager;
    return manager;
}

bool isSinglePathComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

std::optional<URL> FileManager::containerURL(std::string_view groupId) const {
    std::optional<URL> folder = groupFolder(groupId);
    if (!folder)
        return std::nullopt;
    const Result<FileAttributes> attributes = attributesOfItem(folder->path());
    if (!attributes || attributes.value().type != FileAttributes::Type::directory)
        return std::nullopt;
    return folder;
}

std::optional<URL> FileManager::provisioningURL(std::string_view groupId) const {
    return groupFolder(groupId);
}

bool FileManager::fileExists(const std::string& path) const {
    struct stat status = {};
    return Disk::inUse().stat(path, status) == 0;
}

Result<FileAttributes> FileManager::attributesOfItem(const std::string& path) const {
    struct stat status = {};
    if (ErrorRef error = errorOf(Disk::inUse().stat(path, status), path))
        return error;
    return attributesFrom(status);
}

Result<FileAttributes> FileManager::attributesOfEntry(const std::string& path) const {
    struct stat status = {};
    if (ErrorRef error = errorOf(Disk::inUse().lstat(path, status), path))
        return error;
    return attributesFrom(status);
}

ErrorRef FileManager::createDirectory(const std::string& path) {
    if (ErrorRef error = makeFolders(path))
        return error;
    // All of them, existing ones included: the program that made them may have been killed before the fsync.
    // Folders that we cannot write to need none, since we made nothing in them.
    for (std::string folder = path; folder != "/";) {
        folder = folderOf(folder);
        if (Disk::inUse().access(folder, W_OK) != 0)
            return nullptr;
        if (ErrorRef error = synchronizeDirectory(folder))
            return error;
    }
    return nullptr;
}

void FileManager::closeToOthers(const std::string& path) {
    constexpr mode_t others = S_IRWXG | S_IRWXO;
    struct stat status = {};
    if (Disk::inUse().stat(path, status) == 0 && status.st_uid == ::geteuid() &&
        (status.st_mode & others) != 0)
        Disk::inUse().chmod(path, status.st_mode & 07777 & ~others);
}

Result<std::vector<std::string>> FileManager::contentsOfDirectory(const std::string& path) const {
    std::vector<std::string> names;
    if (ErrorRef error = errorOf(Disk::inUse().readdir(path, names), path))
        return error;
    std::ranges::sort(names);
    return names;
}

ErrorRef FileManager::removeItem(const std::string& path) {
    return errorOf(Disk::inUse().unlink(path), path);
}

ErrorRef FileManager::linkItem(const std::string& from, const std::string& to) {
    return errorOf(Disk::inUse().link(from, to), to);
}

ErrorRef FileManager::moveItem(const std::string& from, const std::string& to) {
    int result = Disk::inUse().rename(from, to, RENAME_NOREPLACE);
    // Some network file systems do not support RENAME_NOREPLACE; link never replaces either.
    if (result == -EINVAL || result == -ENOSYS) {
        const int linked = Disk::inUse().link(from, to);
        if (linked == 0)
            result = Disk::inUse().unlink(from);
        else if (linked == -EEXIST)
            result = linked;
    }
    return errorOf(result, to);
}

ErrorRef FileManager::synchronizeDirectory(const std::string& path) {
    const FileDescriptor folder(Disk::inUse().open(path, O_RDONLY | O_DIRECTORY));
    const int result = folder.isOpen() ? Disk::inUse().fsync(folder.get()) : folder.get();
    // EINVAL: the file system does not support fsync of folders.
    return result == -EINVAL ? nullptr : errorOf(result, path);
}

Result<FileManager::RegularFile> FileManager::openRegularFile(const std::string& path) {
    // O_NONBLOCK keeps a FIFO from blocking before its kind is known.
    FileDescriptor descriptor(Disk::inUse().open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY));
    if (!descriptor.isOpen())
        return NSError::posix(-descriptor.get(), path);
    struct stat status = {};
    if (ErrorRef error = errorOf(Disk::inUse().fstat(descriptor.get(), status), path))
        return error;
    if (!S_ISREG(status.st_mode))
        return NSError::posix(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, path);
    return RegularFile{std::move(descriptor), status.st_size};
}

Result<InputStream> FileManager::inputStream(const URL& source) {
    Result<RegularFile> opened = openRegularFile(source.path());
    if (!opened)
        return opened.error();
    return InputStream(std::move(opened.value().descriptor), source.path(), opened.value().size);
}

Result<OutputStream> FileManager::outputStream(const URL& destination, std::int64_t expectedSize,
                                               WhenThere whenThere) {
    const int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY |
                      (whenThere == WhenThere::fail ? O_EXCL : O_TRUNC);
    FileDescriptor descriptor(Disk::inUse().open(destination.path(), flags, 0600));
    if (!descriptor.isOpen())
        return NSError::posix(-descriptor.get(), destination.path());
    if (ErrorRef error = reserve(descriptor.get(), expectedSize, destination.path())) {
        removeItem(destination.path());
        return error;
    }
    return OutputStream(std::move(descriptor), destination.path());
}

ErrorRef FileManager::writeAtomically(DataView bytes, const URL& destination,
                                      const std::function<ErrorRef(std::size_t)>& written) {
    const std::string folder = folderOf(destination.path());
    // The time makes the names of one process unique, and its id those of several.
    const std::string temporary = folder + "/.sela-" + std::to_string(::getpid()) + "-" + uniqueTimeText();
    const FileDescriptor descriptor(
        Disk::inUse().open(temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600));
    if (!descriptor.isOpen())
        return NSError::posix(-descriptor.get(), destination.path());
    ErrorRef error = writeBlocks(descriptor.get(), bytes, destination.path(), written);
    if (!error)
        error = errorOf(Disk::inUse().fsync(descriptor.get()), destination.path());
    if (!error)
        error = errorOf(Disk::inUse().rename(temporary, destination.path(), 0), destination.path());
    if (error) {
        removeItem(temporary);
        return error;
    }
    return synchronizeDirectory(folder);
}

Result<Data> FileManager::contentsOfFile(const std::string& path, std::int64_t maximumSize) {
    Result<InputStream> stream = inputStream(URL::fileURL(path));
    if (!stream)
        return stream.error();
    Data content;
    std::array<std::byte, 65536> block;
    while (true) {
        const std::int64_t count = stream.value().read(block);
        if (count < 0)
            return stream.value().streamError();
        if (count == 0)
            return content;
        content.insert(content.end(), block.begin(), block.begin() + count);
        if (static_cast<std::int64_t>(content.size()) > maximumSize)
            return NSError::posix(EFBIG, path);
    }
}

} // namespace sela
