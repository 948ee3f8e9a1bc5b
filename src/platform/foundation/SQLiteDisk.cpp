#include "platform/foundation/SQLiteDisk.h"

#include "platform/foundation/Disk.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/OutputStream.h"
#include "platform/foundation/SQLiteMemory.h"
#include "platform/foundation/URL.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace sela {

namespace {

/// The lock bytes of a database, as SQLite's file format defines them. Nothing is stored there.
constexpr std::int64_t pendingByte = 0x40000000;
constexpr std::int64_t reservedByte = pendingByte + 1;
constexpr std::int64_t firstSharedByte = pendingByte + 2;
constexpr std::int64_t sharedBytes = 510;

constexpr int sectorSize = 4096;
constexpr int longestPath = 4096;

/// The error number of this thread's last failed call, which SQLite can query.
thread_local int lastError = 0;

/// The journal whose folder entry is known to be flushed: the last one that was flushed, as long as it is
/// found there, and empty as a finished transaction leaves it.
class KnownJournal {
public:
    void remember(const struct stat& status) {
        const std::lock_guard lock(mutex_);
        device_ = status.st_dev;
        inode_ = status.st_ino;
    }

    /// Whether an opened journal is that one; if it is not, that one is forgotten.
    bool recognize(const struct stat& status) {
        const std::lock_guard lock(mutex_);
        const bool same = status.st_dev == device_ && status.st_ino == inode_ && status.st_size == 0;
        if (!same)
            inode_ = 0;
        return same;
    }

private:
    std::mutex mutex_;
    dev_t device_ = 0;
    ino_t inode_ = 0;
};

KnownJournal& knownJournal() {
    static KnownJournal journal;
    return journal;
}

struct DiskFile : sqlite3_file {
    FileDescriptor descriptor;
    std::string path;
    int lock = SQLITE_LOCK_NONE;
    bool hasNewEntry = false; ///< the entry in its folder may not be flushed yet
};

DiskFile& fileOf(sqlite3_file* file) {
    return *static_cast<DiskFile*>(file);
}

/// SQLITE_OK, or `code` for a call that failed.
int codeOf(std::int64_t result, int code) {
    if (result >= 0)
        return SQLITE_OK;
    lastError = static_cast<int>(-result);
    return lastError == ENOSPC || lastError == EDQUOT ? SQLITE_FULL : code;
}

int flushFolderOf(const std::string& path) {
    const FileDescriptor folder(
        Disk::inUse().open(URL::fileURL(path).deletingLastPathComponent().path(), O_RDONLY | O_DIRECTORY));
    const int result = folder.isOpen() ? Disk::inUse().fsync(folder.get()) : folder.get();
    return result == -EINVAL ? 0 : result;
}

int close(sqlite3_file* file) {
    fileOf(file).~DiskFile();
    return SQLITE_OK;
}

int read(sqlite3_file* file, void* buffer, int size, sqlite3_int64 offset) {
    std::span<std::byte> rest(static_cast<std::byte*>(buffer), static_cast<std::size_t>(size));
    while (!rest.empty()) {
        const std::int64_t count = Disk::inUse().pread(fileOf(file).descriptor.get(), rest, offset);
        if (count < 0)
            return codeOf(count, SQLITE_IOERR_READ);
        if (count == 0) {
            // Bytes beyond the end read as zeros.
            std::ranges::fill(rest, std::byte{0});
            return SQLITE_IOERR_SHORT_READ;
        }
        rest = rest.subspan(static_cast<std::size_t>(count));
        offset += count;
    }
    return SQLITE_OK;
}

int write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
    DataView rest(static_cast<const std::byte*>(bytes), static_cast<std::size_t>(size));
    while (!rest.empty()) {
        const std::int64_t count = Disk::inUse().pwrite(fileOf(file).descriptor.get(), rest, offset);
        if (count <= 0)
            return codeOf(count < 0 ? count : -EIO, SQLITE_IOERR_WRITE);
        rest = rest.subspan(static_cast<std::size_t>(count));
        offset += count;
    }
    return SQLITE_OK;
}

int truncate(sqlite3_file* file, sqlite3_int64 length) {
    return codeOf(Disk::inUse().ftruncate(fileOf(file).descriptor.get(), length), SQLITE_IOERR_TRUNCATE);
}

