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
ErrorRef storeFresh(UserDefaults& defaults, const std::string& key, const SharedItem& item,
                    const std::optional<Data>& unreadable, Outcome& outcome) {
    const std::optional<Data> ledger = SharedItemLedger::fresh(key, item);
    if (!ledger) {
        NSLog("SharedItemManager, saveItem: falied to encode sharedItemsDictionary");
        outcome.unencoded = encodingError();
        outcome.isReported = false;
        return nullptr;
    }
    if (unreadable)
        if (ErrorRef error =
                defaults.setData(std::string(unreadableItemsKeyPrefix) + uniqueTimeText(), *unreadable))
            return error;
    return defaults.setData(sharedItemsKey, *ledger);
}

/// One attempt, inside a transaction. Returns an error only when reading or storing failed.
ErrorRef record(UserDefaults& defaults, const SharedItem& item, bool replaceUnreadable, Outcome& outcome) {
    const std::string key = SharedItemLedger::key(item);
    const Result<std::optional<Data>> read = defaults.readData(sharedItemsKey);
    if (!read)
        return read.error();
    const std::optional<Data>& ledger = read.value();
    if (!ledger)
        return storeFresh(defaults, key, item, std::nullopt, outcome);
    const Result<bool> present = SharedItemLedger::contains(*ledger, key);
    if (!present) {
        if (!replaceUnreadable) {
            outcome.unreadable = present.error();
            return nullptr;
        }
        return storeFresh(defaults, key, item, ledger, outcome);
    }
    if (present.value()) {
        NSLog("SharedItemManager, saveItem: item already exists, album = " + describe(item.albumNames) +
              ", fake = " + std::string(sela::describe(item.fake)) + ", file = " + item.fileName +
              ", key = " + key + "]");
        return nullptr;
    }
    const std::optional<Data> grown = SharedItemLedger::adding(*ledger, key, item);
    if (!grown) {
        NSLog("SharedItemManager, saveItem: falied to encode sharedItemsDictionary 2");
        outcome.unencoded = encodingError();
        return nullptr;
    }
    return defaults.setData(sharedItemsKey, *grown);
}

} // namespace

void updateLedger(const SharedItem& item, const SharedItemManager::Completion& completion,
                  const SaveObserver& observer) {
    const auto report = [&](const ErrorRef& error) {
        if (completion)
            completion(error);
    };
    std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults) {
        NSLog("saveItem: userDefaults is nil");
        const ErrorRef error = ShareExtensionError::make("UserDefaults is nil");
        observer.tellEnd(SaveEnd::Kind::failed, error);
        report(error);
        return;
    }
    Outcome outcome;
    const auto attempt = [&](bool replaceUnreadable) {
        return defaults->transaction([&] { return record(*defaults, item, replaceUnreadable, outcome); });
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
