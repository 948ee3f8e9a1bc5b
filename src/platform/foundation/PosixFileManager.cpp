#include "platform/foundation/PosixFileManager.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/PosixStreams.h"
#include "platform/foundation/SystemCall.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace sela {

namespace {

std::atomic<FileManager*> managerInUse = nullptr;

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

struct OpenedFile {
    FileDescriptor descriptor;
    std::int64_t size;
};

/// Opens a regular file for reading. O_NONBLOCK keeps a FIFO from blocking before its kind is known.
Result<OpenedFile> openRegularFile(const std::string& path) {
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    FileDescriptor descriptor(retryingInterrupted([&] { return ::open(path.c_str(), flags); }));
    if (!descriptor.isOpen())
        return NSError::posix(errno, "open");
    struct stat status = {};
    if (::fstat(descriptor.get(), &status) != 0)
        return NSError::posix(errno, "fstat");
    if (!S_ISREG(status.st_mode))
        return NSError::posix(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, "open");
    return OpenedFile{std::move(descriptor), status.st_size};
}

/// Reserves disk space for a file. Null when it is reserved, or when the file system cannot reserve.
ErrorRef reserve(int descriptor, std::int64_t size) {
    if (size <= 0)
        return nullptr;
    // fallocate itself, not posix_fallocate: the latter writes zeros where the file system cannot reserve.
    const int result = retryingInterrupted([&] { return ::fallocate(descriptor, 0, 0, size); });
    if (result == 0 || errno == EOPNOTSUPP || errno == ENOSYS)
        return nullptr;
    return NSError::posix(errno, "fallocate");
}

/// Makes the folder and those above it that are missing.
ErrorRef makeFolders(const std::string& path) {
    if (::mkdir(path.c_str(), 0700) == 0)
        return nullptr;
    if (errno == EEXIST) {
        struct stat status = {};
        const bool isFolder = ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        return isFolder ? nullptr : NSError::posix(ENOTDIR, "mkdir");
    }
    if (errno != ENOENT || path == "/")
        return NSError::posix(errno, "mkdir");
    if (ErrorRef error = makeFolders(URL::fileURL(path).deletingLastPathComponent().path()))
        return error;
    return makeFolders(path);
}

std::optional<URL> groupFolder(std::string_view groupId) {
    const std::optional<URL> data = BaseDirectories::data();
    if (!data || !isSinglePathComponent(groupId))
        return std::nullopt;
    return data->appendingPathComponent("sela/groups").appendingPathComponent(groupId);
}

} // namespace

FileManager& FileManager::defaultManager() {
    static PosixFileManager manager;
    FileManager* const inUse = managerInUse;
    return inUse ? *inUse : manager;
}

void FileManager::setDefaultManager(FileManager* manager) {
    managerInUse = manager;
}

bool isSinglePathComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

std::optional<URL> PosixFileManager::containerURL(std::string_view groupId) const {
    std::optional<URL> folder = groupFolder(groupId);
    if (!folder)
        return std::nullopt;
    const Result<FileAttributes> attributes = attributesOfItem(folder->path());
    if (!attributes || attributes.value().type != FileAttributes::Type::directory)
        return std::nullopt;
    return folder;
}

std::optional<URL> PosixFileManager::provisioningURL(std::string_view groupId) const {
    return groupFolder(groupId);
}

bool PosixFileManager::fileExists(const std::string& path) const {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0;
}

Result<FileAttributes> PosixFileManager::attributesOfItem(const std::string& path) const {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return NSError::posix(errno, "stat");
    return attributesFrom(status);
}

Result<FileAttributes> PosixFileManager::attributesOfEntry(const std::string& path) const {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0)
        return NSError::posix(errno, "lstat");
    return attributesFrom(status);
}

ErrorRef PosixFileManager::createDirectory(const std::string& path) {
    if (ErrorRef error = makeFolders(path))
        return error;
    // All of them, those that stood there included: whoever made them may have been stopped before they were
    // flushed. Nobody who cannot write to a folder has made anything in it.
    for (URL folder = URL::fileURL(path); folder.path() != "/";) {
        folder = folder.deletingLastPathComponent();
        if (::access(folder.path().c_str(), W_OK) != 0)
            return nullptr;
        if (ErrorRef error = synchronizeFolder(folder.path()))
            return error;
    }
    return nullptr;
}

