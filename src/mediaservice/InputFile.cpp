#include "mediaservice/InputFile.h"

#include <algorithm>
#include <cerrno>

namespace sela {

InputFile::InputFile(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {
    size_ = std::max<std::int64_t>(0, ::lseek(descriptor_.get(), 0, SEEK_END));
}

std::size_t InputFile::readAt(std::int64_t offset, std::span<std::byte> buffer) const {
    std::size_t filled = 0;
    while (filled < buffer.size() && offset >= 0) {
        const ssize_t count = ::pread(descriptor_.get(), buffer.data() + filled, buffer.size() - filled,
                                      offset + static_cast<std::int64_t>(filled));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

std::optional<Data> InputFile::part(std::int64_t offset, std::int64_t size, std::int64_t limit) const {
    if (offset < 0 || size < 0 || size > limit || offset > size_ || size > size_ - offset)
        return std::nullopt;
    Data bytes(static_cast<std::size_t>(size));
    if (readAt(offset, bytes) != bytes.size())
        return std::nullopt;
    return bytes;
}

} // namespace sela
