#include "vault/ImportWatch.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "vault/ImportLock.h"
#include "vault/SettingsFolder.h"
#include "vault/VaultPlace.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

namespace sela {

namespace {

constexpr int oneSecond = 1000;
constexpr int forever = -1;

/// The folder of the settings, made if missing.
Result<URL> settingsFolder() {
    const std::optional<URL> config = BaseDirectories::config();
    if (!config)
        return ShareExtensionError::make("there is no place for settings");
    URL folder = config->appendingPathComponent("sela");
    if (ErrorRef error = FileManager::defaultManager().createDirectory(folder.path()))
        return error;
    return folder;
}

Result<std::set<std::string>> ledgerKeys() {
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    std::set<std::string> keys;
    for (const SharedItemLedger::Entry& entry : entries.value())
        keys.insert(entry.first);
    return keys;
}

/// What a watch has done so far.
struct Progress {
    std::set<std::string> left; ///< the keys that the last import left
    bool isDone = false;        ///< there is nothing new to import
};

/// Imports if there is anything but what the last import left. The error when that failed.
ErrorRef importWhatIsNew(const std::function<Result<Import::Report>()>& import, Progress& progress) {
    const Result<std::set<std::string>> keys = ledgerKeys();
    if (!keys)
        return keys.error();
    progress.isDone = std::ranges::includes(progress.left, keys.value());
    if (progress.isDone)
        return nullptr;
    const Result<Import::Report> report = import();
    if (!report)
        return report.error();
    if (isPassing(report.value().failure))
        return report.value().failure;
    const Result<std::set<std::string>> after = ledgerKeys();
    if (!after)
        return after.error();
    progress.left.clear();
    std::ranges::set_intersection(keys.value(), after.value(),
                                  std::inserter(progress.left, progress.left.end()));
    return nullptr;
}

} // namespace

ErrorRef watchAndImport(EndingSignals& signals, const std::function<Result<Import::Report>()>& import) {
    const Result<URL> container = vaultContainer();
    if (!container)
        return container.error();
    // Each import locks the container, and each save locks "Items"; the watch locks the remaining folder.
    const Result<ImportLock> lock =
        ImportLock::take(container.value().appendingPathComponent(albumThumbnailsFolderName));
    if (!lock)
        return lock.error();
    const Result<URL> place = settingsFolder();
    if (!place)
        return place.error();
    SettingsFolder folder(place.value());
    if (ErrorRef error = folder.watch())
        return error;
    Progress progress;
    while (!signals.haveArrived()) {
        // Read before the ledger: an import changes the settings itself, and its own changes must be
        // distinguished from those of others.
        if (folder.changes() == SettingsFolder::Changes::end) {
            if (!folder.awaitNext(signals))
                break;
            progress = {};
        }
        if (ErrorRef error = importWhatIsNew(import, progress)) {
            if (!isPassing(error))
                return error;
            signals.arriveWithin(oneSecond);
        } else if (progress.isDone) {
            signals.arriveWithin(forever, folder.descriptor());
        }
    }
    return nullptr;
}

} // namespace sela
