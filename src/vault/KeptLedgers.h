#pragma once

#include "platform/foundation/Error.h"

#include <string>
#include <vector>

namespace sela {

/// Ledgers that could not be read and that the settings keep, each under a key of its own, since a fresh one
/// took their place. They may record files of "Items". One thread.

/// The keys, oldest first. The error when the settings cannot be read.
Result<std::vector<std::string>> keptLedgers();

/// The text of one. The error when there is none under that key, or the settings cannot be read.
Result<std::string> keptLedger(const std::string& key);

/// Removes one. The error when the settings cannot be changed.
ErrorRef discardKeptLedger(const std::string& key);

/// Why files of "Items" that no entry has may be recorded all the same, in a ledger that is kept or was lost
/// with its settings, and so must stay; empty when they need not. The error when the settings cannot be read.
Result<std::string> reasonToKeepUnrecorded();

/// Tells a person how to remove it.
std::string howToDiscard(const std::string& key);

} // namespace sela
