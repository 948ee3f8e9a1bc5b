#include "platform/foundation/InputStream.h"

#include "platform/foundation/Disk.h"

#include <utility>

namespace sela {

InputStream::InputStream(FileDescriptor descriptor, std::string name, std::int64_t expectedSize)
    : descriptor_(std::move(descriptor)), name_(std::move(name)), expectedSize_(expectedSize) {}

std::int64_t InputStream::read(std::span<std::byte> buffer) {
    const std::int64_t count = Disk::inUse().read(descriptor_.get(), buffer);
    if (count >= 0)
        return count;
    error_ = NSError::posix(static_cast<int>(-count), name_);
    return -1;
}

} // namespace sela
