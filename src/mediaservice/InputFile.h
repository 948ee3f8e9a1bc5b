#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <span>

namespace sela {

/// A file to decode, known by its open descriptor alone. Others may truncate or change it at any time: a part
/// that cannot be read any more counts as the end of the file. One thread at a time.
class InputFile {
public:
    explicit InputFile(FileDescriptor descriptor);

    /// The size when it was opened, in bytes; 0 when the descriptor is not seekable.
    std::int64_t size() const { return size_; }

    /// Fills `buffer` from `offset`; returns how many bytes there were, fewer only at the end of the file.
    std::size_t readAt(std::int64_t offset, std::span<std::byte> buffer) const;

    /// The whole of a part of the file; absent when the file ends before, or the part is larger than `limit`.
    std::optional<Data> part(std::int64_t offset, std::int64_t size, std::int64_t limit) const;

private:
    FileDescriptor descriptor_;
    std::int64_t size_ = 0;
};

} // namespace sela
