#include "share/AttachmentIntake.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/TimeText.h"
#include "share/MediaHelpers.h"
#include "store/ShareExtensionError.h"
#include "store/SharedItemManager.h"

#include <utility>

namespace sela {

namespace {

/// The share screen has three frames for thumbnails.
constexpr std::int64_t thumbnailPlaces = 3;

/// Quality of a picture that arrives without a file of its own; the vault's choice.
constexpr double jpegQuality = 0.9;

std::int64_t countOf(const auto& list) {
    return static_cast<std::int64_t>(list.size());
}

} // namespace

AttachmentIntake::AttachmentIntake() : selectedAlbumName{Bundle::main().localizedString("Default Album")} {}

NSExtensionItem* AttachmentIntake::firstItem() const {
    if (!extensionContext || extensionContext->inputItems.empty())
        return nullptr;
    return dynamic_cast<NSExtensionItem*>(extensionContext->inputItems.front().get());
}

std::shared_ptr<const NSExtensionItem::Attachments> AttachmentIntake::attachments() const {
    const NSExtensionItem* const item = firstItem();
    return item ? item->attachments() : nullptr;
}

bool AttachmentIntake::append(const NSExtensionItem::Attachments& more) {
    NSExtensionItem* const item = firstItem();
    if (!item)
        return false;
    item->append(more);
    itemsCount = getItemsCount();
    return true;
}

std::int64_t AttachmentIntake::getItemsCount() const {
    const auto list = attachments();
    const std::int64_t count = list ? countOf(*list) : 0;
    NSLog("getItemsCount count = " + std::to_string(count));
    return count;
}

void AttachmentIntake::loadThumbnails(std::function<void()> completion) {
    const std::size_t inputItems = extensionContext ? extensionContext->inputItems.size() : 0;
    NSLog("loadThumbnails inputItems count = " + std::to_string(inputItems));
    const auto list = attachments();
    const bool finished =
        !list || thumbnailCount >= countOf(*list) || thumbnailCount >= thumbnailPlaces ||
        (*list)[static_cast<std::size_t>(thumbnailCount)]->registeredTypeIdentifiers().empty();
    if (finished) {
        DispatchQueue::main().async(std::move(completion));
        return;
    }
    const NSItemProvider& provider = *(*list)[static_cast<std::size_t>(thumbnailCount)];
    const std::string typeIdentifier = provider.registeredTypeIdentifiers().front();
    provider.loadItem(typeIdentifier,
                      [weak = weak_from_this(), typeIdentifier, completion = std::move(completion)](
                          const NSItemProvider::Item& item, const ErrorRef& error) {
                          const std::shared_ptr<AttachmentIntake> self = weak.lock();
                          if (!self || self->extensionContext->isCancelled())
                              return;
                          self->addThumbnail(item, error, typeIdentifier);
                          self->thumbnailCount += 1;
                          self->loadThumbnails(completion);
                      });
}

void AttachmentIntake::addThumbnail(const NSItemProvider::Item& item, const ErrorRef& error,
                                    const std::string& typeIdentifier) {
    if (error) {
        NSLog("error: " + error->localizedDescription());
        return;
    }
    const URL* const file = std::get_if<URL>(&item);
    if (!file)
        return;
    const std::string place = "item[" + std::to_string(thumbnailCount) + "]: ";
    NSLog(place + "fileName = " + file->lastPathComponent());
    NSLog(place + "typeIdentifier = " + typeIdentifier);
    if (std::optional<UIImage> thumbnail = thumbnailOfSharedFile(*file, typeIdentifier, thumbnailSide))
        thumbnails.push_back(std::move(*thumbnail));
}

void AttachmentIntake::saveAttachments(const Completion& completion) {
    const std::size_t inputItems = extensionContext ? extensionContext->inputItems.size() : 0;
    NSLog("InputItems count = " + std::to_string(inputItems));
    const auto list = attachments();
    if (!list || currentAttachmentIndex >= countOf(*list)) {
        completion(nullptr);
        return;
    }
    const NSItemProvider& provider = *(*list)[static_cast<std::size_t>(currentAttachmentIndex)];
    if (provider.registeredTypeIdentifiers().empty()) {
        completion(ShareExtensionError::make("No type indentifier"));
        return;
    }
    provider.loadItem(
        provider.registeredTypeIdentifiers().front(),
        [weak = weak_from_this(), completion](const NSItemProvider::Item& item, const ErrorRef& error) {
            const std::shared_ptr<AttachmentIntake> self = weak.lock();
            if (!self || self->extensionContext->isCancelled())
                return;
            if (error) {
                NSLog("error: " + error->localizedDescription());
                completion(error);
                return;
            }
            self->save(item, completion);
        });
}

void AttachmentIntake::save(const NSItemProvider::Item& item, const Completion& completion) {
    if (const URL* const file = std::get_if<URL>(&item)) {
        const std::string name = file->lastPathComponent();
        SharedItemManager::saveItem(sharedItem(name, name), *file, advancing(completion));
    } else if (const UIImage* const image = std::get_if<UIImage>(&item)) {
        const std::optional<Data> jpeg = image->jpegData(jpegQuality);
        if (jpeg)
            SharedItemManager::saveItem(sharedItem(".jpg", std::nullopt), *jpeg, advancing(completion));
        else
            completion(ShareExtensionError::make("Failed to encode image"));
    } else {
        completion(ShareExtensionError::make("Unsupported shared item"));
    }
}

SharedItem AttachmentIntake::sharedItem(const std::string& nameEnd,
                                        std::optional<std::string> preferredName) const {
    return {uniqueTimeText() + nameEnd, selectedAlbumName, fakePasswordMode, std::move(preferredName)};
}

AttachmentIntake::Completion AttachmentIntake::advancing(const Completion& completion) {
    return [weak = weak_from_this(), completion](const ErrorRef& error) {
        const std::shared_ptr<AttachmentIntake> self = weak.lock();
        if (!self)
            return;
        if (error) {
            NSLog("saveItem, error: " + error->localizedDescription());
            completion(error);
            return;
        }
        self->currentAttachmentIndex += 1;
        // What is under way is finished; nothing new begins once the user does not want it.
        if (self->extensionContext->isCancelled())
            return;
        self->saveAttachments(completion);
    };
}

} // namespace sela
