#include "platform/foundation/Disk.h"

#include "platform/foundation/SystemCall.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>

namespace sela {

namespace {

/// What `call` returns, or the negative error number.
template<class Call>
auto resultOf(Call call) {
    const auto result = retryingInterrupted(call);
    return result >= 0 ? result : static_cast<decltype(result)>(-errno);
}

struct flock lockOn(short type, std::int64_t start, std::int64_t length) {
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = length;
    return lock;
}

class SystemDisk final : public Disk {
public:
    int open(const std::string& path, int flags, mode_t mode) override {
        return resultOf([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); });
    }
    std::int64_t read(int descriptor, std::span<std::byte> buffer) override {
        return resultOf([&] { return ::read(descriptor, buffer.data(), buffer.size()); });
    }
    std::int64_t pread(int descriptor, std::span<std::byte> buffer, std::int64_t offset) override {
        return resultOf([&] { return ::pread(descriptor, buffer.data(), buffer.size(), offset); });
    }
    std::int64_t pwrite(int descriptor, DataView bytes, std::int64_t offset) override {
        return resultOf([&] { return ::pwrite(descriptor, bytes.data(), bytes.size(), offset); });
    }
    std::int64_t copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) override {
        return resultOf([&] {
            off_t place = offset;
            return ::copy_file_range(from, nullptr, to, &place, static_cast<std::size_t>(length), 0);
        });
    }
    int ftruncate(int descriptor, std::int64_t length) override {
        return resultOf([&] { return ::ftruncate(descriptor, length); });
    }
    int fallocate(int descriptor, std::int64_t length) override {
        // Not posix_fallocate, which writes zeros where the file system cannot reserve.
        return resultOf([&] { return ::fallocate(descriptor, 0, 0, length); });
    }
    int syncFileRange(int descriptor, std::int64_t offset, std::int64_t length) override {
        return resultOf([&] { return ::sync_file_range(descriptor, offset, length, SYNC_FILE_RANGE_WRITE); });
    }
    int fsync(int descriptor) override {
        return resultOf([&] { return ::fsync(descriptor); });
    }
    int fdatasync(int descriptor) override {
        return resultOf([&] { return ::fdatasync(descriptor); });
    }
    int stat(const std::string& path, struct stat& status) override {
        return resultOf([&] { return ::stat(path.c_str(), &status); });
    }
    int lstat(const std::string& path, struct stat& status) override {
        return resultOf([&] { return ::lstat(path.c_str(), &status); });
    }
    int fstat(int descriptor, struct stat& status) override {
        return resultOf([&] { return ::fstat(descriptor, &status); });
    }
    int access(const std::string& path, int mode) override {
        return resultOf([&] { return ::access(path.c_str(), mode); });
    }
    int readdir(const std::string& path, std::vector<std::string>& names) override {
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), &::closedir);
        if (!folder)
            return -errno;
        errno = 0;
        while (const dirent* const entry = ::readdir(folder.get())) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..")
                names.emplace_back(name);
            errno = 0;
        }
        return -errno;
    }
    int mkdir(const std::string& path, mode_t mode) override {
        return resultOf([&] { return ::mkdir(path.c_str(), mode); });
    }
    int link(const std::string& from, const std::string& to) override {
        return resultOf([&] { return ::link(from.c_str(), to.c_str()); });
    }
    int rename(const std::string& from, const std::string& to, unsigned flags) override {
        return resultOf([&] { return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags); });
    }
    int unlink(const std::string& path) override {
        return resultOf([&] { return ::unlink(path.c_str()); });
    }
    int chmod(const std::string& path, mode_t mode) override {
        return resultOf([&] { return ::chmod(path.c_str(), mode); });
    }
    int flock(int descriptor, int operation) override {
        return resultOf([&] { return ::flock(descriptor, operation); });
    }
    int lockBytes(int descriptor, short type, std::int64_t start, std::int64_t length) override {
        struct flock lock = lockOn(type, start, length);
        return resultOf([&] { return ::fcntl(descriptor, F_OFD_SETLK, &lock); });
    }
    int isByteLocked(int descriptor, std::int64_t place) override {
        struct flock lock = lockOn(F_WRLCK, place, 1);
        const int result = resultOf([&] { return ::fcntl(descriptor, F_OFD_GETLK, &lock); });
        return result < 0 ? result : lock.l_type != F_UNLCK;
    }
};

std::atomic<Disk*> diskInUse = nullptr;

} // namespace

Disk& Disk::inUse() {
    static SystemDisk system;
    Disk* const disk = diskInUse;
    return disk ? *disk : system;
}

void Disk::use(Disk* disk) {
    diskInUse = disk;
}

} // namespace sela
