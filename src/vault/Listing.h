#pragma once

#include "platform/foundation/Error.h"
#include "vault/Catalogue.h"

#include <string>

namespace sela {

/// The group's content as text for standard output. One thread. Names are escaped as in a log, so that none
/// can control a terminal; passwords and passcodes are never shown.

/// The albums as a tree, each vault's with its children below it, and the files that wait for each and for
/// none.
std::string albumsTable(const Catalogue& catalogue);

/// The ledger as a table, newest last, with each file's size, or "missing".
Result<std::string> ledgerTable();

/// The ledger as the JSON object of the settings, with its members written again; "{}" when there is none.
Result<std::string> ledgerJSON();

} // namespace sela
