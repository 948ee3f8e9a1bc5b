#include "store/SharedItemManager.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "store/FileKind.h"
#include "store/ItemsLock.h"
#include "store/LedgerUpdate.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace sela {

namespace {

void report(const SharedItemManager::Completion& completion, const ErrorRef& error) {
    if (completion)
        completion(error);
}

/// Where an item is to go.
struct Destination {
    URL file;
    std::shared_ptr<const ItemsLock> lock; ///< held until the item is recorded
};

/// The checks at the start of both forms of saving. Returns the item's destination; absent when the save has
/// ended, with `completion` called unless "Items" could not be made.
std::optional<Destination> destinationOf(const SharedItem& item,
                                         const SharedItemManager::Completion& completion,
                                         const SaveObserver& observer) {
    const auto fail = [&](const char* message) {
        const ErrorRef error = ShareExtensionError::make(message);
        observer.tellEnd(SaveEnd::Kind::failed, error);
        report(completion, error);
        return std::nullopt;
    };
    if (!sharedDefaults()) {
        NSLog("saveItem: userDefaults is nil");
        return fail("UserDefaults is nil");
    }
    if (fileKind(item.fileName) == FileKind::other) {
        NSLog("saveItem: file extension is not supported " + item.fileName);
        return fail("Unsupported file");
    }
    const std::optional<URL> folder = sharedFolderUrl();
    if (!folder) {
        NSLog("SharedItemManager, shared folder is nil");
        return fail("Shared folder is nil");
    }
    FileManager& files = FileManager::defaultManager();
    files.closeToOthers(folder->path());
    const URL items = folder->appendingPathComponent(itemsFolderName);
    if (!files.fileExists(items.path())) {
        if (const ErrorRef error = files.createDirectory(items.path())) {
            NSLog("saveItem: failed to create dir = " + items.path());
            observer.tellEnd(SaveEnd::Kind::silent, error);
            return std::nullopt;
        }
    }
    auto lock = std::make_shared<const ItemsLock>(ItemsLock::forSaving(items));
    URL destination = items.appendingPathComponent(item.fileName);
    if (files.fileExists(destination.path())) {
        NSLog("File already exists, fileName = " + item.fileName);
        observer.tellEnd(SaveEnd::Kind::failed,
                         ShareExtensionError::make("a file of that name is there already"));
        report(completion, nullptr);
        return std::nullopt;
    }
    return Destination{std::move(destination), std::move(lock)};
}

} // namespace

void SharedItemManager::saveItem(const SharedItem& item, const URL& fileUrl, Completion completion,
                                 const SaveObserver& observer) {
    const std::optional<Destination> destination = destinationOf(item, completion, observer);
    if (!destination)
        return;
    const Completion holdingLock = [completion = std::move(completion), lock = destination->lock](
                                       const ErrorRef& error) { report(completion, error); };
    const auto recordAtEnd = [item, holdingLock, observer](const ErrorRef& error) {
        if (error)
            holdingLock(error);
        else
            updateLedgerOnMainQueue(item, holdingLock, observer);
    };
    copyItem(fileUrl, destination->file, nullptr, recordAtEnd, observer);
}

void SharedItemManager::saveItem(const SharedItem& item, DataView data, const Completion& completion,
                                 const SaveObserver& observer) {
    const std::optional<Destination> destination = destinationOf(item, completion, observer);
    if (!destination)
        return;
    const auto size = static_cast<std::int64_t>(data.size());
    const auto written = [&](std::size_t bytes) -> ErrorRef {
        observer.tellCopied(static_cast<std::int64_t>(bytes), size);
        return observer.wantsStop() ? ShareExtensionError::make("the copy was interrupted") : nullptr;
    };
    if (const ErrorRef error =
            FileManager::defaultManager().writeAtomically(data, destination->file, written)) {
        observer.tellEnd(SaveEnd::Kind::failed, error);
        report(completion, error);
        return;
    }
    updateLedger(item, completion, observer);
}

} // namespace sela
