#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"

namespace sela {

/// Whether both URLs are regular files with the same bytes, or one and the same file; a symbolic link is no
/// such file, and neither is a file that is missing. The error when both are there but cannot be read whole.
/// One thread.
Result<bool> hasSameContent(const URL& first, const URL& second);

} // namespace sela
