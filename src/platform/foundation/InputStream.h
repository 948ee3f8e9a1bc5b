#pragma once

#include "platform/foundation/Error.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace sela {

/// Reads the bytes of one source from its start. Made by `FileManager::inputStream`, which is where a missing
/// or unreadable source fails; used by one thread at a time; closed by its destructor at the latest.
class InputStream {
public:
    virtual ~InputStream() = default;

    /// Readies the stream for reading. Never fails: what can fail has failed when the stream was made.
    virtual void open() = 0;

    /// Fills the start of `buffer` and returns the number of bytes read, which may be fewer than fit; 0 at
    /// the end of the source; -1 on failure, which `streamError` then tells. Interrupted system calls are
    /// repeated.
    virtual std::int64_t read(std::span<std::byte> buffer) = 0;

    /// The error of the last failed read; null when there is none.
    virtual ErrorRef streamError() const = 0;

    /// The size of the source in bytes when the stream was made: a hint, since a file may change under way.
    virtual std::int64_t expectedSize() const = 0;

    virtual void close() = 0;
};

} // namespace sela