int sync(sqlite3_file* file, int) {
    DiskFile& synced = fileOf(file);
    if (const int result = Disk::inUse().fdatasync(synced.descriptor.get()); result < 0)
        return codeOf(result, SQLITE_IOERR_FSYNC);
    if (!synced.hasNewEntry)
        return SQLITE_OK;
    const int result = flushFolderOf(synced.path);
    synced.hasNewEntry = result < 0;
    struct stat status = {};
    if (result == 0 && Disk::inUse().fstat(synced.descriptor.get(), status) == 0)
        knownJournal().remember(status);
    return codeOf(result, SQLITE_IOERR_DIR_FSYNC);
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    struct stat status = {};
    const int result = Disk::inUse().fstat(fileOf(file).descriptor.get(), status);
    *size = status.st_size;
    return codeOf(result, SQLITE_IOERR_FSTAT);
}

/// Locks bytes; SQLITE_BUSY when another connection holds them.
int lockBytes(DiskFile& file, short type, std::int64_t start, std::int64_t length) {
    const int result = Disk::inUse().lockBytes(file.descriptor.get(), type, start, length);
    if (result == -EAGAIN || result == -EACCES)
        return SQLITE_BUSY;
    return codeOf(result, type == F_UNLCK ? SQLITE_IOERR_UNLOCK : SQLITE_IOERR_LOCK);
}

int lockShared(DiskFile& file) {
    // A waiting writer holds the pending byte, which keeps new readers out.
    int code = lockBytes(file, F_RDLCK, pendingByte, 1);
    if (code != SQLITE_OK)
        return code;
    code = lockBytes(file, F_RDLCK, firstSharedByte, sharedBytes);
    const int released = lockBytes(file, F_UNLCK, pendingByte, 1);
    return code == SQLITE_OK ? released : code;
}

int lockExclusive(DiskFile& file) {
    if (file.lock < SQLITE_LOCK_PENDING) {
        if (const int code = lockBytes(file, F_WRLCK, pendingByte, 1); code != SQLITE_OK)
            return code;
        file.lock = SQLITE_LOCK_PENDING;
    }
    return lockBytes(file, F_WRLCK, firstSharedByte, sharedBytes);
}

int lock(sqlite3_file* file, int level) {
    DiskFile& locked = fileOf(file);
    if (locked.lock >= level)
        return SQLITE_OK;
    int code = SQLITE_OK;
    if (level == SQLITE_LOCK_SHARED)
        code = lockShared(locked);
    else if (level == SQLITE_LOCK_RESERVED)
        code = lockBytes(locked, F_WRLCK, reservedByte, 1);
    else
        code = lockExclusive(locked);
    if (code == SQLITE_OK)
        locked.lock = level;
    return code;
}

int unlock(sqlite3_file* file, int level) {
    DiskFile& locked = fileOf(file);
    if (locked.lock <= level)
        return SQLITE_OK;
    int code = SQLITE_OK;
    if (level == SQLITE_LOCK_SHARED && locked.lock > SQLITE_LOCK_SHARED)
        code = lockBytes(locked, F_RDLCK, firstSharedByte, sharedBytes);
    if (code == SQLITE_OK)
        code = lockBytes(locked, F_UNLCK, pendingByte, 2);
    if (code == SQLITE_OK && level == SQLITE_LOCK_NONE)
        code = lockBytes(locked, F_UNLCK, firstSharedByte, sharedBytes);
    if (code == SQLITE_OK)
        locked.lock = level;
    return code;
}

int checkReservedLock(sqlite3_file* file, int* reserved) {
    const DiskFile& asked = fileOf(file);
    const int result = asked.lock > SQLITE_LOCK_SHARED
                           ? 1
                           : Disk::inUse().isByteLocked(asked.descriptor.get(), reservedByte);
    *reserved = result == 1;
    return codeOf(result, SQLITE_IOERR_CHECKRESERVEDLOCK);
}

const sqlite3_io_methods fileMethods = [] {
    sqlite3_io_methods methods = {};
    methods.iVersion = 1;
    methods.xClose = close;
    methods.xRead = read;
    methods.xWrite = write;
    methods.xTruncate = truncate;
    methods.xSync = sync;
    methods.xFileSize = fileSize;
    methods.xLock = lock;
    methods.xUnlock = unlock;
    methods.xCheckReservedLock = checkReservedLock;
    methods.xFileControl = [](sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; };
    methods.xSectorSize = [](sqlite3_file*) { return sectorSize; };
    // A write never changes bytes around it, even at a power cut. SQLITE_IOCAP_SAFE_APPEND is not claimed: it
    // would save an fsync of the journal, but the journal's checksums cover every 200th byte only.
    methods.xDeviceCharacteristics = [](sqlite3_file*) { return SQLITE_IOCAP_POWERSAFE_OVERWRITE; };
    return methods;
}();

