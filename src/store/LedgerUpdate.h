#pragma once

#include "store/SharedItem.h"
#include "store/SharedItemManager.h"

namespace sela {

/// Records one item in the ledger, on the calling thread, in one transaction, which excludes other extensions
/// and the main application. Any thread.
///
/// `completion` ends with a call without an error, also when the item was in the ledger already; the cases in
/// which a call with an error precedes it are those of `SharedItemManager::saveItem`. Only settings that
/// cannot be opened or stored end with an error alone: nothing is recorded then, and the ledger is unchanged.
/// `observer` is called at the end.
void updateLedger(const SharedItem& item, const SharedItemManager::Completion& completion,
                  const SaveObserver& observer = {});

/// The same on the main queue, which it never keeps for longer than a tenth of a second at a time: while
/// another program has the settings locked, it tries again later, for ten seconds.
void updateLedgerOnMainQueue(const SharedItem& item, const SharedItemManager::Completion& completion,
                             const SaveObserver& observer = {});

} // namespace sela
