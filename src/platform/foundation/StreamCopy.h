#pragma once

#include "platform/foundation/InputStream.h"
#include "platform/foundation/OutputStream.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sela {

/// Copies what is left of one stream to another, block by block. It uses copy_file_range, by which file
/// systems can share extents; where that fails, the block is read and written. Used by one thread at a time.
class StreamCopy {
public:
    /// The size of one block: 2 MiB, large enough that the cost of the calls is negligible.
    static constexpr std::int64_t blockSize = 2'097'152;

    StreamCopy(InputStream& input, OutputStream& output) : input_(input), output_(output) {}

    /// Copies one block, or less of it, and returns the number of bytes that were read; 0 at the end; -1 when
    /// reading failed, with the error in the input stream. A write error is kept by the output stream, and
    /// reading goes on.
    std::int64_t copyBlock();

private:
    InputStream& input_;
    OutputStream& output_;
    bool systemCopies_ = true;
    std::vector<std::byte> buffer_; ///< empty as long as the system copies
};

} // namespace sela
