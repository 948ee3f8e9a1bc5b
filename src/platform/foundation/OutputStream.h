#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"

#include <cstdint>

namespace sela {

/// Writes the bytes of one file from its start. Made by `FileManager::outputStream`, which is where a file
/// that cannot be made, or has no room on its disk, fails; used by one thread at a time; closed by its
/// destructor at the latest.
class OutputStream {
public:
    virtual ~OutputStream() = default;

    /// Readies the stream for writing. Never fails: what can fail has failed when the stream was made.
    virtual void open() = 0;

    /// Writes all of `bytes`, going on after short writes and interruptions, and returns their number; -1 on
    /// failure, which `streamError` then tells. After a failure nothing more is written.
    virtual std::int64_t write(DataView bytes) = 0;

    /// Ends the file after the last byte written and brings it to the disk, its folder's entry included.
    /// Returns null only when everything written is safe on the disk; the error of an earlier failed write
    /// counts.
    virtual ErrorRef synchronize() = 0;

    /// The first error of this stream; null when there is none.
    virtual ErrorRef streamError() const = 0;

    virtual void close() = 0;
};

} // namespace sela
