#pragma once

#include "platform/foundation/Error.h"

#include <string>

namespace sela {

/// What the group holds, as text for standard output. One thread. Names are escaped as in a log, so that none
/// can drive a terminal; passwords and passcodes are never shown.

/// The catalogue as a table. The error when nothing is published or it cannot be decoded.
Result<std::string> albumsTable();

/// The ledger as a table, newest last, with each file's size, or "missing".
Result<std::string> ledgerTable();

/// The ledger as the JSON object that the settings hold, members written anew; "{}" when there is none.
Result<std::string> ledgerJSON();

} // namespace sela
