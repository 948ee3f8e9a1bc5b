#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace sela {

/// Reads the bytes of one source from its start. `FileManager::inputStream` makes one of a file, which fails
/// for a missing or unreadable file. Used by one thread at a time.
class InputStream {
public:
    /// Of an open descriptor; `name` is what errors call it, and `expectedSize` a hint.
    InputStream(FileDescriptor descriptor, std::string name, std::int64_t expectedSize = 0);

    /// Fills the start of `buffer` and returns the number of bytes read, which may be fewer than fit; 0 at
    /// the end of the source; -1 on failure, whose error is `streamError`.
    std::int64_t read(std::span<std::byte> buffer);

    /// The descriptor, from whose position the system can copy.
    int descriptor() const { return descriptor_.get(); }

    /// The error of the last failed read; null when there is none.
    ErrorRef streamError() const { return error_; }

    /// The size of the source in bytes when the stream was made: a hint, since a file may change meanwhile.
    std::int64_t expectedSize() const { return expectedSize_; }

private:
    FileDescriptor descriptor_;
    std::string name_;
    std::int64_t expectedSize_;
    ErrorRef error_;
};

} // namespace sela
