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

/// The same on the main queue, which it never keeps for longer than a tenth of a second at a time: while
/// another program has the settings locked, it tries again later, for ten seconds.
void updateLedgerOnMainQueue(const SharedItem& item, const SharedItemManager::Completion& completion,
                             const SaveObserver& observer = {});

} // namespace sela
