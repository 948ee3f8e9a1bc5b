#include "platform/foundation/OutputStream.h"

#include "platform/foundation/Disk.h"
#include "platform/foundation/FileManager.h"

#include <cerrno>
#include <utility>

namespace sela {

OutputStream::OutputStream(FileDescriptor descriptor, std::string path)
    : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

std::int64_t OutputStream::write(DataView bytes) {
    if (error_)
        return -1;
    error_ = writeFully(descriptor_.get(), bytes, written_, path_);
    if (error_)
        return -1;
    const auto count = static_cast<std::int64_t>(bytes.size());
    advance(count);
    return count;
}

std::int64_t OutputStream::copy(int descriptor, std::int64_t size) {
    if (error_)
        return -1;
    const std::int64_t count = Disk::inUse().copyFileRange(descriptor, descriptor_.get(), written_, size);
    if (count > 0)
        advance(count);
    return count;
}

void OutputStream::advance(std::int64_t count) {
    // Only a hint: the flush at the end writes the rest.
    Disk::inUse().syncFileRange(descriptor_.get(), written_, count);
    written_ += count;
}

ErrorRef OutputStream::synchronize() {
    if (ErrorRef error = synchronizeContent())
        return error;
    error_ = FileManager::defaultManager().synchronizeDirectory(
        URL::fileURL(path_).deletingLastPathComponent().path());
    return error_;
}

ErrorRef OutputStream::synchronizeContent() {
    if (error_)
        return error_;
    // The reservation may have made the file longer than what was written.
    int result = Disk::inUse().ftruncate(descriptor_.get(), written_);
    if (result == 0)
        result = Disk::inUse().fsync(descriptor_.get());
    error_ = result < 0 ? NSError::posix(-result, path_) : nullptr;
    return error_;
}

ErrorRef writeFully(int descriptor, DataView bytes, std::int64_t offset, const std::string& name) {
    while (!bytes.empty()) {
        const std::int64_t count = Disk::inUse().pwrite(descriptor, bytes, offset);
        if (count <= 0)
            return NSError::posix(count < 0 ? static_cast<int>(-count) : EIO, name);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += count;
    }
    return nullptr;
}

} // namespace sela