Result<std::vector<std::string>> PosixFileManager::contentsOfDirectory(const std::string& path) const {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), &::closedir);
    if (!folder)
        return NSError::posix(errno, "opendir");
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* const entry = ::readdir(folder.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
        errno = 0;
    }
    if (errno != 0)
        return NSError::posix(errno, "readdir");
    std::ranges::sort(names);
    return names;
}

ErrorRef PosixFileManager::removeItem(const std::string& path) {
    return ::unlink(path.c_str()) == 0 ? nullptr : NSError::posix(errno, "unlink");
}

ErrorRef PosixFileManager::linkItem(const std::string& from, const std::string& to) {
    if (::link(from.c_str(), to.c_str()) != 0)
        return NSError::posix(errno, "link");
    return synchronizeFolder(URL::fileURL(to).deletingLastPathComponent().path());
}

ErrorRef PosixFileManager::moveItem(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
        // Some network file systems cannot rename without replacing; a second name never replaces either.
        if (errno != EINVAL && errno != ENOSYS)
            return NSError::posix(errno, "rename");
        if (::link(from.c_str(), to.c_str()) != 0)
            return NSError::posix(errno, "link");
        if (::unlink(from.c_str()) != 0)
            return NSError::posix(errno, "unlink");
    }
    return synchronizeFolder(URL::fileURL(to).deletingLastPathComponent().path());
}

ErrorRef PosixFileManager::synchronizeDirectory(const std::string& path) {
    return synchronizeFolder(path);
}

Result<std::unique_ptr<InputStream>> PosixFileManager::inputStream(const URL& source) {
    Result<OpenedFile> opened = openRegularFile(source.path());
    if (!opened)
        return opened.error();
    return std::unique_ptr<InputStream>(
        std::make_unique<PosixInputStream>(std::move(opened.value().descriptor), opened.value().size));
}

Result<std::unique_ptr<OutputStream>> PosixFileManager::outputStream(const URL& destination,
                                                                     std::int64_t expectedSize) {
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const char* const path = destination.path().c_str();
    FileDescriptor descriptor(retryingInterrupted([&] { return ::open(path, flags, 0600); }));
    if (!descriptor.isOpen())
        return NSError::posix(errno, "open");
    if (ErrorRef error = reserve(descriptor.get(), expectedSize)) {
        removeItem(destination.path());
        return error;
    }
    return std::unique_ptr<OutputStream>(std::make_unique<PosixOutputStream>(
        std::move(descriptor), destination.deletingLastPathComponent().path()));
}

ErrorRef PosixFileManager::writeAtomically(DataView bytes, const URL& destination) {
    const std::string folder = destination.deletingLastPathComponent().path();
    std::string temporary = folder + "/.sela-XXXXXX";
    FileDescriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!descriptor.isOpen())
        return NSError::posix(errno, "mkostemp");
    ErrorRef error = writeFully(descriptor.get(), bytes);
    if (!error)
        error = synchronizeFile(descriptor.get());
    if (!error && ::rename(temporary.c_str(), destination.path().c_str()) != 0)
        error = NSError::posix(errno, "rename");
    if (error) {
        removeItem(temporary);
        return error;
    }
    return synchronizeFolder(folder);
}

Result<Data> PosixFileManager::contentsOfFile(const std::string& path, std::int64_t maximumSize) {
    Result<OpenedFile> opened = openRegularFile(path);
    if (!opened)
        return opened.error();
    PosixInputStream stream(std::move(opened.value().descriptor), opened.value().size);
    Data content;
    std::array<std::byte, 65536> block;
    while (true) {
        const std::int64_t count = stream.read(block);
        if (count < 0)
            return stream.streamError();
        if (count == 0)
            return content;
        content.insert(content.end(), block.begin(), block.begin() + count);
        if (static_cast<std::int64_t>(content.size()) > maximumSize)
            return NSError::posix(EFBIG, "read");
    }
}

} // namespace sela
