#include "platform/foundation/PosixStreams.h"

#include "platform/foundation/SystemCall.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace sela {

PosixInputStream::PosixInputStream(FileDescriptor descriptor, std::int64_t expectedSize)
    : descriptor_(std::move(descriptor)), expectedSize_(expectedSize) {}

std::int64_t PosixInputStream::read(std::span<std::byte> buffer) {
    const ssize_t count =
        retryingInterrupted([&] { return ::read(descriptor_.get(), buffer.data(), buffer.size()); });
    if (count < 0)
        error_ = NSError::posix(errno, "read");
    return count;
}

PosixOutputStream::PosixOutputStream(FileDescriptor descriptor, std::string folder)
    : descriptor_(std::move(descriptor)), folder_(std::move(folder)) {}

std::int64_t PosixOutputStream::write(DataView bytes) {
    if (error_)
        return -1;
    error_ = writeFully(descriptor_.get(), bytes);
    if (error_)
        return -1;
    const auto count = static_cast<std::int64_t>(bytes.size());
    // Only a hint: what it cannot do, synchronize does.
    ::sync_file_range(descriptor_.get(), written_, count, SYNC_FILE_RANGE_WRITE);
    written_ += count;
    return count;
}

ErrorRef PosixOutputStream::synchronize() {
    if (error_)
        return error_;
    // The reservation may have made the file longer than what was written.
    if (retryingInterrupted([&] { return ::ftruncate(descriptor_.get(), written_); }) != 0)
        error_ = NSError::posix(errno, "ftruncate");
    else
        error_ = synchronizeFile(descriptor_.get());
    if (!error_)
        error_ = synchronizeFolder(folder_);
    return error_;
}

ErrorRef writeFully(int descriptor, DataView bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            retryingInterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (count <= 0)
            return NSError::posix(count < 0 ? errno : EIO, "write");
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return nullptr;
}

ErrorRef synchronizeFile(int descriptor) {
    if (retryingInterrupted([&] { return ::fsync(descriptor); }) != 0)
        return NSError::posix(errno, "fsync");
    return nullptr;
}

ErrorRef synchronizeFolder(const std::string& path) {
    const FileDescriptor folder(
        retryingInterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!folder.isOpen())
        return NSError::posix(errno, "open folder");
    if (retryingInterrupted([&] { return ::fsync(folder.get()); }) != 0 && errno != EINVAL)
        return NSError::posix(errno, "fsync folder");
    return nullptr;
}

} // namespace sela
