#pragma once

#include "platform/foundation/Disk.h"

#include <filesystem>
#include <string>

namespace sela {

/// Replaces the disk in use while it lives and forwards every call to it, so that a test injects a fault by
/// overriding one call, or by refusing some of them.
class DiskWrapper : public Disk {
public:
    DiskWrapper() : target_(inUse()) { use(this); }
    ~DiskWrapper() override { takeOutOfUse(); }
    DiskWrapper(const DiskWrapper&) = delete;
    DiskWrapper& operator=(const DiskWrapper&) = delete;

    /// Restores the former disk before this one is destroyed.
    void takeOutOfUse() { use(&target_); }

    int open(const std::string& path, int flags, mode_t mode) override {
        return unlessRefused("open", [&] { return target_.open(path, flags, mode); });
    }
    std::int64_t read(int descriptor, std::span<std::byte> buffer) override {
        return unlessRefused("read", [&] { return target_.read(descriptor, buffer); });
    }
    std::int64_t pread(int descriptor, std::span<std::byte> buffer, std::int64_t offset) override {
        return unlessRefused("pread", [&] { return target_.pread(descriptor, buffer, offset); });
    }
    std::int64_t pwrite(int descriptor, DataView bytes, std::int64_t offset) override {
        return unlessRefused("pwrite", [&] { return target_.pwrite(descriptor, bytes, offset); });
    }
    std::int64_t copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) override {
        return unlessRefused("copyFileRange",
                             [&] { return target_.copyFileRange(from, to, offset, length); });
    }
    int ftruncate(int descriptor, std::int64_t length) override {
        return unlessRefused("ftruncate", [&] { return target_.ftruncate(descriptor, length); });
    }
    int fallocate(int descriptor, std::int64_t length) override {
        return unlessRefused("fallocate", [&] { return target_.fallocate(descriptor, length); });
    }
    int syncFileRange(int descriptor, std::int64_t offset, std::int64_t length) override {
        return unlessRefused("syncFileRange",
                             [&] { return target_.syncFileRange(descriptor, offset, length); });
    }
    int fsync(int descriptor) override {
        return unlessRefused("fsync", [&] { return target_.fsync(descriptor); });
    }
    int fdatasync(int descriptor) override {
        return unlessRefused("fdatasync", [&] { return target_.fdatasync(descriptor); });
    }
    int stat(const std::string& path, struct stat& status) override {
        return unlessRefused("stat", [&] { return target_.stat(path, status); });
    }
    int lstat(const std::string& path, struct stat& status) override {
        return unlessRefused("lstat", [&] { return target_.lstat(path, status); });
    }
    int fstat(int descriptor, struct stat& status) override {
        return unlessRefused("fstat", [&] { return target_.fstat(descriptor, status); });
    }
    int access(const std::string& path, int mode) override {
        return unlessRefused("access", [&] { return target_.access(path, mode); });
    }
    int readdir(const std::string& path, std::vector<std::string>& names) override {
        return unlessRefused("readdir", [&] { return target_.readdir(path, names); });
    }
    int mkdir(const std::string& path, mode_t mode) override {
        return unlessRefused("mkdir", [&] { return target_.mkdir(path, mode); });
    }
    int link(const std::string& from, const std::string& to) override {
        return unlessRefused("link", [&] { return target_.link(from, to); });
    }
    int rename(const std::string& from, const std::string& to, unsigned flags) override {
        return unlessRefused("rename", [&] { return target_.rename(from, to, flags); });
    }
    int unlink(const std::string& path) override {
        return unlessRefused("unlink", [&] { return target_.unlink(path); });
    }
    int chmod(const std::string& path, mode_t mode) override {
        return unlessRefused("chmod", [&] { return target_.chmod(path, mode); });
    }
    int flock(int descriptor, int operation) override {
        return unlessRefused("flock", [&] { return target_.flock(descriptor, operation); });
    }
    int lockBytes(int descriptor, short type, std::int64_t start, std::int64_t length) override {
        return unlessRefused("lockBytes", [&] { return target_.lockBytes(descriptor, type, start, length); });
    }
    int isByteLocked(int descriptor, std::int64_t place) override {
        return unlessRefused("isByteLocked", [&] { return target_.isByteLocked(descriptor, place); });
    }

protected:
    /// Asked before each call that is forwarded, by its name: 0, or the negative error number that is its
    /// result instead.
    virtual int refusal(const char*) { return 0; }

    /// The path of an open file.
    static std::string pathOf(int descriptor) {
        std::error_code ignored;
        return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), ignored).string();
    }

private:
    template<class Call>
    auto unlessRefused(const char* name, Call call) -> decltype(call()) {
        const int error = refusal(name);
        return error != 0 ? error : call();
    }

    Disk& target_;
};

} // namespace sela
