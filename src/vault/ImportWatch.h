#pragma once

#include "platform/foundation/Error.h"
#include "vault/EndingSignals.h"
#include "vault/Import.h"

#include <functional>

namespace sela {

/// Imports now and whenever the group's settings change, until a signal, which takes effect between two
/// imports or when the import itself asks for it. It waits for changes by inotify and does not poll. An
/// import that leaves entries in the ledger is not repeated for those alone.
///
/// While another import of the group is running, or other programs keep the settings locked, it tries again
/// each second. When the folder of the settings is moved or removed, it waits, looking each second, until
/// there is one again in which nothing changes, so that it does not come into a restore's way, and then
/// imports.
///
/// Null after a signal. The error when there is no group, when another watch of it is running, when an import
/// cannot be begun, or when the settings cannot be watched. Main thread.
ErrorRef watchAndImport(EndingSignals& signals, const std::function<Result<Import::Report>()>& import);

} // namespace sela
