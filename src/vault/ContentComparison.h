#pragma once

#include "platform/foundation/URL.h"

namespace sela {

/// Whether both URLs lead to regular files with the same bytes, or to one and the same file. False when
/// either cannot be read whole. One thread.
bool hasSameContent(const URL& first, const URL& second);

} // namespace sela
