#include "store/SharedItemManager.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "store/FileKind.h"
#include "store/LedgerUpdate.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"

#include <optional>
#include <string>
#include <utility>

namespace sela {

namespace {

void report(const SharedItemManager::Completion& completion, const ErrorRef& error) {
    if (completion)
        completion(error);
}

/// The checks that both forms of saving begin with. Returns where the item is to go; absent when the saving
/// has ended, with `completion` called unless "Items" could not be made.
std::optional<URL> destinationOf(const SharedItem& item, const SharedItemManager::Completion& completion) {
    if (!sharedDefaults()) {
        NSLog("saveItem: userDefaults is nil");
        report(completion, ShareExtensionError::make("UserDefaults is nil"));
        return std::nullopt;
    }
    if (fileKind(item.fileName) == FileKind::other) {
        NSLog("saveItem: file extension is not supported " + item.fileName);
        report(completion, ShareExtensionError::make("Unsupported file"));
        return std::nullopt;
    }
    const std::optional<URL> folder = sharedFolderUrl();
    if (!folder) {
        NSLog("SharedItemManager, shared folder is nil");
        report(completion, ShareExtensionError::make("Shared folder is nil"));
        return std::nullopt;
    }
    FileManager& files = FileManager::defaultManager();
    const URL items = folder->appendingPathComponent(itemsFolderName);
    if (!files.fileExists(items.path()) && files.createDirectory(items.path())) {
        NSLog("saveItem: failed to create dir = " + items.path());
        return std::nullopt;
    }
    URL destination = items.appendingPathComponent(item.fileName);
    if (files.fileExists(destination.path())) {
        NSLog("File already exists, fileName = " + item.fileName);
        report(completion, nullptr);
        return std::nullopt;
    }
    return destination;
}

} // namespace

void SharedItemManager::saveItem(const SharedItem& item, const URL& fileUrl, Completion completion) {
    const std::optional<URL> destination = destinationOf(item, completion);
    if (!destination)
        return;
    copyItem(fileUrl, *destination, nullptr,
             [item, completion = std::move(completion)](const ErrorRef& error) {
                 if (error)
                     report(completion, error);
                 else
                     updateLedger(item, completion);
             });
}

void SharedItemManager::saveItem(const SharedItem& item, DataView data, const Completion& completion) {
    const std::optional<URL> destination = destinationOf(item, completion);
    if (!destination)
        return;
    if (const ErrorRef error = FileManager::defaultManager().writeAtomically(data, *destination)) {
        report(completion, error);
        return;
    }
    updateLedger(item, completion);
}

} // namespace sela