/// Opens a regular file and nothing else, without blocking.
int openRegular(const std::string& path, int flags, struct stat& status) {
    Disk& disk = Disk::inUse();
    FileDescriptor opened(disk.open(path, flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0600));
    if (!opened.isOpen())
        return opened.get();
    if (const int result = disk.fstat(opened.get(), status); result < 0)
        return result;
    return S_ISREG(status.st_mode) ? opened.release() : -EINVAL;
}

/// Opens a journal, making it if it is missing. `hasNewEntry` becomes whether its folder must be flushed: a
/// program that made an existing one may have been killed before it did so.
int openJournal(const std::string& path, bool& hasNewEntry) {
    struct stat status = {};
    int descriptor = openRegular(path, O_RDWR, status);
    hasNewEntry = descriptor < 0 || !knownJournal().recognize(status);
    if (descriptor == -ENOENT)
        descriptor = openRegular(path, O_RDWR | O_CREAT, status);
    return descriptor;
}

int open(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* flagsThen) {
    file->pMethods = nullptr;
    if (!path)
        return SQLITE_CANTOPEN;
    const bool writes = (flags & SQLITE_OPEN_READWRITE) != 0;
    bool hasNewEntry = false;
    struct stat status = {};
    int descriptor = flags & SQLITE_OPEN_CREATE ? openJournal(path, hasNewEntry)
                                                : openRegular(path, writes ? O_RDWR : O_RDONLY, status);
    if ((descriptor == -EACCES || descriptor == -EROFS) && writes) {
        flags = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
        descriptor = openRegular(path, O_RDONLY, status);
    }
    if (descriptor < 0) {
        lastError = -descriptor;
        return SQLITE_CANTOPEN;
    }
    auto* const made = new (static_cast<void*>(file)) DiskFile;
    made->pMethods = &fileMethods;
    made->descriptor = FileDescriptor(descriptor);
    made->path = path;
    made->hasNewEntry = hasNewEntry;
    if (flagsThen)
        *flagsThen = flags;
    return SQLITE_OK;
}

int remove(sqlite3_vfs*, const char* path, int flush) {
    int result = Disk::inUse().unlink(path);
    if (result == -ENOENT)
        return SQLITE_IOERR_DELETE_NOENT;
    if (result < 0)
        return codeOf(result, SQLITE_IOERR_DELETE);
    if (flush)
        result = flushFolderOf(path);
    return codeOf(result, SQLITE_IOERR_DIR_FSYNC);
}

int access(sqlite3_vfs*, const char* path, int question, int* answer) {
    struct stat status = {};
    if (question == SQLITE_ACCESS_EXISTS)
        // An empty journal does not count.
        *answer = Disk::inUse().stat(path, status) == 0 && (!S_ISREG(status.st_mode) || status.st_size > 0);
    else
        *answer = Disk::inUse().access(path, R_OK | W_OK) == 0;
    return SQLITE_OK;
}

int fullPath(sqlite3_vfs*, const char* path, int size, char* full) {
    const std::size_t length = std::strlen(path);
    if (length >= static_cast<std::size_t>(size))
        return SQLITE_CANTOPEN;
    std::copy_n(path, length + 1, full);
    return SQLITE_OK;
}

/// SQLite's own VFS, for everything but files.
sqlite3_vfs* system() {
    return sqlite3_vfs_find(nullptr);
}

} // namespace

const char* sqliteDiskName() {
    static sqlite3_vfs layer = [] {
        sqlite3_vfs made = {};
        made.iVersion = 1;
        made.szOsFile = sizeof(DiskFile);
        made.mxPathname = longestPath;
        made.zName = "sela";
        made.xOpen = open;
        made.xDelete = remove;
        made.xAccess = access;
        made.xFullPathname = fullPath;
        made.xRandomness = [](sqlite3_vfs*, int size, char* bytes) {
            return system()->xRandomness(system(), size, bytes);
        };
        made.xSleep = [](sqlite3_vfs*, int microseconds) { return system()->xSleep(system(), microseconds); };
        made.xCurrentTime = [](sqlite3_vfs*, double* day) { return system()->xCurrentTime(system(), day); };
        made.xGetLastError = [](sqlite3_vfs*, int, char*) { return lastError; };
        return made;
    }();
    // Registering a VFS initializes SQLite.
    wipeSQLiteMemory();
    static const bool known = sqlite3_vfs_register(&layer, 0) == SQLITE_OK;
    if (!known)
        fatalError("SQLite takes no file layer");
    return layer.zName;
}

} // namespace sela
