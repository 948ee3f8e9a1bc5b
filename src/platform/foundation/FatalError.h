#pragma once

#include "platform/foundation/SourceLocation.h"

#include <string_view>

namespace sela {

/// Stops the process because of a programming error: logs `message` and the caller's location, then aborts.
/// May be called on any thread. `message` is logged as it stands.
[[noreturn]] void fatalError(std::string_view message, SourceLocation place = SourceLocation::current());

} // namespace sela
