#include "store/LedgerUpdate.h"

#include "platform/foundation/NSLog.h"
#include "platform/foundation/TimeText.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"

#include <string>
#include <utility>

namespace sela {

namespace {

std::string describe(const std::vector<std::string>& texts) {
    std::string description = "[";
    for (const std::string& text : texts) {
        description += description.size() > 1 ? ", \"" : "\"";
        for (const char c : text) {
            if (c == '"' || c == '\\')
                description += '\\';
            description += c;
        }
        description += '"';
    }
    return description + "]";
}

/// What became of the ledger in one step.
struct Outcome {
    ErrorRef unreadable;    ///< why the ledger could not be decoded; nothing was changed because of it
    ErrorRef unencoded;     ///< why the item could not be added
    bool isReported = true; ///< whether `unencoded` is an error of the save
};

ErrorRef encodingError() {
    return std::make_shared<NSError>(NSCocoaErrorDomain, NSCoderInvalidValueError,
                                     "The item cannot be encoded: a text is not UTF-8");
}

/// Stores a ledger with this item alone. An unreadable one that it replaces is set aside first: somebody may
/// still want to mend it.
void storeFresh(SettingsTransaction& settings, const std::string& key, const SharedItem& item,
                const std::optional<Data>& unreadable, Outcome& outcome) {
    const std::optional<Data> ledger = SharedItemLedger::fresh(key, item);
    if (!ledger) {
        NSLog("SharedItemManager, saveItem: falied to encode sharedItemsDictionary");
        outcome.unencoded = encodingError();
        outcome.isReported = false;
        return;
    }
    if (unreadable)
        settings.setData(std::string(unreadableItemsKeyPrefix) + uniqueTimeText(), *unreadable);
    settings.setData(sharedItemsKey, *ledger);
}

/// One attempt. What fails in the transaction it keeps itself.
void record(SettingsTransaction& settings, const SharedItem& item, bool replaceUnreadable, Outcome& outcome) {
    const std::string key = SharedItemLedger::key(item);
    const Result<std::optional<Data>> read = settings.readData(sharedItemsKey);
    if (!read)
        return;
    const std::optional<Data>& ledger = read.value();
    if (!ledger)
        return storeFresh(settings, key, item, std::nullopt, outcome);
    const Result<bool> present = SharedItemLedger::contains(*ledger, key);
    if (!present) {
        if (replaceUnreadable)
            storeFresh(settings, key, item, ledger, outcome);
        else
            outcome.unreadable = present.error();
        return;
    }
    if (present.value()) {
        NSLog("SharedItemManager, saveItem: item already exists, album = " + describe(item.albumNames) +
              ", fake = " + std::string(sela::describe(item.fake)) + ", file = " + item.fileName +
              ", key = " + key + "]");
        return;
    }
    const std::optional<Data> grown = SharedItemLedger::adding(*ledger, key, item);
    if (!grown) {
        NSLog("SharedItemManager, saveItem: falied to encode sharedItemsDictionary 2");
        outcome.unencoded = encodingError();
        return;
    }
    settings.setData(sharedItemsKey, *grown);
}

} // namespace

void updateLedger(const SharedItem& item, const SharedItemManager::Completion& completion,
                  const SaveObserver& observer) {
    const auto report = [&](const ErrorRef& error) {
        if (completion)
            completion(error);
    };
    Outcome outcome;
    const auto attempt = [&](bool replaceUnreadable) -> ErrorRef {
        std::optional<UserDefaults> defaults = sharedDefaults();
        if (!defaults) {
            NSLog("saveItem: userDefaults is nil");
            return ShareExtensionError::make("UserDefaults is nil");
        }
        Result<SettingsTransaction> settings = SettingsTransaction::begin(std::move(*defaults));
        if (!settings)
            return settings.error();
        record(settings.value(), item, replaceUnreadable, outcome);
        return settings.value().commit();
    };
    ErrorRef failure = attempt(false);
    if (!failure && outcome.unreadable) {
        // Reported between two steps, not inside one: the completion may do anything.
        NSLog("SharedItemManager, saveItem: falied to decode sharedItemsData");
        report(outcome.unreadable);
        failure = attempt(true);
    }
    if (failure) {
        NSLog("SharedItemManager, saveItem: failed to store sharedItems, error = " +
              failure->localizedDescription());
        observer.tellEnd(SaveEnd::Kind::failed, failure);
        report(failure);
        return;
    }
    if (outcome.unencoded)
        observer.tellEnd(SaveEnd::Kind::failed, outcome.unencoded);
    else
        observer.tellEnd(SaveEnd::Kind::recorded);
    if (outcome.unencoded && outcome.isReported)
        report(outcome.unencoded);
    report(nullptr);
}

} // namespace sela
