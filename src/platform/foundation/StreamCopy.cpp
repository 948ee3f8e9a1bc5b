#include "platform/foundation/StreamCopy.h"

namespace sela {

namespace {

/// Enough to find out whether a source has really ended.
constexpr std::int64_t probeSize = 4096;

} // namespace

std::int64_t StreamCopy::copyBlock() {
    const std::int64_t copied = systemCopies_ ? output_.copy(input_.descriptor(), blockSize) : -1;
    if (copied > 0)
        return copied;
    // An error does not say which side failed, and 0 need not be the end: some file systems return it for
    // virtual files. Reading and writing find out both.
    buffer_.resize(static_cast<std::size_t>(copied == 0 ? probeSize : blockSize));
    const std::int64_t count = input_.read(buffer_);
    if (count > 0)
        output_.write(DataView(buffer_).first(static_cast<std::size_t>(count)));
    systemCopies_ = copied == 0 && count == 0;
    return count;
}

} // namespace sela
