#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"

namespace sela {

/// Whether both URLs are regular files with the same bytes, or one and the same file; false for a symbolic
/// link or a missing file. The error when both exist but cannot be read completely. One thread.
Result<bool> hasSameContent(const URL& first, const URL& second);

} // namespace sela
