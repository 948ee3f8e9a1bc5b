#pragma once

#include "store/SharedItem.h"
#include "store/SharedItemManager.h"

namespace sela {

/// Records one item in the ledger, on the calling thread, as one step that neither another extension nor the
/// main application can come between. Any thread.
///
/// `completion` ends with a call without an error, also when the item was in the ledger already; the cases in
/// which an error comes before it are those of `SharedItemManager::saveItem`. Only settings that cannot be
/// opened or stored end with an error alone: nothing is recorded then, and the ledger is as it was.
/// `observer` is told the end.
void updateLedger(const SharedItem& item, const SharedItemManager::Completion& completion,
                  const SaveObserver& observer = {});

} // namespace sela
