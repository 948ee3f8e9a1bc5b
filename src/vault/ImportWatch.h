#pragma once

#include "platform/foundation/Error.h"
#include "vault/Import.h"

#include <functional>

namespace sela {

/// Imports now and whenever the group's settings change, until SIGTERM or SIGINT, which take effect between
/// two imports. It waits for changes by inotify and does not poll. An import that leaves entries in the
/// ledger is not repeated for those alone.
///
/// Null after a signal. The error when there is no group, when another watch of it is running, when an import
/// cannot be begun, or when the settings cannot be watched. Main thread, before there are others.
ErrorRef watchAndImport(const std::function<Result<Import::Report>()>& import);

} // namespace sela
