#pragma once

#include "platform/foundation/Data.h"

#include <cstdint>
#include <span>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace sela {

/// The system calls by which files are read and changed, the settings' included: all file access of the
/// group's programs goes through this interface.
///
/// Each operation is the system call of its name and returns what that returns, or the negative error number
/// on failure. A call that a signal interrupts is repeated. Any thread. Descriptors are the system's own and
/// are closed by their owner.
class Disk {
public:
    virtual ~Disk() = default;

    /// The disk in use.
    static Disk& inUse();

    /// Replaces the disk in use (null: the system's again). For tests, which wrap the disk in use so that
    /// single calls fail (`DiskWrapper`); the caller keeps it alive.
    static void use(Disk* disk);

    virtual int open(const std::string& path, int flags, mode_t mode = 0) = 0;
    virtual std::int64_t read(int descriptor, std::span<std::byte> buffer) = 0;
    virtual std::int64_t pread(int descriptor, std::span<std::byte> buffer, std::int64_t offset) = 0;
    virtual std::int64_t pwrite(int descriptor, DataView bytes, std::int64_t offset) = 0;

    /// Copies from a descriptor's position, which advances, to an offset of another (copy_file_range); file
    /// systems may share the extents instead.
    virtual std::int64_t copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) = 0;
    virtual int ftruncate(int descriptor, std::int64_t length) = 0;

    /// Reserves the first `length` bytes of a file.
    virtual int fallocate(int descriptor, std::int64_t length) = 0;

    /// Starts writeback of a range of a file without waiting for it.
    virtual int syncFileRange(int descriptor, std::int64_t offset, std::int64_t length) = 0;
    virtual int fsync(int descriptor) = 0;
    virtual int fdatasync(int descriptor) = 0;

    virtual int stat(const std::string& path, struct stat& status) = 0;
    virtual int lstat(const std::string& path, struct stat& status) = 0;
    virtual int fstat(int descriptor, struct stat& status) = 0;
    virtual int access(const std::string& path, int mode) = 0;

    /// Appends the names in a folder, "." and ".." left out.
    virtual int readdir(const std::string& path, std::vector<std::string>& names) = 0;
    virtual int mkdir(const std::string& path, mode_t mode) = 0;
    virtual int link(const std::string& from, const std::string& to) = 0;

    /// `flags` are those of renameat2.
    virtual int rename(const std::string& from, const std::string& to, unsigned flags) = 0;
    virtual int unlink(const std::string& path) = 0;
    virtual int chmod(const std::string& path, mode_t mode) = 0;

    virtual int flock(int descriptor, int operation) = 0;

    /// Locks bytes of a file (F_RDLCK, F_WRLCK) or unlocks them (F_UNLCK) without waiting, for the open file
    /// description rather than for the process (F_OFD_SETLK).
    virtual int lockBytes(int descriptor, short type, std::int64_t start, std::int64_t length) = 0;

    /// Whether another holder's lock keeps a byte from being locked for writing: 1 or 0 (F_OFD_GETLK).
    virtual int isByteLocked(int descriptor, std::int64_t place) = 0;
};

} // namespace sela
