#include "store/LedgerUpdate.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/TimeText.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "store/StoreConst.h"

#include <mutex>
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

/// The result of one transaction on the ledger.
struct Outcome {
    ErrorRef unreadable;    ///< why the ledger could not be decoded; nothing was changed because of it
    ErrorRef unencoded;     ///< why the item could not be added
    bool isReported = true; ///< whether `unencoded` is an error of the save
};

ErrorRef encodingError() {
    return std::make_shared<NSError>(NSCocoaErrorDomain, NSCoderInvalidValueError,
                                     "The item cannot be encoded: a text is not UTF-8");
}

/// Stores a ledger with this item alone. An unreadable one that it replaces is kept under another key first,
/// so that it can still be repaired.
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

/// The ledger as this process stored it last, which need not be parsed again unless another program changed
/// it.
struct KnownLedger {
    Data text;
    SharedItemLedger::Keys keys;
};

/// Exchanges the known ledger; a thread that takes it leaves none behind, so that no two threads use it at
/// once.
KnownLedger exchangeKnownLedger(KnownLedger known) {
    static std::mutex mutex;
    static auto* const kept = new KnownLedger;
    const std::lock_guard lock(mutex);
    return std::exchange(*kept, std::move(known));
}

/// The keys of a ledger, from the cache where it is the same; the error when it is none.
Result<KnownLedger> know(Data ledger) {
    KnownLedger known = exchangeKnownLedger({});
    if (asText(known.text) == asText(ledger) && !ledger.empty())
        return known;
    Result<SharedItemLedger::Keys> keys = SharedItemLedger::keys(ledger);
    if (!keys)
        return keys.error();
    return KnownLedger{std::move(ledger), std::move(keys.value())};
}

/// One attempt. The transaction keeps its own failures.
void record(SettingsTransaction& settings, const SharedItem& item, bool replaceUnreadable, Outcome& outcome) {
    const std::string key = SharedItemLedger::key(item);
    const Result<std::optional<Data>> ledger = settings.readData(sharedItemsKey);
    if (!ledger)
        return;
    if (!ledger.value())
        return storeFresh(settings, key, item, std::nullopt, outcome);
    Result<KnownLedger> known = know(*ledger.value());
    if (!known) {
        if (replaceUnreadable)
            storeFresh(settings, key, item, ledger.value(), outcome);
        else
            outcome.unreadable = known.error();
        return;
    }
    if (known.value().keys.contains(key)) {
        NSLog("SharedItemManager, saveItem: item already exists, album = " + describe(item.albumNames) +
              ", fake = " + std::string(sela::describe(item.fake)) + ", file = " + item.fileName +
              ", key = " + key + "]");
        return;
    }
    std::optional<Data> grown = SharedItemLedger::adding(known.value().text, key, item);
    if (!grown) {
        NSLog("SharedItemManager, saveItem: falied to encode sharedItemsDictionary 2");
        outcome.unencoded = encodingError();
        return;
    }
    settings.setData(sharedItemsKey, *grown);
    known.value().text = std::move(*grown);
    known.value().keys.insert(key);
    exchangeKnownLedger(std::move(known.value()));
}

ErrorRef attempt(const SharedItem& item, bool replaceUnreadable, Outcome& outcome,
                 UserDefaults::Patience patience) {
    Result<UserDefaults> defaults = UserDefaults::open(StoreConst::shared().groupId, patience);
    if (isBusy(defaults.error()))
        return defaults.error();
    if (!defaults) {
        NSLog("saveItem: userDefaults is nil");
        return ShareExtensionError::make("UserDefaults is nil");
    }
    Result<SettingsTransaction> settings = SettingsTransaction::begin(std::move(defaults.value()));
    if (!settings)
        return settings.error();
    record(settings.value(), item, replaceUnreadable, outcome);
    return settings.value().commit();
}

/// Continues after a first attempt, whose failure this is.
void conclude(const SharedItem& item, const SharedItemManager::Completion& completion,
              const SaveObserver& observer, ErrorRef failure, Outcome outcome,
              UserDefaults::Patience patience) {
    const auto report = [&](const ErrorRef& error) {
        if (completion)
            completion(error);
    };
    if (!failure && outcome.unreadable) {
        // Reported between two transactions, not inside one: the completion may do anything.
        NSLog("SharedItemManager, saveItem: falied to decode sharedItemsData");
        report(outcome.unreadable);
        failure = attempt(item, true, outcome, patience);
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

/// The pause between two attempts on the main queue, and their number: ten seconds in all.
constexpr double pauseInSeconds = 0.1;
constexpr int mostAttempts = 50;

void attemptOnMainQueue(const SharedItem& item, const SharedItemManager::Completion& completion,
                        const SaveObserver& observer, int attemptsBefore) {
    Outcome outcome;
    const ErrorRef failure = attempt(item, false, outcome, UserDefaults::shortPatience);
    if (isBusy(failure) && attemptsBefore + 1 < mostAttempts)
        DispatchQueue::main().asyncAfter(pauseInSeconds, [item, completion, observer, attemptsBefore] {
            attemptOnMainQueue(item, completion, observer, attemptsBefore + 1);
        });
    else
        conclude(item, completion, observer, failure, outcome, UserDefaults::shortPatience);
}

} // namespace

void updateLedger(const SharedItem& item, const SharedItemManager::Completion& completion,
                  const SaveObserver& observer) {
    Outcome outcome;
    const ErrorRef failure = attempt(item, false, outcome, UserDefaults::longPatience);
    conclude(item, completion, observer, failure, outcome, UserDefaults::longPatience);
}

void updateLedgerOnMainQueue(const SharedItem& item, const SharedItemManager::Completion& completion,
                             const SaveObserver& observer) {
    attemptOnMainQueue(item, completion, observer, 0);
}

} // namespace sela
