#include "store/LedgerUpdate.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/TimeText.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "store/StoreConst.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
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

/// The ledger as this process stored it last, which need not be read through again as long as nobody else
/// changes it.
struct KnownLedger {
    Data text;
    SharedItemLedger::Keys keys;
};

/// Exchanges what is known; who takes it leaves nothing, so that no two threads use it at once.
KnownLedger exchangeKnownLedger(KnownLedger known) {
    static std::mutex mutex;
    static auto* const kept = new KnownLedger;
    const std::lock_guard lock(mutex);
    return std::exchange(*kept, std::move(known));
}

/// What is known of a ledger; the error when it is none.
Result<KnownLedger> know(Data ledger) {
    KnownLedger known = exchangeKnownLedger({});
    if (asText(known.text) == asText(ledger) && !ledger.empty())
        return known;
    Result<SharedItemLedger::Keys> keys = SharedItemLedger::keys(ledger);
    if (!keys)
        return keys.error();
    return KnownLedger{std::move(ledger), std::move(keys.value())};
}

/// One attempt. What fails in the transaction it keeps itself.
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

/// What happens after an attempt.
using AttemptEnd = std::function<void(const ErrorRef& failure, const Outcome& outcome)>;

/// Makes an attempt, repeats it while the settings are locked, and calls `end` with the last one's result.
using Attempting = std::function<void(const SharedItem& item, bool replaceUnreadable, const AttemptEnd& end)>;

void attemptHere(const SharedItem& item, bool replaceUnreadable, const AttemptEnd& end) {
    Outcome outcome;
    const ErrorRef failure = attempt(item, replaceUnreadable, outcome, UserDefaults::longPatience);
    end(failure, outcome);
}

/// The pause between two attempts on the main queue, and their number: ten seconds in all.
constexpr std::chrono::milliseconds pause{100};
constexpr int mostAttempts = 50;

/// The pause is on another thread: a main loop drops work that is due later when it ends, but waits for
/// threads.
void attemptOnMainQueue(const SharedItem& item, bool replaceUnreadable, const AttemptEnd& end,
                        int attemptsBefore) {
    Outcome outcome;
    const ErrorRef failure = attempt(item, replaceUnreadable, outcome, UserDefaults::shortPatience);
    if (!isBusy(failure) || attemptsBefore + 1 >= mostAttempts) {
        end(failure, outcome);
        return;
    }
    DispatchQueue::global().async([=] {
        std::this_thread::sleep_for(pause);
        DispatchQueue::main().async(
            [=] { attemptOnMainQueue(item, replaceUnreadable, end, attemptsBefore + 1); });
    });
}

void conclude(const SharedItemManager::Completion& completion, const SaveObserver& observer,
              const ErrorRef& failure, const Outcome& outcome) {
    const auto report = [&](const ErrorRef& error) {
        if (completion)
            completion(error);
    };
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

void update(const SharedItem& item, const SharedItemManager::Completion& completion,
            const SaveObserver& observer, const Attempting& attempting) {
    attempting(item, false, [=](const ErrorRef& failure, const Outcome& outcome) {
        if (failure || !outcome.unreadable) {
            conclude(completion, observer, failure, outcome);
            return;
        }
        // Reported between two transactions, not inside one: the completion may do anything.
        NSLog("SharedItemManager, saveItem: falied to decode sharedItemsData");
        if (completion)
            completion(outcome.unreadable);
        attempting(item, true, [=](const ErrorRef& replacingFailure, const Outcome& replaced) {
            conclude(completion, observer, replacingFailure, replaced);
        });
    });
}

} // namespace

void updateLedger(const SharedItem& item, const SharedItemManager::Completion& completion,
                  const SaveObserver& observer) {
    update(item, completion, observer, attemptHere);
}

void updateLedgerOnMainQueue(const SharedItem& item, const SharedItemManager::Completion& completion,
                             const SaveObserver& observer) {
    update(item, completion, observer,
           [](const SharedItem& recorded, bool replaceUnreadable, const AttemptEnd& end) {
               attemptOnMainQueue(recorded, replaceUnreadable, end, 0);
           });
}

} // namespace sela
