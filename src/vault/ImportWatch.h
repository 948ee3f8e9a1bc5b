#pragma once

#include "platform/foundation/Error.h"
#include "vault/Import.h"

#include <functional>

namespace sela {

/// Imports now and whenever the group's settings change, until SIGTERM or SIGINT, which take effect between
/// two imports. It waits for changes (inotify) and looks at nothing by a clock. An import that leaves entries
/// behind is not repeated for those alone.
///
/// Null after a signal. The error when there is no group, when another watch of it is running, when an import
/// cannot be begun, or when the settings cannot be watched. Main thread, before it has others.
ErrorRef watchAndImport(const std::function<Result<Import::Report>()>& import);

} // namespace sela
