#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace sela {

/// Writes the bytes of one file from its start. Made by `FileManager::outputStream`, which fails for a file
/// that cannot be made or has no room on its disk. Writeback of each block starts when it is written, so that
/// `synchronize` has little left to wait for. Used by one thread at a time.
class OutputStream {
public:
    /// Of an open descriptor of an empty file, which lies at `path`.
    OutputStream(FileDescriptor descriptor, std::string path);

    /// Writes all of `bytes`, going on after short writes, and returns their number; -1 on failure, whose
    /// error is `streamError`. After a failure nothing more is written.
    std::int64_t write(DataView bytes);

    /// Has the system copy at most `size` bytes from a descriptor's position, and returns their number; 0 or
    /// less, and nothing is changed, when it does not.
    std::int64_t copy(int descriptor, std::int64_t size);

    /// Ends the file after the last byte written and flushes it, its folder's entry included. Returns null
    /// only when everything written is durable; the error of an earlier failed write counts.
    ErrorRef synchronize();

    /// The same without the folder's entry.
    ErrorRef synchronizeContent();

    /// The first error of this stream; null when there is none.
    ErrorRef streamError() const { return error_; }

private:
    void advance(std::int64_t count);

    FileDescriptor descriptor_;
    std::string path_;
    std::int64_t written_ = 0;
    ErrorRef error_;
};

/// Writes all of `bytes` from `offset` on, going on after short writes. `name` is what an error calls the
/// file.
ErrorRef writeFully(int descriptor, DataView bytes, std::int64_t offset, const std::string& name);

} // namespace sela
